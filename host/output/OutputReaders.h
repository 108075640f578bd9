#pragma once

#include "host/run/StepSink.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace grouptracker {

/// Keeps count of who reads what a run writes. Whoever reads a pipe may leave: that ends this one
/// output, and the others go on as long as there are any. Outputs are written on several threads.
class OutputReaders {
 public:
  /// Hands the steps to a sink until its reader has left (`ClosedPipe`); from then on they go
  /// nowhere. The sink must not outlive this.
  std::unique_ptr<StepSink> watch(std::unique_ptr<StepSink> sink);
  /// Counts an output that is no sink.
  void expect();
  /// The reader of an output has left; `file` as the user calls it.
  void leave(const std::string& file);

  /// A line for each who has left since the last call; none when nobody is left to go on for, who
  /// would only be told what he did himself.
  std::vector<std::string> warnings();
  bool hasAnybodyLeft() const;
  /// Whether nothing that is written goes anywhere any more.
  bool haveAllLeft() const;

 private:
  mutable std::mutex m_mutex;
  std::size_t m_outputs = 0;
  std::size_t m_left = 0;
  std::vector<std::string> m_warnings;
};

}  // namespace grouptracker
