#include "host/base/InputFile.h"

#include "host/base/InputError.h"
#include "host/base/SystemProblem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace grouptracker {

namespace {

FileDescriptor open(const std::string& path) {
  if (path == "-") {
    return FileDescriptor();
  }
  // A pipe that nobody writes yet is waited for when it is read, where a wish to stop is seen.
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) {
    throw InputError(path, systemProblem("cannot be opened"));
  }
  return file;
}

}  // namespace

InputFile::InputFile(const std::string& path)
    : m_file(open(path)),
      m_buffer(m_file.isOpen() ? m_file.get() : STDIN_FILENO),
      m_stream(&m_buffer) {
  m_stream.exceptions(std::ios::badbit);
}

}  // namespace grouptracker
