#pragma once

#include "host/simulation/SceneSimulation.h"
#include "tests/support/base/Texts.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace grouptracker {

/// A scene that is simulated into a folder of its own and read back.
class SimulatedScene {
 public:
  explicit SimulatedScene(SimulationOptions options);

  const std::filesystem::path& folder() const { return m_folder.path(); }
  std::string text(const std::string& name) const { return textOf(folder() / name); }
  /// The lines of a JSON Lines file.
  std::vector<nlohmann::json> lines(const std::string& name) const;
  /// How many events of a kind there are.
  std::size_t events(const std::string& kind) const;
  std::size_t mobiles() const;

 private:
  TempFolder m_folder;
};

}  // namespace grouptracker
