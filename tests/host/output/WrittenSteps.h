#pragma once

#include "host/output/RunFile.h"
#include "tests/support/base/Texts.h"

#include <sstream>
#include <string>

namespace grouptracker {

/// The text of the file that a run of these steps leaves.
inline std::string writtenFile(const RunSteps& steps) {
  const TempFolder folder;
  const std::string file = folder.path() / "groups.jsonl";
  RunFileWriter writer(file);
  for (const RunStep& step : steps) {
    writer.write(step);
  }
  return textOf(file);
}

/// The steps in the text of such a file, which is called "g.jsonl" in messages.
inline RunSteps stepsIn(const std::string& text, RunFilePart part = RunFilePart::whole) {
  std::istringstream in(text);
  RunFileReader reader(in, "g.jsonl", part);
  RunSteps steps;
  for (RunStep step; reader.next(step);) {
    steps.push_back(step);
  }
  return steps;
}

}  // namespace grouptracker
