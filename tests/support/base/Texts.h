#pragma once

#include <QTemporaryDir>

#include <exception>
#include <filesystem>
#include <string>
#include <vector>

/// A folder of its own for the length of a scope.
class TempFolder {
 public:
  TempFolder() : m_path(m_folder.path().toStdString()) {}
  const std::filesystem::path& path() const { return m_path; }
  /// Writes a file into the folder; returns its full name.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  QTemporaryDir m_folder;
  std::filesystem::path m_path;
};

/// All of a file as text; empty when it cannot be read.
std::string textOf(const std::filesystem::path& file);

/// The lines of a text without their ends.
std::vector<std::string> linesOf(const std::string& text);

/// The text of the exception that `action` throws; "no error" when it throws none.
template <typename Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "no error";
}
