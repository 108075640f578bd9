#include "tracker/images/ImageCodec.h"

#include "tracker/images/LateLibrary.h"

const ImageCodec& ImageCodec::loaded() {
  static const auto& codec =
      lateLibrary<ImageCodec>("libgrouptracker_images.so", "groupTrackerImageCodec");
  return codec;
}
