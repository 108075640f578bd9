#include "tests/support/host/WalkingScene.h"

#include <fmt/format.h>

#include <fstream>

namespace grouptracker {

namespace {

constexpr int persons = 3;

int mobileId(int frame, int person) {
  return 10 * frame + person;
}

std::string mobile(int frame, int person) {
  const double x = person == persons ? 20.0 : 0.5 * person;
  const double y = 0.4 * frame;
  const std::string fathers =
      frame == 1 ? ""
                 : fmt::format(R"({{"id": {}, "reliability": 0.9}})", mobileId(frame - 1, person));
  return fmt::format(
      R"({{"id": {}, "type": "PERSON", "box2d": [{}, {}, 20, 50], )"
      R"("box3d": [{}, {}, 1.7, {}, {}, 0], "position": [{}, {}, 0], "fathers": [{}]}})",
      mobileId(frame, person), 30 * person, 2 * frame, x + 0.25, y + 0.25, x - 0.25, y - 0.25, x, y,
      fathers);
}

std::string actor(int frame, int person) {
  const std::string before = frame == 1 ? "" : fmt::format("{}, ", mobileId(frame - 1, person));
  return fmt::format(R"({{"id": {}, "mobiles": [{}{}]}})", person, before, mobileId(frame, person));
}

}  // namespace

std::string walkingLine(int frame, const std::string& more) {
  std::string mobiles;
  std::string actors;
  for (int person = 1; person <= persons; ++person) {
    const char* const separator = person == 1 ? "" : ", ";
    mobiles.append(separator).append(mobile(frame, person));
    actors.append(separator).append(actor(frame, person));
  }
  return fmt::format("{{{}\"mobiles\": [{}], \"actors\": [{}]}}\n", more, mobiles, actors);
}

std::string walkingScene(int frames) {
  std::string scene;
  for (int frame = 1; frame <= frames; ++frame) {
    scene += walkingLine(frame);
  }
  return scene;
}

std::string sampleParameters(std::map<std::string, std::string> changes, char lineEnd) {
  // What the tests count on, whatever the sample is tuned to.
  changes.insert({{"coherenceThreshold:", "4"},
                  {"temporalWinSize:", "2"},
                  {"temporalWinForRemoval:", "8"},
                  {"maxDistGroupCreation:", "2"},
                  {"imagesFolder:", "images/"}});
  std::ifstream sample(GROUPTRACKER_SAMPLE_PARAMETERS);
  std::string text;
  for (std::string label, value; sample >> label >> value;) {
    const auto change = changes.find(label);
    text += label;
    text += " ";
    text += change == changes.end() ? value : change->second;
    text += lineEnd;
  }
  return text;
}

}  // namespace grouptracker
