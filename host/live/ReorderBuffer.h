#pragma once

#include "host/live/PeopleMessage.h"
#include "host/people/ObservationSource.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

namespace grouptracker {

/// Puts messages that arrive out of order in order: by frame number when the first one has a
/// number, else by time; as long as they have neither they come out as they arrive. One without
/// what gives the order is dropped.
///
/// A message that follows the one before at the usual distance comes out at once. One behind a gap
/// waits until those between have arrived or its patience is over: `maxLateness` seconds by the
/// caller's clock or by the messages' own times. What comes later than that is dropped, as is what
/// comes twice: senders and brokers repeat their latest messages after a lost connection. A gap
/// becomes steps without people, unless it is so long that it is a pause. When several messages in
/// a row have smaller numbers at a later time, times that are earlier by many seconds, or nothing
/// that gives the order, the sender has started anew or its clock was set back: they begin a new
/// order. Steps have the numbers of the messages where these give the order, and else are counted.
class ReorderBuffer {
 public:
  using Clock = std::chrono::steady_clock;

  struct Counts {
    std::uint64_t messages = 0;    ///< taken
    std::uint64_t late = 0;        ///< dropped
    std::uint64_t duplicates = 0;  ///< dropped
    std::uint64_t missing = 0;     ///< steps put in for messages that never came
    std::uint64_t restarts = 0;
    std::uint64_t waiting = 0;  ///< now, for those before them
  };

  explicit ReorderBuffer(double maxLateness) : m_maxLateness(maxLateness) {}

  void add(PeopleMessage message, Clock::time_point now);
  /// Replaces `step` by the next one; false while there is none.
  bool next(ObservationStep& step);
  /// When the patience with the next message's predecessors ends; none when nothing waits.
  std::optional<Clock::time_point> due() const;
  /// Lets go what has waited long enough; to be called when nothing more is there to be added.
  void expire(Clock::time_point now);
  /// Lets go all, behind the last message.
  void finish();

  Counts counts() const;

 private:
  /// What gives the order.
  enum class Order : std::uint8_t { arrival, times, numbers };

  struct Held {
    PeopleMessage message;
    Clock::time_point arrived;
  };
  /// By which a message is known when it comes again.
  struct Likeness {
    double key = 0.0;
    std::optional<double> time;
    std::size_t people = 0;  ///< a hash of who is where

    bool operator==(const Likeness&) const = default;
  };

  static Order orderOf(const PeopleMessage& message);
  static Likeness likenessOf(double key, const PeopleMessage& message);
  bool hasNumbers() const { return m_order == Order::numbers; }
  std::optional<double> keyOf(const PeopleMessage& message) const;
  bool chooseOrder(const PeopleMessage& message);
  bool isRepeated(double key, const PeopleMessage& message) const;
  bool isLate(double key, const PeopleMessage& message) const;
  void addEarlier(double key, Held held);
  void releaseWhatFollows();
  void releaseFirst();
  void release(double key, PeopleMessage message);
  bool follows(double key) const;
  bool isOverdue() const;
  double spacing() const;
  void fillGap(double key, const PeopleMessage& next);
  void put(std::optional<double> key, PeopleMessage message);
  void startAnew();
  void forgetOrder();

  double m_maxLateness;  ///< seconds
  Order m_order = Order::arrival;
  std::size_t m_strange = 0;      ///< messages in a row without what gives the order
  std::map<double, Held> m_held;  ///< by key: frame number, or time in seconds
  std::vector<Held> m_earlier;    ///< messages in a row that came too late, in order
  std::deque<ObservationStep> m_ready;
  std::optional<double> m_lastKey;   ///< of the latest one that came out
  std::optional<double> m_lastTime;  ///< seconds; its own
  std::deque<double> m_distances;    ///< of the latest neighbours, by key
  std::deque<Likeness> m_recent;     ///< the latest that came out
  std::int64_t m_steps = 0;          ///< that came out
  Counts m_counts;
};

}  // namespace grouptracker
