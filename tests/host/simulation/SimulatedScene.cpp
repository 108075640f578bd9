#include "tests/host/simulation/SimulatedScene.h"

#include <sstream>

namespace grouptracker {

SimulatedScene::SimulatedScene(SimulationOptions options) {
  options.outputFolder = folder();
  simulateScene(options);
}

std::vector<nlohmann::json> SimulatedScene::lines(const std::string& name) const {
  std::vector<nlohmann::json> parsed;
  std::istringstream in(text(name));
  for (std::string line; std::getline(in, line);) {
    parsed.push_back(nlohmann::json::parse(line));
  }
  return parsed;
}

std::size_t SimulatedScene::events(const std::string& kind) const {
  std::size_t count = 0;
  for (const auto& event : lines("events.jsonl")) {
    count += event["event"] == kind ? 1 : 0;
  }
  return count;
}

std::size_t SimulatedScene::mobiles() const {
  std::size_t count = 0;
  for (const auto& frame : lines("scene.jsonl")) {
    count += frame["mobiles"].size();
  }
  return count;
}

}  // namespace grouptracker
