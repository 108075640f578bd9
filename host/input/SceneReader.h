#pragma once

#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/input/MobileStore.h"
#include "host/input/SceneLineParser.h"
#include "host/people/ActorMaker.h"
#include "host/people/InputFrame.h"

#include <kel/kelAbstractDataCalibration.h>

#include <QSharedPointer>

#include <cstddef>
#include <filesystem>
#include <istream>
#include <memory>
#include <string>

namespace grouptracker {

/// Reads a scene: one JSON object a line and frame, see `SceneLineParser`; blank lines are passed
/// over. Lines are taken as they arrive, so that a live tracker can be piped in; memory does not
/// grow with the number of frames or ids. Boxes and positions that a mobile leaves out are derived
/// from its image box with the calibration. Beside the errors of the parser, an id declared twice
/// in a frame, a frame number or time that does not grow from line to line, a name for an id that
/// was never declared and an actor whose last mobile is not of its frame are an `InputError`,
/// behind which the next line may be read all the same.
class SceneReader : public FrameSource {
 public:
  using Calibration = QSharedPointer<kelAbstractDataCalibration>;

  /// `name` is the input's name in messages; image names are relative to `imageFolder`. The
  /// calibration may be null. The stream must outlive the reader.
  SceneReader(std::istream& in, const std::string& name, std::filesystem::path imageFolder,
              Calibration calibration, std::size_t window = MobileStore::defaultWindow);
  /// Opens a file, or standard input with the path "-".
  SceneReader(const std::string& path, Calibration calibration);

  /// For a stream of which lines may be lost, that may have begun long ago and whose sender may
  /// start anew: what names a mobile that was not declared is left out, and several lines in a row
  /// with earlier numbers or times are a new beginning. Since it has no end, mobiles of long ago
  /// are forgotten. To be said before the first frame.
  void surviveLosses();
  /// From the next frame on frames come with plans for their actors instead of these, for somebody
  /// who gets each of them and makes the actors on another thread.
  void planActors();
  /// For those who want to know where everybody is and no more: mobiles come without links, actors
  /// with their current mobile only. To be said before the first frame.
  void readPlacesOnly();
  /// A line with more actors is wrong.
  void limitPeople(std::size_t most) { m_mostPeople = most; }

  bool next(InputFrame& frame) override;
  std::optional<std::uint64_t> totalFrames() override;

 private:
  void read(InputFrame& frame);
  void countFrame(InputFrame& frame);
  bool isNewBeginning(const InputFrame& frame);
  void observe(const SceneMobile& mobile, InputFrame& frame);
  QSharedPointer<kelDataPhysicalObject> physicalObject(const SceneMobile& mobile) const;
  void linkFathers(const SceneMobile& mobile, InputFrame& frame);
  ActorPlan plan(const SceneActor& actor);
  void refuseRepeatedActors() const;

  std::string m_path;                 ///< empty when reading from somebody else's stream
  std::unique_ptr<InputFile> m_file;  ///< null when reading from somebody else's stream
  LineReader m_lines;
  SceneLineParser m_parser;
  std::filesystem::path m_imageFolder;
  Calibration m_calibration;
  bool m_survivesLosses = false;
  bool m_readsWholeLists = false;  ///< since ids may name other mobiles than before
  std::optional<std::size_t> m_mostPeople;
  MobileStore m_mobiles;
  std::optional<ActorMaker> m_actors = ActorMaker();  ///< none when actors are only planned
  SceneLine m_scene;                                  ///< the current line, kept for its buffers
  std::int64_t m_frames = 0;                          ///< lines with a frame
  std::optional<std::int64_t> m_lastNumber;           ///< of the frame before
  std::optional<double> m_lastTime;                   ///< the latest that a line gave, seconds
  int m_earlier = 0;  ///< lines in a row that were earlier than these
};

}  // namespace grouptracker
