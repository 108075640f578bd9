#pragma once

#include "host/people/ActorMaker.h"
#include "host/people/InputFrame.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

namespace grouptracker {

/// Reads the next frames of an input on a thread of its own while somebody works on the earlier
/// ones, who gets them in the same order. What reading fails with comes out of `next()` behind the
/// last frame before it, and nothing is read after it. Actors that the source only plans are made
/// where they are used. Frames that were worked on go back without their actors to the thread that
/// made them, since freeing their many records takes long. Not for an input that speaks to its user
/// while it is read.
class ReadAhead : public FrameSource {
 public:
  /// Frames that wait at most, twice: those that are read, and those that were handed over
  /// together, so that the two threads wake each other seldom. As many again go back to be freed.
  static constexpr std::size_t capacity = 8;
  static constexpr std::size_t picturesCapacity = 1;  ///< the same where a frame has its image

  explicit ReadAhead(std::unique_ptr<FrameSource> source);
  ~ReadAhead() override;

  /// `frame` is the one that was handed out last, or a new one.
  bool next(InputFrame& frame) override;

 private:
  void work();
  bool put(InputFrame&& frame);
  void takeOver();

  std::unique_ptr<FrameSource> m_source;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<InputFrame> m_read;
  std::deque<InputFrame> m_done;  ///< to be freed by the reading thread
  bool m_isOver = false;          ///< nothing more is read
  bool m_isUnwanted = false;      ///< nobody takes any more
  std::exception_ptr m_failure;   ///< set before `m_isOver`
  // Of the thread that calls `next()`.
  std::deque<InputFrame> m_taken;
  std::deque<InputFrame> m_givenBack;
  ActorMaker m_actors;
  std::thread m_thread;
};

}  // namespace grouptracker
