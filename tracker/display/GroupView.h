#pragma once

#include "tracker/display/DisplayGroup.h"

#include <QFont>
#include <QMap>
#include <QSharedPointer>

#include <map>

class Group;

/// What a view of the scene keeps of the tracker's groups: one display record per group, with the
/// boxes (image pixels) of the frame that lies `Util::temporalWinSize` frames back. The records are
/// copies; the groups are not held.
class GroupView {
 public:
  GroupView() = default;
  virtual ~GroupView() = default;

  /// The frame that has just been taken in.
  void setFrameNumber(int number) { m_frameNumber = number; }
  /// Rebuilds the records from the groups; says so in the diagnostics.
  void setGroups(const QMap<int, QSharedPointer<Group>>& groups);
  /// The records by group id.
  const std::map<int, DisplayGroup>& getRecords() const { return m_records; }
  /// Prepares the font once there is a frame to show. The drawing itself is left to the output
  /// images.
  void draw();

 private:
  int shownFrame() const;

  int m_frameNumber = 0;
  std::map<int, DisplayGroup> m_records;
  QFont m_font;
};
