#pragma once

#include "host/run/GroupsFrame.h"
#include "host/run/TrackedEvent.h"

#include <kel/kelDataImage.h>

#include <QSharedPointer>
#include <opencv2/core/types.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace grouptracker {

/// Where a person was at a frame.
struct PersonPlace {
  std::uint32_t person = 0;
  cv::Point2f position;  ///< on the ground, metres
  cv::Rect box2D;        ///< pixels
};

/// Everything that the host can show or store about one reported frame.
struct ReportedStep {
  GroupsFrame groups;
  std::vector<TrackedEvent> events;
  std::vector<PersonPlace> people;     ///< everybody in view; only when somebody draws
  std::filesystem::path imageFile;     ///< of the reported frame; empty when there is none
  QSharedPointer<kelDataImage> image;  ///< of the reported frame, when it is in memory
  std::string place;                   ///< where the frame stands in the input, for messages
};

}  // namespace grouptracker
