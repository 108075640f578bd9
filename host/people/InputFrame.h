#pragma once

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

/// What the process gets for one video frame, and what the host needs to know about it.
struct InputFrame {
  std::int64_t number = 0;     ///< the number that the input itself gives to the frame
  std::optional<double> time;  ///< seconds by the input's own clock; none when it has none
  std::string place;           ///< where the frame stands in the input, "FILE:LINE", for messages
  QList<QSharedPointer<kelDataActor>> actors;
  std::filesystem::path imageFile;      ///< empty when the input names no image
  QSharedPointer<kelDataImage> image;   ///< null until somebody loads the image file
  std::vector<MobilePointer> observed;  ///< the mobiles of this frame, in the input's order
  /// Older mobiles to which the frame's links lead. Links hold their fathers weakly: these
  /// references keep them alive while the frame is processed.
  std::vector<MobilePointer> fathers;
};

}  // namespace grouptracker
