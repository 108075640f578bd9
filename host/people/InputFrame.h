#pragma once

#include "host/base/InputError.h"

#include <kel/BoundingBox3D.h>
#include <kel/kelDataActor.h>
#include <kel/kelDataImage.h>
#include <kel/kelDataLinkedPhysicalObject.h>

#include <QList>
#include <QSharedPointer>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

using MobilePointer = QSharedPointer<kelDataLinkedPhysicalObject>;

/// How an actor of a frame is made. A person's list of mobiles mostly goes on from frame to frame,
/// so that little need be said of it.
struct ActorPlan {
  std::uint32_t id = 0;
  std::optional<std::string> type;     ///< none for that of the current mobile, which is the last
  std::optional<BoundingBox3D> box3D;  ///< metres; none for that of the current mobile
  bool goesOn = false;                 ///< the list begins with that of the frame before
  bool losesFirst = false;             ///< but without the first mobile of that
  std::vector<MobilePointer> mobiles;  ///< that the list gets, behind what goes on
};

/// What the process gets for one video frame, and what the host needs to know about it.
struct InputFrame {
  std::int64_t number = 0;     ///< the number that the input itself gives to the frame
  std::optional<double> time;  ///< seconds by the input's own clock; none when it has none
  InputPlace place;            ///< where the frame stands in the input, for messages
  QList<QSharedPointer<kelDataActor>> actors;
  std::vector<ActorPlan>
      plans;  ///< of actors that are yet to be made by an `ActorMaker`; else none
  std::filesystem::path imageFile;      ///< empty when the input names no image
  QSharedPointer<kelDataImage> image;   ///< null until somebody loads the image file
  std::vector<MobilePointer> observed;  ///< the mobiles of this frame, in the input's order
  /// Older mobiles to which the frame's links lead. Links hold their fathers weakly: these
  /// references keep them alive while the frame is processed.
  std::vector<MobilePointer> fathers;
};

/// How fast frames follow each other, for those who have no times of their own.
struct FrameRate {
  double perSecond = 0.0;      ///< frame numbers, above 0
  bool replacesTimes = false;  ///< holds for frames with times of their own, too

  /// Seconds; `own` is the time that the input gives to the frame.
  double timeOf(std::int64_t frame, const std::optional<double>& own) const {
    return own && !replacesTimes ? *own : static_cast<double>(frame) / perSecond;
  }
};

/// An input that yields one frame after the other, whatever its format. Bad input is an
/// `InputError` out of `next()`; all frames before it have been handed out by then.
class FrameSource {
 public:
  FrameSource() = default;
  FrameSource(const FrameSource&) = delete;
  FrameSource& operator=(const FrameSource&) = delete;
  virtual ~FrameSource() = default;

  /// Replaces `frame` by the next one; false at the end of the input, `frame` is then of no use.
  virtual bool next(InputFrame& frame) = 0;
  /// The number of frames from the first to the last; none for an input without a known end. May
  /// cost a pass over the input: for showing progress, not for deciding anything.
  virtual std::optional<std::uint64_t> totalFrames() { return std::nullopt; }
};

}  // namespace grouptracker
