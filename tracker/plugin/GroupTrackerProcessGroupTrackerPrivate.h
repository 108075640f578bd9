#pragma once

#include "tracker/display/GroupExtension.h"
#include "tracker/plugin/ParameterReader.h"
#include "tracker/tracking/GroupTracker.h"

#include <kel/kelAbstractProcessGroupTrackerPrivate.h>
#include <kel/kelDataActor.h>
#include <kel/kelDataImage.h>

#include <QMap>
#include <QSharedPointer>

#include <deque>
#include <map>
#include <optional>
#include <string>

/// State of the process: the tracker for its whole life, the images that wait for their frame to be
/// reported, and the drawing of the output images.
class GroupTrackerProcessGroupTrackerPrivate : public kelAbstractProcessGroupTrackerPrivate {
 public:
  static bool useClustering;
  static double minCrowdWidth;   ///< metres
  static double minCrowdHeight;  ///< metres
  static int histogramDepth;
  static double mvtAreaTh;
  static double mvtSpeedTh;
  static int mvtSpeedNFrames;
  static int mvtFrameGap;
  static int mvtBrightnessTh;
  static int mvtBlobsFilter;
  static bool positionNormalization;
  static bool detectSuddenMvt;
  static int minNumCells;

  GroupTrackerProcessGroupTrackerPrivate();
  /// Takes over what the host set; the tracking starts anew.
  GroupTrackerProcessGroupTrackerPrivate(const GroupTrackerProcessGroupTrackerPrivate& other);
  GroupTrackerProcessGroupTrackerPrivate& operator=(const GroupTrackerProcessGroupTrackerPrivate&) =
      delete;
  ~GroupTrackerProcessGroupTrackerPrivate() override;

  /// The mean distance in metres between two of the actor's mobiles, as text; "0" without a pair.
  static std::string avgIntraDist(const kelDataActor& actor);
  /// Hands the groups that are alive at the frame, and the mobiles' boxes, to the drawing.
  void updateDisplay(const QMap<int, QSharedPointer<Group>>& groups, int frame,
                     const GroupTracker::MobileList& mobiles);

  // Steps of a frame
  static bool displays();
  void queueImage();
  void takeActors();
  void printActors() const;
  void prepareExtension();
  void track();
  void reportGroups();
  void drawOutput();
  /// The file that could not be written at this frame and what is wrong, or nothing.
  QVariant outputProblem() const;

  GroupTracker tracker;
  QSharedPointer<kelDataImage> delayedImage;  ///< null until the queue has filled
  std::deque<QSharedPointer<kelDataImage>> imageQueue;
  QSharedPointer<GroupExtension> extension;
  QList<QSharedPointer<kelDataActor>> presentActors;  ///< those of the input without nulls
  std::optional<ParameterUser> parameterUser;         ///< once the parameters are read

 private:
  int reportedFrame() const;
  std::map<unsigned int, std::string> splitsByGroup(unsigned int frame);
  static QSharedPointer<kelDataActor> actorOf(const Group& group, int reportedFrame);
};
