#include "host/base/InputError.h"
#include "host/batch/ManifestReader.h"
#include "host/camera/CalibrationReader.h"
#include "host/camera/GroundPlaneCalibration.h"
#include "host/camera/TsaiCalibration.h"
#include "host/evaluation/TruthReader.h"
#include "host/explain/DecisionLog.h"
#include "host/explain/Explainer.h"
#include "host/explain/MobileDump.h"
#include "host/grouping/EvidenceModel.h"
#include "host/input/CvmlReader.h"
#include "host/input/MotReader.h"
#include "host/input/MotSequence.h"
#include "host/input/ObsmatReader.h"
#include "host/input/SceneContextReader.h"
#include "host/input/SceneReader.h"
#include "host/input/TableReader.h"
#include "host/live/ArrivingPeople.h"
#include "host/live/MessageMap.h"
#include "host/live/PeopleMessage.h"
#include "host/output/RunReplay.h"
#include "host/people/InputFrame.h"
#include "host/people/ObservationSource.h"
#include "host/people/TrackAssembler.h"
#include "host/run/ParameterFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ios>
#include <istream>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace grouptracker {

namespace {

/// The name under which readers know the fuzzed bytes.
const char* const fuzzedName = "fuzzed";

// To the end, however many empty frames fill a gap: what takes for ever there is a fault, too.
void readAll(FrameSource& source) {
  InputFrame frame;
  while (source.next(frame)) {
  }
}

void readAll(ObservationSource& source) {
  ObservationStep step;
  while (source.next(step)) {
  }
}

QSharedPointer<GroundPlaneCalibration> camera() {
  static const auto camera = QSharedPointer<GroundPlaneCalibration>::create(
      cv::Matx33d(0.02, 0, -7, 0, -0.03, 14, 0, -0.0005, 1), cv::Point3d(0, 0, 6));
  return camera;
}

void readScene(std::istream& in) {
  SceneReader scene(in, fuzzedName, {}, camera());
  readAll(scene);
}

void readObsmatFrames(std::istream& in) {
  TrackAssembler frames(readObsmat(in, fuzzedName), nullptr, LinkOptions());
  readAll(frames);
}

void readTracks(std::istream& in) {
  const TrackRecording recording = readTable(in, fuzzedName, TableChoice());
  readAll(*recording.people);
}

void readBoxes(std::istream& in) {
  auto people = readMot(in, fuzzedName, MotChoice());
  people->finish();
  TrackAssembler frames(std::move(people), camera(), LinkOptions());
  readAll(frames);
}

/// The reader wants a file's name; this one lies in memory.
void readCalibrationFile(std::istream& in) {
  static const int file = ::memfd_create(fuzzedName, 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  std::ofstream(path, std::ios::binary | std::ios::trunc) << in.rdbuf();
  readCalibration(path);
}

void readTsai(std::istream& in) {
  const TsaiCalibration tsai(readTsaiCamera(in, fuzzedName));
  tsai.worldToImage(tsai.imageToWorld({100, 200}, 0.0));
}

void readDiagnostics(std::istream& in) {
  constexpr double threshold = 4.0;
  Explainer explainer(threshold);
  for (const RunStep& step : DecisionLog::read(in, fuzzedName, nullptr).steps()) {
    explainer.add(step);
  }
  explainer.explainAll();
}

void readDump(std::istream& in) {
  MobileDump dump(in, fuzzedName);
  for (const std::uint32_t frame : {1U, 2U, 24U, 4294967295U}) {
    dump.at(frame);
  }
}

void readGroups(std::istream& in) {
  RunReplay run(in, fuzzedName);
  for (RunStep step; run.next(step);) {
  }
}

void readTruthLines(std::istream& in) {
  in.peek() == '{' ? readGroupsPerFrame(in, fuzzedName) : readGroupLists(in, fuzzedName);
}

/// Reads all messages, also behind those that are wrong, and puts them in order.
void readMessages(std::istream& in) {
  JsonMessages messages(in, fuzzedName, MessageMap(), true);
  ReorderBuffer order(0.1);
  ReorderBuffer::Clock::time_point now;
  const auto handOut = [&order] {
    for (ObservationStep step; order.next(step);) {
    }
  };
  for (bool isThere = true; isThere;) {
    try {
      PeopleMessage message;
      isThere = messages.next(message);
      if (isThere) {
        order.add(std::move(message), now);
      }
    } catch (const InputError&) {
      now += std::chrono::milliseconds(60);
      order.expire(now);
    }
    handOut();
  }
  order.finish();
  handOut();
}

void readMap(std::istream& in) {
  PeopleMessageParser parser(MessageMap::read(in, fuzzedName), false);
  try {
    parser.parse(R"({"time": 1, "frame": 2, "people": [{"id": 3, "x": 4, "y": 5, "box": [6]}]})");
  } catch (const ValueProblem&) {
    return;  // the map does not fit
  }
}

/// A manifest is read by its name, which tells the format; the files go with the program.
class ManifestPlace {
 public:
  ManifestPlace()
      : m_folder(std::filesystem::temp_directory_path() /
                 ("grouptracker-fuzz-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(m_folder);
  }
  ManifestPlace(const ManifestPlace&) = delete;
  ManifestPlace& operator=(const ManifestPlace&) = delete;
  ~ManifestPlace() { std::filesystem::remove_all(m_folder); }

  std::string write(const char* name, std::istream& in) const {
    std::ofstream(m_folder / name, std::ios::binary) << in.rdbuf();
    return m_folder / name;
  }

 private:
  std::filesystem::path m_folder;
};

/// As TOML when it begins like that, so that the corpus is what people write.
void readManifest(std::istream& in) {
  static const ManifestPlace place;
  const bool isToml = in.peek() == '[' || in.peek() == '#';
  const auto reader = ManifestReader::open(
      place.write(isToml ? "manifest.toml" : "manifest.csv", in), [](const InputError&) {});
  for (ManifestEntry entry; reader->next(entry);) {
  }
}

struct Reader {
  std::string_view name;  ///< of its corpus, too
  void (*read)(std::istream& in);
};

const std::array readers{
    Reader{"scene", readScene},
    Reader{"obsmat", readObsmatFrames},
    Reader{"table", readTracks},
    Reader{"mot", readBoxes},
    Reader{"sequence", [](std::istream& in) { readSequenceInfo(in, fuzzedName); }},
    Reader{"cvml", [](std::istream& in) { readAll(*readCvml(in, fuzzedName)); }},
    Reader{"calibration", readCalibrationFile},
    Reader{"tsai", readTsai},
    Reader{"context", [](std::istream& in) { readSceneContext(in, fuzzedName); }},
    Reader{"homography",
           [](std::istream& in) { readHomography(in, fuzzedName, ImageOrder::rowColumn); }},
    Reader{"parameters", [](std::istream& in) { readParameterFile(in, fuzzedName); }},
    Reader{"diagnostics", readDiagnostics},
    Reader{"dump", readDump},
    Reader{"groups", readGroups},
    Reader{"truth", readTruthLines},
    Reader{"model", [](std::istream& in) { EvidenceModel::read(in, fuzzedName).text(); }},
    Reader{"messages", readMessages},
    Reader{"map", readMap},
    Reader{"manifest", readManifest},
};

const Reader* chosen = nullptr;

}  // namespace

/// Takes the name of the reader, the first argument, from what the fuzzer is told.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  const std::string_view name = *argc > 1 ? (*argv)[1] : "";
  chosen = std::find_if(readers.begin(), readers.end(),
                        [name](const Reader& reader) { return reader.name == name; });
  if (chosen == readers.end()) {
    std::fputs("which reader? Their names are those of the folders in fuzz/corpus\n", stderr);
    std::exit(2);
  }
  (*argv)[1] = (*argv)[0];
  ++*argv;
  --*argc;
  return 0;
}

/// Gives the bytes to the reader as a stream. Saying that the input is bad is all that a reader may
/// do about it; anything else that leaves it ends the fuzzing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  in.exceptions(std::ios::badbit);
  try {
    chosen->read(in);
  } catch (const InputError&) {
    return 0;
  }
  return 0;
}

}  // namespace grouptracker
