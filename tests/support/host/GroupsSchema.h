#pragma once

#include <string>

namespace grouptracker {

/// What is wrong with the text of a groups file, by the schema that the documents give to other
/// programs and by what a schema cannot say: order, nobody twice, ids that are never used again,
/// origins of the line before. Empty when all is well.
std::string groupsFault(const std::string& text);

}  // namespace grouptracker
