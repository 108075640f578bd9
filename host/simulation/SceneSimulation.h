#pragma once

#include "host/simulation/SimulationOptions.h"

#include <cstddef>

namespace grouptracker {

/// What a simulation made.
struct SimulationSummary {
  int frames = 0;
  std::size_t persons = 0;  ///< who were in view at some frame
  std::size_t groups = 0;   ///< of which two were in view at once
};

/// Simulates a scene and writes it into the output folder, which is made when absent: the scene
/// (`scene.jsonl`), its camera (`calibration.yml`), its ground (`context.json`), the truth (see
/// `TruthRecorder`) and, when asked for, the frames (`images/000001.png` and so on). The same
/// options give the same bytes. What cannot be written is an `OutputError`.
SimulationSummary simulateScene(const SimulationOptions& options);

}  // namespace grouptracker
