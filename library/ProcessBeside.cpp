#include "library/ProcessBeside.h"

#include "host/base/InputError.h"
#include "tracker/plugin/GroupTrackerProcessGroupTracker.h"

#include <QString>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace grouptracker {

namespace {

/// A text that is written like a file.
class TextFile {
 public:
  TextFile() : m_file(::open_memstream(&m_text, &m_size)) {}
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() {
    std::fclose(m_file);
    std::free(m_text);
  }

  std::FILE* file() { return m_file; }
  std::string text() {
    std::fflush(m_file);
    return {m_text, m_size};
  }

 private:
  char* m_text = nullptr;
  std::size_t m_size = 0;
  std::FILE* m_file;
};

TrackerRunOptions optionsOf(const RunParameters& parameters) {
  TrackerRunOptions options;
  options.parameterFile = parameters.file();
  options.delay = parameters.values().delay;
  options.dumpsMobiles = false;
  const QString problem = GroupTrackerProcessGroupTracker::parameterProblem(
      QString::fromStdString(options.parameterFile));
  if (!problem.isEmpty()) {
    throw InputError(options.parameterFile, problem.toStdString());
  }
  return options;
}

}  // namespace

ProcessBeside::ProcessBeside(const RunParameters& parameters,
                             const QSharedPointer<kelAbstractDataCalibration>& calibration,
                             Hear hear)
    : m_statics(parameters.values().values), m_hear(std::move(hear)) {
  TrackerRunOptions options = optionsOf(parameters);
  options.calibration = calibration;
  options.printsDiagnostics = static_cast<bool>(m_hear);
  work([&] {
    // What cannot be configured ends in here, among its own statics.
    auto run = std::make_unique<TrackerRun>(std::make_unique<GroupTrackerProcessGroupTracker>());
    run->configure(options);
    m_run = std::move(run);
  });
}

// Its end prints nothing, but others may be at work.
ProcessBeside::~ProcessBeside() {
  const OwnStatics::Use use(m_statics, nullptr);
  m_run.reset();
}

RunStep ProcessBeside::advance(const InputFrame& frame) {
  RunStep step;
  work([&] { step = m_run->advance(frame); });
  return step;
}

/// Text is handed over when others may work again, since whoever hears it may call anything.
template <typename Action>
void ProcessBeside::work(const Action& action) {
  if (!m_hear) {
    const OwnStatics::Use use(m_statics, nullptr);
    action();
    return;
  }
  TextFile printed;
  {
    const OwnStatics::Use use(m_statics, printed.file());
    action();
  }
  m_hear(printed.text());
}

}  // namespace grouptracker
