#include "host/commands/ExplainCommand.h"

#include "host/base/InputFile.h"
#include "host/explain/Explainer.h"

#include <fmt/format.h>

#include <cstdio>
#include <memory>

namespace grouptracker {

namespace {

const char* const example = R"(Example:
  grouptracker run scene.jsonl --parameters p.txt --output groups.jsonl \
    --diagnostics lines.txt --mobile-dump mobiles.txt
  grouptracker explain lines.txt --group 4 --mobile-dump mobiles.txt)";

}  // namespace

CLI::App* ExplainCommand::declare(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("explain", "Tells why the tracker made the groups of a run");
  command->footer(example);
  command->add_option("DIAGNOSTICS", m_diagnosticsFile, "the diagnostics of a run")->required();
  auto* const what = command->add_option_group("what to explain");
  what->add_option("--group", m_group, "the life of a group")->type_name("G");
  what->add_option("--uncertain", m_uncertain, "the N decisions closest to the threshold")
      ->type_name("N");
  what->require_option(1, 2);
  command->add_option("--frame", m_frame, "of the life only what is about this reported frame")
      ->type_name("F");
  command
      ->add_option("--mobile-dump", m_dumpFile,
                   "the mobile dump of the same run: tells links, shared sons and ancestors")
      ->type_name("FILE");
  command
      ->add_option("--parameters", m_parameterFile,
                   "the parameters, if not at the place that the diagnostics name")
      ->type_name("FILE");
  return command;
}

int ExplainCommand::run() {
  InputFile file(m_diagnosticsFile);
  std::unique_ptr<MobileDump> dump;
  if (!m_dumpFile.empty()) {
    dump = std::make_unique<MobileDump>(m_dumpFile);
  }
  const DecisionLog log = DecisionLog::read(file.stream(), m_diagnosticsFile, dump.get());
  const Explainer explainer(
      log, readCoherenceThreshold(m_parameterFile.empty() ? log.parameterFile() : m_parameterFile));
  if (m_group) {
    const std::string text = explainer.explainGroup(*m_group, m_frame);
    if (text.empty()) {
      throw InputError(m_diagnosticsFile,
                       fmt::format("says nothing about group {}{}", *m_group,
                                   m_frame ? fmt::format(" at frame {}", *m_frame) : ""));
    }
    fmt::print("{}", text);
  }
  if (m_uncertain) {
    fmt::print("{}", explainer.listUncertain(*m_uncertain));
  }
  return finished;
}

}  // namespace grouptracker
