#pragma once

#include "OpenedInput.h"

#include <string>

/// Opens an input whatever its format: asks each known format in turn whether the input is its own.
/// To add a format, write its reader and add a row to the table in the .cpp file.
/// An input that cannot be opened or that no format takes is an `InputError`.
OpenedInput openInput(const std::string& path, const InputOptions& options);
