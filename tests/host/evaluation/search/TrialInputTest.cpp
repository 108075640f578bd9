#include "host/base/InputError.h"
#include "host/evaluation/search/TrialInput.h"
#include "host/evaluation/search/WorkerPool.h"
#include "host/input/InputFormats.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

namespace {

/// A number that differs when frames, people or their links do.
double traceOf(FrameSource& frames) {
  double trace = 0.0;
  for (InputFrame frame; frames.next(frame);) {
    trace = 1.5 * trace + static_cast<double>(frame.number + frame.actors.size());
    for (const MobilePointer& mobile : frame.observed) {
      for (const auto& link : mobile->getFatherLinks()) {
        trace += link->getReliability() * link->getFather()->getIdent();
      }
    }
  }
  return trace;
}

/// Two who walk abreast.
std::string walkers(int frames) {
  std::string text;
  for (int frame = 1; frame <= frames; ++frame) {
    const std::string x = std::to_string(0.5 * frame);
    text += std::to_string(frame) + " 1 " + x + " 0 0 1 0 0\n";
    text += std::to_string(frame) + " 2 " + x + " 0 0.8 1 0 0\n";
  }
  return text;
}

class HeldInput : public testing::Test {
 protected:
  /// What trials in processes of their own find, with each of the links.
  std::vector<std::optional<double>> tracesWith(const std::vector<LinkOptions>& links,
                                                TrialInput& input) const {
    std::vector<WorkerPool::Task> tasks;
    for (const LinkOptions& option : links) {
      tasks.emplace_back([&input, &option] { return traceOf(*input.open(option).frames); });
    }
    std::vector<std::optional<double>> traces(tasks.size());
    WorkerPool(1, std::chrono::seconds(60)).run(tasks, [&](std::size_t task, auto trace) {
      traces[task] = trace;
    });
    return traces;
  }
  static std::vector<std::optional<double>> tracesOfFile(const std::string& path,
                                                         const std::vector<LinkOptions>& links) {
    std::vector<std::optional<double>> traces;
    for (const LinkOptions& option : links) {
      InputOptions options;
      options.links = option;
      traces.emplace_back(traceOf(*openInput(path, options).frames));
    }
    return traces;
  }

  TempFolder m_folder;
  std::vector<LinkOptions> m_links{{.ownLinks = 2},
                                   {.neighbourRadius = 0.5},
                                   {.neighbourRadius = 5.0},
                                   {.evidenceStrength = 0.8}};
};

TEST_F(HeldInput, IsReadOnceAndLinkedForEachTrialAsIfItWereReadAgain) {
  const std::string path = m_folder.write("obsmat.txt", walkers(12));
  const auto expected = tracesOfFile(path, m_links);
  EXPECT_NE(expected[1], expected[2]);
  TrialInput input(path, {});
  input.hold();
  std::filesystem::remove(path);
  input.hold();
  EXPECT_EQ(tracesWith(m_links, input), expected);
}

TEST_F(HeldInput, KeepsTheLinksOfAScene) {
  const std::string path = m_folder.write("scene.jsonl", walkingScene(12));
  const auto expected = tracesOfFile(path, {LinkOptions(), LinkOptions()});
  TrialInput input(path, {});
  input.hold();
  std::filesystem::remove(path);
  EXPECT_EQ(tracesWith({LinkOptions(), {.ownLinks = 3}}, input), expected);
}

TEST_F(HeldInput, ThatIsNotKeptIsReadByEachTrial) {
  std::string text;
  for (int frame = 1; frame <= 12; ++frame) {
    text += "{\"frame\": " + std::to_string(frame) +
            ", \"people\": [{\"id\": 1, \"x\": 1, \"y\": 2}, {\"id\": 2, \"x\": 1, \"y\": 2.5}]}\n";
  }
  const std::string path = m_folder.write("people.jsonl", text);
  TrialInput input(path, {});
  input.hold();
  EXPECT_EQ(tracesWith(m_links, input), tracesOfFile(path, m_links));
  std::filesystem::remove(path);
  EXPECT_EQ(tracesWith({LinkOptions()}, input).front(), std::nullopt);
}

TEST_F(HeldInput, TellsWhatIsWrongBeforeAnyTrial) {
  const std::string path = m_folder.write("obsmat.txt", walkers(3) + "4 1 here\n");
  TrialInput input(path, {});
  EXPECT_THROW(input.hold(), InputError);
}

}  // namespace

}  // namespace grouptracker
