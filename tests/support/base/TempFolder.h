#pragma once

#include <filesystem>
#include <string>

/// A folder of its own for the length of a scope.
class TempFolder {
 public:
  TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder();

  const std::filesystem::path& path() const { return m_path; }
  /// Writes a file into the folder; returns its full name.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  std::filesystem::path m_path;
};

/// All of a file as text; empty when it cannot be read.
std::string textOf(const std::filesystem::path& file);
