#pragma once

#include "host/input/MotReader.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <istream>
#include <optional>
#include <string>

namespace grouptracker {

/// What `seqinfo.ini` of a MOTChallenge sequence says, for example
///
///     [Sequence]
///     imDir=img1
///     frameRate=30
///     seqLength=600
///     imWidth=1920
///     imHeight=1080
///     imExt=.jpg
struct SequenceInfo {
  std::string imageFolder = "img1";  ///< within the sequence's folder
  std::string imageExtension = ".jpg";
  bool namesImages = false;           ///< whether the file says where images are
  std::int64_t length = 0;            ///< frames; 0 when the file does not say
  std::optional<cv::Size> imageSize;  ///< pixels
  std::optional<double> rate;         ///< frames a second
};

/// Reads such a file; keys that are not used are passed over. A length or size that is no whole
/// number is an `InputError`.
SequenceInfo readSequenceInfo(std::istream& in, const std::string& name);

/// A folder with `seqinfo.ini`, the people in `gt/gt.txt`, and usually the images.
class MotSequence {
 public:
  /// Whether the folder is one.
  static bool isOne(const std::string& folder);

  explicit MotSequence(const std::string& folder);

  const std::string& infoFile() const { return m_infoFile; }
  const std::string& trackFile() const { return m_trackFile; }
  const SequenceInfo& info() const { return m_info; }
  /// What to tell the user when the images that the file names are not there.
  std::optional<std::string> missingImages() const;
  /// The people of all the sequence's frames, with the images' names when the folder has images.
  std::unique_ptr<ObservationTable> read(const MotChoice& choice,
                                         const ProblemHandler& onProblem) const;

 private:
  std::string m_folder;
  std::string m_infoFile;
  std::string m_trackFile;
  SequenceInfo m_info;
};

}  // namespace grouptracker
