#include "host/output/BackgroundSink.h"

#include <utility>

namespace grouptracker {

BackgroundSink::BackgroundSink(std::vector<std::unique_ptr<StepSink>> sinks)
    : m_sinks(std::move(sinks)), m_thread([this] { work(); }) {}

BackgroundSink::~BackgroundSink() {
  stop();
}

void BackgroundSink::take(RunStep&& step) {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_waiting.size() < capacity || m_isEnding; });
  rethrow();
  if (m_isEnding) {
    return;  // a sink has failed and this was said already
  }
  m_waiting.push_back(std::move(step));
  m_changed.notify_all();
}

void BackgroundSink::finish() {
  stop();
  for (const auto& sink : m_sinks) {
    try {
      sink->finish();
    } catch (...) {
      m_failure = m_failure ? m_failure : std::current_exception();
    }
  }
  rethrow();
}

void BackgroundSink::work() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_changed.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
    if (m_waiting.empty()) {
      return;
    }
    const RunStep step = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_changed.notify_all();
    lock.unlock();
    writeToAll(step);
    lock.lock();
  }
}

void BackgroundSink::writeToAll(const RunStep& step) {
  try {
    for (const auto& sink : m_sinks) {
      sink->write(step);
    }
  } catch (...) {
    const std::lock_guard lock(m_mutex);
    m_failure = std::current_exception();
    m_waiting.clear();
    m_isEnding = true;
    m_changed.notify_all();
  }
}

void BackgroundSink::stop() {
  {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_all();
  }
  if (m_thread.joinable()) {
    m_thread.join();
  }
}

// Each failure is thrown once; the mutex is held or the thread has ended.
void BackgroundSink::rethrow() {
  if (m_failure) {
    std::rethrow_exception(std::exchange(m_failure, nullptr));
  }
}

}  // namespace grouptracker
