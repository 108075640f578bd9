#pragma once

#include "host/base/InputFile.h"
#include "host/base/LineReader.h"

#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace grouptracker {

/// What the tracker, in its lines and properties, says in place of an id or the number of a frame
/// where there is none.
inline constexpr int none = -1;

/// An id as everybody knows it, of one that the tracker shows with a sign; `none` stays.
constexpr std::int64_t knownId(std::int64_t shown) {
  return shown >= none ? shown : shown + (std::int64_t{1} << 32);
}

/// Reads the tracker's dump of all remembered mobiles, frame by frame:
///
///     ------------ Mobiles with Groups at frame 24
///     mobile 51 @ frame 18 has best father 46 has best son 56 and is in group 3
///     	link from 46 to 51 with reliability 0.9
///
/// Ids are shown with a sign, `none` where there is none. Lines of other kinds are passed over; a
/// file without any frame is an `InputError`.
class MobileDump {
 public:
  struct Link {
    std::int64_t father = none;
    double reliability = 0.0;
  };
  struct Mobile {
    std::int64_t bestFather = none;
    std::int64_t bestSon = none;
    int frame = 0;
    int group = none;  ///< before the frame's decisions
    std::vector<Link> links;
  };
  using Mobiles = std::map<std::int64_t, Mobile>;

  explicit MobileDump(const std::string& path);
  /// `name` is the dump's name in messages. The stream must outlive the dump.
  MobileDump(std::istream& in, const std::string& name);

  /// The mobiles at a frame; frames are asked for in ascending order. Empty for a frame that the
  /// dump does not hold.
  const Mobiles& at(std::uint32_t frame);

 private:
  MobileDump(std::unique_ptr<InputFile> file, const std::string& path);
  void readFrame();

  std::unique_ptr<InputFile> m_file;  ///< null for a stream of somebody else's
  LineReader m_lines;
  std::uint32_t m_frame = 0;      ///< of `m_mobiles`; 0 before the first
  std::uint32_t m_nextFrame = 0;  ///< whose head line has been read
  bool m_isAtEnd = false;
  Mobiles m_mobiles;
};

}  // namespace grouptracker
