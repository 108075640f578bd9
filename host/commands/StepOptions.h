#pragma once

#include "host/commands/CommandLine.h"
#include "host/pictures/PictureWriter.h"

#include <string>
#include <vector>

namespace grouptracker {

/// What a run shall write about its reported frames beside the groups file. Texts are empty when
/// the option was not given.
struct StepOptions {
  std::string eventFile;
  std::string graphFile;
  std::string motFile;
  std::string csvFile;
  std::string databaseFile;
  PictureOptions pictures;
  bool showsWindow = false;

  bool wantsAnything() const { return wantsPictures() || !files().empty(); }
  bool wantsPictures() const { return showsWindow || !pictures.path.empty(); }
  /// The files that will be written.
  std::vector<std::string> files() const;
};

/// Adds the options to a command; they outlive the parsing.
void declareStepOptions(Options& command, StepOptions& options);

}  // namespace grouptracker
