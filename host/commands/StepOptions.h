#pragma once

#include "host/commands/Options.h"
#include "host/pictures/PictureWriter.h"
#include "host/run/StepSink.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

using StepSinks = std::vector<std::unique_ptr<StepSink>>;

/// What shall be written about the steps of a run beside its groups file, while it runs or out of
/// that file.
struct StepOptions {
  std::map<std::string, std::string> exportFiles;  ///< by option; empty when it was not given
  PictureOptions pictures;
  bool showsWindow = false;

  bool wantsAnything() const { return wantsPictures() || !files().empty(); }
  bool wantsPictures() const { return showsWindow || !pictures.path.empty(); }
  /// What is hardly meant, as one line; none when all is well.
  std::optional<std::string> doubt() const;
  /// The files that will be written.
  std::vector<std::string> files() const;
  /// Opens them: what is to be written before the run goes on, and what may be written beside it.
  void open(StepSinks& atOnce, StepSinks& beside) const;
};

/// Adds the options to a command; they outlive the parsing.
void declareStepOptions(Options& command, StepOptions& options);
/// Those of them that are about pictures.
void declarePictureOptions(Options& command, StepOptions& options);
/// Those of them that make sense when the run is over; the events are the command's own affair.
void declareReplayOptions(Options& command, StepOptions& options);

}  // namespace grouptracker
