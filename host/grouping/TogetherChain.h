#pragma once

namespace grouptracker {

/// The belief that two persons belong together, as log-odds over time: a chain of two states,
/// together and apart, that people enter and leave at fixed rates per second [Rabiner 1989]. The
/// evidence is about seconds around each moment and so overlaps from tick to tick; it counts in
/// proportion to the time that passes. Its look-ahead takes the place of a backward pass.
class TogetherChain {
 public:
  static constexpr double largestEvidence = 5.0;  ///< log-odds either way

  /// How a belief changes from one moment to the next. Most pairs are far apart for long and change
  /// alike: what is there from the one before need not be found once more.
  struct Passage {
    double passed = -1.0;  ///< seconds; below 0 before the first
    double change = 0.0;   ///< how far a belief goes by itself in this time, 0 to 1
    double before = 0.0;   ///< log-odds
    double known = 0.0;    ///< evidence, log-odds
    double after = 0.0;    ///< log-odds
  };

  /// Takes the evidence of a moment, log-odds; returns the belief, log-odds. `isFresh`: whether the
  /// first moment is also the first at which the two are in view together. Who is only watched
  /// later was apart before. `latest`: of any chain.
  double next(double time, double evidence, bool isFresh, Passage& latest);
  /// Whether it was given evidence.
  bool hasStarted() const { return m_hasStarted; }

 private:
  bool m_hasStarted = false;
  double m_time = 0.0;    ///< of the last evidence, seconds
  double m_belief = 0.0;  ///< log-odds
};

/// The probability of log-odds.
double probabilityOf(double logOdds);
/// The probability that a belief stands for. Evidence overlaps from tick to tick, so that beliefs
/// grow beyond what they are worth: in recordings that a model was not learned from they come true
/// as if they were 0.4 times as large.
double certaintyOf(double belief);

}  // namespace grouptracker
