#include "host/evaluation/search/TrialInput.h"

#include "host/input/InputFormats.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace grouptracker {

namespace {

constexpr std::size_t mostHeld = 128 * 1024;  // people of all frames; some 100 MB

/// Frames that were read before; they are given away one by one, so that they go as the process
/// lets go of them.
class HeldFrames : public FrameSource {
 public:
  explicit HeldFrames(std::vector<InputFrame> frames) : m_frames(std::move(frames)) {}

  bool next(InputFrame& frame) override {
    if (m_next == m_frames.size()) {
      return false;
    }
    frame = std::move(m_frames[m_next++]);
    return true;
  }

 private:
  std::vector<InputFrame> m_frames;
  std::size_t m_next = 0;
};

/// Null when they are too many.
std::unique_ptr<FrameSource> held(FrameSource& source) {
  std::vector<InputFrame> frames;
  std::size_t people = 0;
  for (InputFrame frame; people < mostHeld && source.next(frame);) {
    people += 1 + static_cast<std::size_t>(frame.actors.size());
    frames.push_back(std::move(frame));
  }
  return people < mostHeld ? std::make_unique<HeldFrames>(std::move(frames)) : nullptr;
}

}  // namespace

void TrialInput::hold() {
  if (std::exchange(m_isTried, true)) {
    return;
  }
  OpenedInput input = openInput(m_path, m_options);
  if (input.hasOwnLinks) {
    input.frames = held(*input.frames);
  }
  if (input.frames && (input.relink || input.hasOwnLinks)) {
    m_held = std::move(input);
  }
}

OpenedInput TrialInput::open(const LinkOptions& links) {
  if (!m_held) {
    InputOptions options = m_options;
    options.links = links;
    return openInput(m_path, options);
  }
  OpenedInput input = *std::exchange(m_held, std::nullopt);
  if (input.relink) {
    input.relink(links);
  }
  return input;
}

}  // namespace grouptracker
