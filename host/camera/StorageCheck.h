#pragma once

#include <istream>
#include <string>

namespace grouptracker {

/// Looks through the text of an OpenCV storage file (YAML, XML or JSON) before OpenCV does. Its
/// parsers trust what they read: zero bytes, broken XML or values nested without end can end the
/// program. Such a text is an `InputError`; anything else wrong is left to OpenCV.
void refuseUnsoundStorage(std::istream& in, const std::string& name);

}  // namespace grouptracker
