#pragma once

#include "OpenedInput.h"

#include <string>
#include <vector>

/// The names by which a user may choose a format.
std::vector<std::string> inputFormats();

/// Opens an input in the chosen format, or else asks each known format in turn whether the input's
/// content is its own.
/// To add a format, write its reader and add a row to the table in the .cpp file.
/// An input that cannot be opened or that no format takes is an `InputError`.
OpenedInput openInput(const std::string& path, const InputOptions& options);
