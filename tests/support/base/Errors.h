#pragma once

#include <exception>
#include <string>

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
