#include "host/explain/Explainer.h"

#include "host/run/ParameterFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

/// "person 3 (mobile 131) and person 6 (mobile 132)".
std::string named(const Decision& decision) {
  std::string text;
  for (std::size_t i = 0; i < decision.mobiles.size(); ++i) {
    text += i == 0 ? "" : " and ";
    text += decision.persons.size() == decision.mobiles.size()
                ? fmt::format("person {} (mobile {})", decision.persons[i], decision.mobiles[i])
                : fmt::format("mobile {}", decision.mobiles[i]);
  }
  return text;
}

std::string sentence(const Decision& decision) {
  switch (decision.kind) {
    case DecisionKind::founded:
      return "founded by the pair of " + named(decision);
    case DecisionKind::foundedByAncestry:
      return "founded by the ancestors of " + named(decision) + ", seen as a group";
    case DecisionKind::foundedByCluster:
      return "founded by the cluster of " + named(decision);
    case DecisionKind::notFounded:
      return "not founded: the ancestors of " + named(decision) + ", seen as a group";
    case DecisionKind::addedByAncestry:
      return named(decision) + " was added because of an ancestor";
    case DecisionKind::notAddedByAncestry:
      return named(decision) + " was not added in spite of an ancestor";
    case DecisionKind::joined:
      return named(decision) + " joined";
    case DecisionKind::left:
      return fmt::format("person {} left", decision.persons.front());
    case DecisionKind::merged:
      return fmt::format("group {} merged into it", *decision.other);
    case DecisionKind::split:
      return fmt::format("split from group {}", *decision.other);
    case DecisionKind::ended:
      return "ended, nobody was found to continue it";
    case DecisionKind::removed:
      return "removed, all its mobiles are forgotten";
  }
  return {};
}

}  // namespace

void Explainer::add(const RunStep& step) {
  m_decisions.insert(m_decisions.end(), step.decisions.begin(), step.decisions.end());
  if (step.inputFrame) {
    m_inputFrames[step.reportedFrame] = *step.inputFrame;
  }
}

std::string Explainer::explainGroup(int group, std::optional<std::int32_t> frame) const {
  std::string text;
  for (const Decision& decision : m_decisions) {
    const bool isHere = !frame || decision.processedFrame == *frame;
    if (decision.group == group && isHere) {
      text += lineOf(decision) + "\n";
    } else if (decision.kind == DecisionKind::merged && decision.other == group && isHere) {
      text += absorbedLineOf(decision) + "\n";
    }
  }
  return text;
}

std::string Explainer::listUncertain(std::size_t count) const {
  std::vector<const Decision*> decisions;
  for (const Decision& decision : m_decisions) {
    if (decision.coherence && std::isfinite(*decision.coherence)) {
      decisions.push_back(&decision);
    }
  }
  std::stable_sort(decisions.begin(), decisions.end(), [this](const auto* a, const auto* b) {
    return std::abs(*a->coherence - m_threshold) < std::abs(*b->coherence - m_threshold);
  });
  std::string text;
  for (std::size_t i = 0; i < std::min(count, decisions.size()); ++i) {
    const auto& group = decisions[i]->group;
    text += (group ? fmt::format("group {}, ", *group) : std::string("no group, ")) +
            lineOf(*decisions[i]) + "\n";
  }
  return text;
}

std::map<std::uint32_t, std::string> Explainer::explainAll() const {
  std::map<std::uint32_t, std::string> texts;
  for (const Decision& decision : m_decisions) {
    if (decision.group) {
      texts[static_cast<std::uint32_t>(*decision.group)] += lineOf(decision) + "\n";
    }
    if (decision.kind == DecisionKind::merged) {
      texts[static_cast<std::uint32_t>(*decision.other)] += absorbedLineOf(decision) + "\n";
    }
  }
  return texts;
}

std::string Explainer::lineOf(const Decision& decision) const {
  return fmt::format("{}: {}{}{}{}", timeOf(decision), sentence(decision), comparison(decision),
                     decision.reason.empty() ? "" : ": ", decision.reason);
}

std::string Explainer::absorbedLineOf(const Decision& decision) const {
  return fmt::format("{}: merged into group {}{}{}", timeOf(decision), *decision.group,
                     decision.reason.empty() ? "" : ": ", decision.reason);
}

std::string Explainer::timeOf(const Decision& decision) const {
  const auto inputFrame = m_inputFrames.find(decision.processedFrame);
  return inputFrame == m_inputFrames.end()
             ? fmt::format("frame {} (decided at {})", decision.processedFrame, decision.frame)
             : fmt::format("frame {} (decided {} frames later)", inputFrame->second,
                           static_cast<std::int64_t>(decision.frame) - decision.processedFrame);
}

std::string Explainer::comparison(const Decision& decision) const {
  if (!decision.coherence) {
    return {};
  }
  std::string text =
      fmt::format(", coherence {:.3f} {} threshold {:g}", *decision.coherence,
                  m_threshold > *decision.coherence ? "below" : "not below", m_threshold);
  if (decision.parts) {
    text += fmt::format(" (distance {:.3f}, speed {:.3f}, direction {:.3f})",
                        decision.parts->distance, decision.parts->speed, decision.parts->direction);
  }
  return text;
}

double readCoherenceThreshold(const std::string& parameterFile) {
  return readValidParameterFile(parameterFile).number("coherenceThreshold:");
}

}  // namespace grouptracker
