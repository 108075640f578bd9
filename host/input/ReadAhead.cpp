#include "host/input/ReadAhead.h"

#include <utility>

namespace grouptracker {

ReadAhead::ReadAhead(std::unique_ptr<FrameSource> source)
    : m_source(std::move(source)), m_thread([this] { work(); }) {}

ReadAhead::~ReadAhead() {
  {
    const std::lock_guard lock(m_mutex);
    m_isUnwanted = true;
    m_changed.notify_all();
  }
  m_thread.join();
}

bool ReadAhead::next(InputFrame& frame) {
  if (m_taken.empty()) {
    takeOver();
  }
  if (m_taken.empty()) {
    if (m_failure) {
      std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
    return false;
  }
  frame.image.reset();   // which is large, and nothing to wait with
  frame.actors.clear();  // which may be used again at once
  m_givenBack.push_back(std::exchange(frame, std::move(m_taken.front())));
  m_taken.pop_front();
  m_actors.make(frame);
  return true;
}

/// Waits for one frame at least, unless there is none.
void ReadAhead::takeOver() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return !m_read.empty() || m_isOver; });
  m_taken.swap(m_read);
  m_done.swap(m_givenBack);
  m_changed.notify_all();
}

void ReadAhead::work() {
  try {
    for (InputFrame frame; m_source->next(frame) && put(std::move(frame));) {
    }
  } catch (...) {
    m_failure = std::current_exception();
  }
  const std::lock_guard lock(m_mutex);
  m_isOver = true;
  m_changed.notify_all();
}

/// False when nobody wants the frame.
bool ReadAhead::put(InputFrame&& frame) {
  const std::size_t most = frame.image ? picturesCapacity : capacity;
  std::deque<InputFrame> done;  // goes when the mutex is free again
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this, most] { return m_read.size() < most || m_isUnwanted; });
  done.swap(m_done);
  if (m_isUnwanted) {
    return false;
  }
  m_read.push_back(std::move(frame));
  m_changed.notify_all();
  return true;
}

}  // namespace grouptracker
