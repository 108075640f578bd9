#include "tests/support/base/Texts.h"

#include <fstream>
#include <sstream>

std::string TempFolder::write(const std::string& name, const std::string& text) const {
  const std::filesystem::path file = path() / name;
  std::ofstream(file) << text;
  return file.string();
}

std::string textOf(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}
