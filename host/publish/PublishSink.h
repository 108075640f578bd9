#pragma once

#include "host/publish/Publisher.h"
#include "host/run/StepSink.h"

#include <chrono>
#include <optional>

namespace grouptracker {

/// Publishes the groups of a run and their events while they are found: a line of the groups file
/// for each frame, a line for each event, and which groups there are now, at once when that changes
/// and else once a second.
class PublishSink : public StepSink {
 public:
  /// The publisher outlives the sink.
  explicit PublishSink(Publisher& publisher) : m_publisher(publisher) {}

  void write(const RunStep& step) override;
  void finish() override;

 private:
  using Clock = std::chrono::steady_clock;

  Publisher& m_publisher;
  std::string m_line;                        ///< the latest
  std::optional<Clock::time_point> m_shown;  ///< when groups were shown last
};

}  // namespace grouptracker
