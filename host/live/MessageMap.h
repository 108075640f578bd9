#pragma once

#include <istream>
#include <string>
#include <vector>

namespace grouptracker {

/// Where messages keep what people messages say: JSON pointers, those of a person from the person's
/// own value on. The names of the members are the keys of a map's file; what it leaves out stays.
///
///     {"time": "/timestamp", "people": "/objects", "id": "/id",
///      "x": "/translation/0", "y": "/translation/1", "box": "/bounding_box", "timeUnit": "ms"}
struct MessageMap {
  std::string time = "/time";
  std::string frame = "/frame";
  std::string people = "/people";
  std::string id = "/id";
  std::string x = "/x";
  std::string y = "/y";
  /// One pointer to left, top, width and height in an array, or one to each of them.
  std::vector<std::string> box{"/box"};
  double secondsPerUnit =
      1.0;  ///< of times that are numbers; "timeUnit" is "s", "ms", "us" or "ns"

  /// Reads a map. An unknown key, a pointer that is none and anything but such an object are an
  /// `InputError`.
  static MessageMap read(std::istream& in, const std::string& name);
  static MessageMap read(const std::string& path);
};

}  // namespace grouptracker
