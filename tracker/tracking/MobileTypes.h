#pragma once

#include "tracker/geometry/ObjectType.h"

/// Whether the upstream tracker saw several people in the mobile.
inline bool isGroupOrCrowd(const ObjectType& type) {
  return type.isGroup() || type.isCrowd();
}

/// How many people a mobile brings to a group for good: noise brings nobody.
inline int headCount(const ObjectType& type) {
  if (isGroupOrCrowd(type)) {
    return 2;
  }
  return type.isPerson() ? 1 : 0;
}

/// How many people stand for a mobile at one frame: here noise counts, it may hide a member.
inline int presence(const ObjectType& type) {
  return isGroupOrCrowd(type) ? 2 : 1;
}
