#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// A folder that lives as long as the test, for the tests that need real files.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "grouptracker-XXXXXX").string();
    m_path = ::mkdtemp(name.data());
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(m_path); }

  std::string path(const std::string& name) const { return (m_path / name).string(); }
  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name)) << content;
    return path(name);
  }
  std::string read(const std::string& name) const {
    std::ifstream file(path(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::vector<std::string> lines(const std::string& name) const {
    std::ifstream file(path(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    return lines;
  }

 private:
  std::filesystem::path m_path;
};
