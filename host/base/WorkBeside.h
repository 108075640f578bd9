#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace grouptracker {

/// Has work done item by item, in order, on a thread of its own, beside who brings the items. At
/// most `capacity` of them wait; who brings more waits, too. What the work throws ends it: it comes
/// out of the next `take()` or of `end()`, once, and further items are dropped.
template <typename Item>
class WorkBeside {
 public:
  using Work = std::function<void(const Item&)>;

  WorkBeside(std::size_t capacity, Work work)
      : m_capacity(capacity), m_work(std::move(work)), m_thread([this] { workOnAll(); }) {}
  WorkBeside(const WorkBeside&) = delete;
  WorkBeside& operator=(const WorkBeside&) = delete;
  ~WorkBeside() { stop(); }

  void take(Item&& item) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() < m_capacity || m_isEnding; });
    rethrow();
    if (m_isEnding) {
      return;  // the work has failed and this was said already
    }
    m_waiting.push_back(std::move(item));
    m_changed.notify_all();
  }

  /// Waits until all is done.
  void end() {
    stop();
    rethrow();
  }

 private:
  void workOnAll() {
    std::unique_lock lock(m_mutex);
    for (;;) {
      m_changed.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
      if (m_waiting.empty()) {
        return;
      }
      std::optional<Item> item = std::move(m_waiting.front());
      m_waiting.pop_front();
      m_changed.notify_all();
      lock.unlock();
      workOn(*item);
      item.reset();  // which may take long, too
      lock.lock();
    }
  }

  void workOn(const Item& item) {
    try {
      m_work(item);
    } catch (...) {
      const std::lock_guard lock(m_mutex);
      m_failure = std::current_exception();
      m_waiting.clear();
      m_isEnding = true;
      m_changed.notify_all();
    }
  }

  void stop() {
    {
      const std::lock_guard lock(m_mutex);
      m_isEnding = true;
      m_changed.notify_all();
    }
    if (m_thread.joinable()) {
      m_thread.join();
    }
  }

  // The mutex is held or the thread has ended.
  void rethrow() {
    if (m_failure) {
      std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
  }

  std::size_t m_capacity;
  Work m_work;
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<Item> m_waiting;
  bool m_isEnding = false;
  std::exception_ptr m_failure;
  std::thread m_thread;
};

}  // namespace grouptracker
