#include "host/output/WholeFile.h"

#include "host/base/OutputPlace.h"

#include <QFile>

#include <filesystem>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace grouptracker {

WholeFile::WholeFile(const std::string& path)
    : m_path(path), m_file(QFile::decodeName(path.c_str())) {
  std::error_code unknown;
  const std::filesystem::file_status place = std::filesystem::status(path, unknown);
  const bool isStream = std::filesystem::exists(place) && !std::filesystem::is_regular_file(place);
  if (isStream || path == "-") {
    m_stream.emplace(path);
    return;
  }
  if (QFile::encodeName(m_file.fileName()).toStdString() != path) {
    throw OutputError(path, "is put in place as a whole, under names in UTF-8 only");
  }
  m_place = openOutput(path, OldContent::kept);
  m_isNew = !std::filesystem::exists(place);
  if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
    removeIfNew();
    fail();
  }
}

WholeFile::~WholeFile() {
  removeIfNew();
}

void WholeFile::removeIfNew() const {
  if (m_isNew) {
    ::unlink(m_path.c_str());
  }
}

void WholeFile::write(std::string_view text) {
  if (m_stream) {
    m_stream->writeLines(text);
    return;
  }
  if (!m_file.isOpen() && !m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
    fail();
  }
  // Without Qt's buffer, which takes a part that was written on a full disk for all of it.
  const auto size = static_cast<qint64>(text.size());
  if (m_file.write(text.data(), size) != size) {
    m_file.cancelWriting();
    throw OutputError(m_path, systemProblem("cannot be written"));
  }
  FileDescriptor next(::dup(m_file.handle()));
  ::flock(next.get(), LOCK_EX | LOCK_NB);  // before anybody can see it at its place
  if (!m_file.commit()) {
    fail();
  }
  m_place = std::move(next);
  m_isNew = false;
}

void WholeFile::fail() const {
  throw OutputError(m_path, "cannot be written: " + m_file.errorString().toStdString());
}

}  // namespace grouptracker
