#include "host/output/RunReplay.h"

#include <fmt/format.h>

#include <utility>

namespace grouptracker {

void RunReplay::takeInputFrom(FrameSource& input, const std::string& name) {
  m_input = &input;
  m_inputName = name;
}

bool RunReplay::next(RunStep& step) {
  if (!m_reader.next(step)) {
    return false;
  }
  step.events = m_detector.next(step);
  addDecisions(step);
  if (m_input != nullptr && step.inputFrame) {
    findInput(*step.inputFrame);
    addInput(m_inputFrame, step);
  }
  return true;
}

// Both follow the order of the input; a run over some of its frames leaves the others out.
void RunReplay::findInput(std::int64_t number) {
  while (!m_isAtFrame || m_inputFrame.number != number) {
    m_isAtFrame = m_input->next(m_inputFrame);
    if (!m_isAtFrame) {
      throw m_reader.error(fmt::format("frame {} is not in {}", number, m_inputName));
    }
  }
}

void RunReplay::addDecisions(RunStep& step) {
  while (m_nextDecision < m_decisions.size() && m_decisions[m_nextDecision].frame <= step.frame) {
    Decision& decision = m_decisions[m_nextDecision++];
    if (decision.frame == step.frame) {
      step.decisions.push_back(std::move(decision));
    }
  }
}

}  // namespace grouptracker
