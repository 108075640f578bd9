#include "host/video/VideoLibrary.h"

#include "tracker/images/LateLibrary.h"

namespace grouptracker {

const VideoLibrary& VideoLibrary::loaded() {
  static const auto& library =
      lateLibrary<VideoLibrary>("libgrouptracker_video.so", "groupTrackerVideoLibrary");
  return library;
}

}  // namespace grouptracker
