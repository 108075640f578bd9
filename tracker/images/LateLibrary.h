#pragma once

#include <string>

/// Loads a library of this project with the first need for it: such a one stands on hundreds of
/// others, which would take most of the program's start. It is looked for beside the program or
/// plugin that asks, and kept for good.
///
/// Returns what the function of the given name in it returns; `Interface` is what both sides agree
/// on. Throws `std::runtime_error` that says why when there is no such library or function.
const void* lateInterface(const std::string& library, const char* function);

template <typename Interface>
const Interface& lateLibrary(const std::string& library, const char* function) {
  return *static_cast<const Interface*>(lateInterface(library, function));
}
