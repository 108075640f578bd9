#include "host/output/WholeFile.h"

#include "host/base/OutputPlace.h"

#include <QFile>

#include <filesystem>
#include <system_error>

namespace grouptracker {

WholeFile::WholeFile(const std::string& path)
    : m_path(path), m_file(QFile::decodeName(path.c_str())) {
  std::error_code unknown;
  const std::filesystem::file_status place = std::filesystem::status(path, unknown);
  if (std::filesystem::exists(place) && !std::filesystem::is_regular_file(place)) {
    m_stream.emplace(path);
  } else if (!m_file.open(QIODevice::WriteOnly)) {
    fail();
  }
}

void WholeFile::write(std::string_view text) {
  if (m_stream) {
    m_stream->writeLines(text);
    return;
  }
  m_file.write(text.data(), static_cast<qint64>(text.size()));
  if (!m_file.commit()) {  // fails, too, when something could not be written
    fail();
  }
}

void WholeFile::fail() const {
  throw OutputError(m_path, "cannot be written: " + m_file.errorString().toStdString());
}

}  // namespace grouptracker
