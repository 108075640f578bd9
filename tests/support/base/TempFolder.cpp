#include "tests/support/base/TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

TempFolder::TempFolder() {
  std::string name = (fs::temp_directory_path() / "grouptracker-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("no folder can be made at " + name);
  }
  m_path = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

std::string TempFolder::write(const std::string& name, const std::string& text) const {
  const fs::path file = m_path / name;
  std::ofstream(file) << text;
  return file.string();
}

std::string textOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}
