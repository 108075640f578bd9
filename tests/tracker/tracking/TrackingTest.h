#pragma once

#include "tests/support/process/Printed.h"
#include "tests/support/process/Scene.h"
#include "tests/support/process/StaticsGuard.h"
#include "tracker/geometry/Util.h"
#include "tracker/tracking/GroupTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A history node outside any tracker.
inline QSharedPointer<MetaLPO> nodeOf(const SceneMobile& mobile, unsigned int frame) {
  return QSharedPointer<MetaLPO>::create(mobile.make(), frame);
}

inline void link(const QSharedPointer<MetaLPO>& father, const QSharedPointer<MetaLPO>& son,
                 double reliability) {
  son->addFatherLink(father, son, reliability);
}

/// A scene, a tracker that is led through it, and test parameters that are put back.
class TrackingTest : public testing::Test {
 protected:
  TrackingTest() { setTestParameters(); }

  /// Takes the next frame in and looks for groups; returns what is printed.
  std::string step() {
    ++frame;
    return printed([this] {
      tracker.initFrame(scene.actors(frame), {}, frame);
      if (clusters) {
        tracker.clusterGroups({});
      } else {
        tracker.trackGroups();
      }
    });
  }
  /// Goes on until the frame is done.
  void run(unsigned int lastFrame) {
    while (frame < lastFrame) {
      step();
    }
  }
  /// What `printGroups` prints of a group between its id and the line end; empty for none.
  std::string line(int id) const {
    const std::string text = printed([this] { tracker.printGroups(); });
    const std::string start = "- " + std::to_string(id) + ", ";
    const auto from = text.find(start);
    return from == std::string::npos
               ? ""
               : text.substr(from + start.size(), text.find('\n', from) - from - start.size());
  }
  int groupOf(unsigned int mobile) const {
    return static_cast<int>(tracker.groupId(static_cast<int>(mobile)));
  }
  QSharedPointer<MetaLPO> node(unsigned int mobile) const {
    return tracker.node(static_cast<int>(mobile));
  }

  StaticsGuard guard;
  Scene scene;
  GroupTracker tracker;
  unsigned int frame = 0;
  bool clusters = false;
};
