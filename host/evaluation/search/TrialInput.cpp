#include "host/evaluation/search/TrialInput.h"

#include "host/input/InputFormats.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace grouptracker {

namespace {

// People, the mobiles that they list and links, of all frames; some 100 bytes each.
constexpr std::size_t mostHeld = 1024 * 1024;

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

std::size_t sizeOf(const InputFrame& frame) {
  std::size_t size = 1 + frame.fathers.size();
  for (const auto& actor : frame.actors) {
    size += 1 + static_cast<std::size_t>(actor->getLinkedPhysicalObjectList().size());
  }
  return size;
}

/// Null when they are too many.
std::unique_ptr<FrameSource> held(FrameSource& source) {
  std::vector<InputFrame> frames;
  std::size_t size = 0;
  for (InputFrame frame; size < mostHeld && source.next(frame);) {
    size += sizeOf(frame);
    frames.push_back(std::move(frame));
  }
  return size < mostHeld ? std::make_unique<HeldFrames>(std::move(frames)) : nullptr;
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
