#include "host/output/WholeFile.h"

#include "host/base/OutputError.h"
#include "host/base/OutputFile.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace grouptracker {

WholeFile::WholeFile(const std::string& path) : m_path(path), m_partPath(path) {
  const std::filesystem::path place(path);
  if (!std::filesystem::exists(place) || std::filesystem::is_regular_file(place)) {
    m_partPath += ".part";
  }
  try {
    const OutputFile attempt(m_partPath);
  } catch (const OutputError&) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
}

WholeFile::~WholeFile() {
  if (m_partPath != m_path) {
    std::remove(m_partPath.c_str());  // gone already when the text was put in place
  }
}

void WholeFile::write(std::string_view text) {
  OutputFile(m_partPath).writeLines(text);
  if (m_partPath != m_path && std::rename(m_partPath.c_str(), m_path.c_str()) != 0) {
    throw OutputError(m_path, systemProblem("cannot be written"));
  }
}

}  // namespace grouptracker
