#include "host/commands/EventsCommand.h"

#include "host/base/FileIdentity.h"
#include "host/base/InputFile.h"
#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"
#include "host/output/EventWriter.h"
#include "host/output/GroupsReader.h"
#include "host/output/LineageGraph.h"
#include "host/run/EventDetector.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

namespace grouptracker {

namespace {

const char* const example = R"(Example:
  grouptracker events groups.jsonl --graph lineage.dot)";

/// Writes event lines to standard output.
class EventPrinter : public StepSink {
 public:
  void write(const ReportedStep& step) override {
    for (const TrackedEvent& event : step.events) {
      std::fputs(toJsonLine(event).c_str(), stdout);
    }
    if (!step.events.empty() && std::fflush(stdout) != 0) {
      throw OutputError("standard output", systemProblem("cannot be written"));
    }
  }
};

using Sinks = std::vector<std::unique_ptr<StepSink>>;

void replay(const std::string& path, const Sinks& sinks) {
  InputFile file(path);
  GroupsReader reader(file.stream(), path);
  EventDetector detector;
  for (ReportedStep step; reader.next(step.groups);) {
    step.events = detector.next(step.groups);
    for (const auto& sink : sinks) {
      sink->write(step);
    }
  }
}

}  // namespace

Options EventsCommand::declare(CommandLine& program) {
  Options command =
      program.addCommand("events", "Tells what happened to the groups of a run", example);
  command.add("GROUPS", m_groupsFile, "the groups file of a run, - for standard input").required();
  command.add("--output", m_outputFile, "the events, JSON Lines, instead of standard output")
      .typeName("FILE");
  command.add("--graph", m_graphFile, "the family tree of the groups, for Graphviz")
      .typeName("FILE");
  return command;
}

int EventsCommand::run() {
  refuseOverwriting({m_outputFile, m_graphFile}, {m_groupsFile});
  Sinks sinks;
  if (m_outputFile.empty()) {
    sinks.push_back(std::make_unique<EventPrinter>());
  } else {
    sinks.push_back(std::make_unique<EventWriter>(m_outputFile));
  }
  if (!m_graphFile.empty()) {
    sinks.push_back(std::make_unique<LineageGraph>(m_graphFile));
  }
  replay(m_groupsFile, sinks);
  for (const auto& sink : sinks) {
    sink->finish();
  }
  return finished;
}

}  // namespace grouptracker
