#include "host/simulation/SceneSimulation.h"

#include "host/base/Interruption.h"
#include "host/base/OutputFile.h"
#include "host/base/OutputPlace.h"
#include "host/output/SceneWriter.h"
#include "host/output/WholeFile.h"
#include "host/people/TrackAssembler.h"
#include "host/simulation/FrameRenderer.h"
#include "host/simulation/SimulatedSource.h"
#include "host/simulation/SimulatedView.h"
#include "host/simulation/TruthRecorder.h"
#include "tracker/images/ImageCodec.h"

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

void writeContext(const fs::path& path) {
  OutputFile file(path);
  file.writeLines(R"({"elements": [{"kind": "zone", "shape": "polygon",)"
                  R"( "vertices": [[-17, 3, 0], [17, 3, 0], [17, 46, 0], [-17, 46, 0]]}]})"
                  "\n");
}

void writeImage(const fs::path& path, const cv::Mat& image) {
  const std::vector<uchar> bytes = ImageCodec::loaded().encode(".png", image);
  WholeFile(path).write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

SimulationSummary simulateScene(const SimulationOptions& options) {
  const fs::path folder = options.outputFolder;
  makeFolder(options.images ? folder / "images" : folder);
  writeContext(folder / "context.json");

  const SimulatedView view;
  writeCalibration(*view.camera(), folder / "calibration.yml");
  const FrameRenderer renderer(view);
  auto owned = std::make_unique<SimulatedSource>(options, view);
  const SimulatedSource& source = *owned;
  TrackAssembler assembler(std::move(owned), view.camera(), LinkOptions());
  SceneWriter scene(folder / "scene.jsonl");
  TruthRecorder truth(folder);
  if (options.seconds) {
    scene.keepNumbers();
  }
  InputFrame frame;
  while (assembler.next(frame)) {
    LongWork::step();
    if (options.images) {
      frame.imageFile = fmt::format("images/{:06}.png", source.frame());
      writeImage(folder / frame.imageFile, renderer.render(source.inView()));
    }
    if (options.seconds) {
      frame.time = source.time();
    }
    scene.write(frame);
    truth.write({source.frame(), source.time()}, source.tracked(), source.events());
  }
  truth.finish();
  return {options.totalFrames(), truth.persons(), truth.groups()};
}

}  // namespace grouptracker
