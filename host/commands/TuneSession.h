#pragma once

#include "ParameterText.h"
#include "TrialRunner.h"
#include "TuningSearch.h"

#include <cstddef>
#include <string>
#include <vector>

/// What the user asks of `grouptracker tune`. Texts are empty when the option was not given.
struct TuneOptions {
  std::vector<std::string> sequences;  ///< INPUT:TRUTH
  std::string baseFile;
  std::string outputFile;
  std::string spaceFile;
  std::string logFile;
  std::string scoreName = "windowed";
  SearchOptions search;
  std::size_t jobs = 1;
  int patience = 300;  ///< seconds
  bool resume = false;
  bool leaveOneOut = false;
  bool quiet = false;
};

/// One search over all sequences, and one without each of them when that is asked for. Prints the
/// results, with the link options that belong to the parameters, on standard output.
class TuneSession {
 public:
  explicit TuneSession(const TuneOptions& options);

  void run();

 private:
  using Sequences = std::vector<const TunedSequence*>;

  Trial search(const Sequences& sequences, const std::string& logFile, const char* purpose);
  void evaluate(std::vector<Trial>& trials, const Sequences& sequences, TrialLog& log,
                const TuningSearch& search, const char* purpose);
  void compute(std::vector<Trial>& trials, const std::vector<std::size_t>& open,
               const Sequences& sequences, TrialLog& log, const char* purpose);
  void leaveEachOut(const Trial& best);
  void writeBest(const Trial& best);

  TuneOptions m_options;
  TuningSpace m_space;
  ParameterText m_base;
  std::vector<TunedSequence> m_sequences;
  double m_bestWorth = 0.0;  ///< of the search that goes on
};
