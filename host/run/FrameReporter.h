#pragma once

#include "host/people/InputFrame.h"
#include "host/run/FrameReport.h"
#include "host/run/MobileOwners.h"

#include <QList>
#include <QSharedPointer>

#include <cstdint>
#include <deque>
#include <vector>

namespace grouptracker {

/// Puts what the process hands back together with what the host knows of the input: the frame that
/// a report is about, its number in the input and its persons. Keeps as many frames as the delay
/// has.
class FrameReporter {
 public:
  /// `delay` is the number of frames between a frame and the report about it.
  explicit FrameReporter(std::uint32_t delay) : m_delay(delay) {}

  /// Notes the next input frame; to be called for every frame, before the process runs.
  void note(const InputFrame& frame);
  /// The report of the frame that was noted last, from the actors that the process added.
  FrameReport report(const QList<QSharedPointer<kelDataActor>>& groups) const;

 private:
  struct Noted {
    std::int64_t inputFrame = 0;
    std::vector<std::uint32_t> persons;
  };

  GroupReport reportGroup(const QSharedPointer<kelDataActor>& group) const;

  std::uint32_t m_delay;
  std::uint32_t m_frame = 0;  ///< frames noted so far
  std::deque<Noted> m_noted;  ///< the last frames up to the delay, the latest last
  MobileOwners m_owners;
};

}  // namespace grouptracker
