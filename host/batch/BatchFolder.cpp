#include "host/batch/BatchFolder.h"

#include "host/base/FileDescriptor.h"
#include "host/base/OutputPlace.h"
#include "host/batch/WorkFolder.h"
#include "host/input/ObsmatReader.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

const char* const resultName = "result.json";

/// Has what was written last a failing power supply.
void sync(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen() || (::fsync(file.get()) != 0 && errno != EINVAL)) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
}

void syncAll(const std::string& folder) {
  for (const fs::directory_entry& item : fs::recursive_directory_iterator(folder)) {
    sync(item.path());
  }
}

FileMarks marksIn(const std::string& work) {
  FileMarks marks;
  for (const fs::directory_entry& item : fs::directory_iterator(work)) {
    marks.push_back(FileMark::of(item.path()));
    marks.back().path = item.path().filename();
  }
  std::sort(marks.begin(), marks.end(),
            [](const FileMark& a, const FileMark& b) { return a.path < b.path; });
  return marks;
}

bool hold(const FileMarks& marks, const std::string& folder) {
  return std::all_of(marks.begin(), marks.end(),
                     [&folder](const FileMark& mark) { return mark.holdsIn(folder); });
}

/// Outputs that an earlier run had and this one has not.
void removeOthers(const FileMarks& earlier, const FileMarks& now, const fs::path& place) {
  for (const FileMark& mark : earlier) {
    const auto isSame = [&mark](const FileMark& other) { return other.path == mark.path; };
    if (std::none_of(now.begin(), now.end(), isSame)) {
      fs::remove_all(place / fs::path(mark.path).filename());
    }
  }
}

}  // namespace

BatchFolder::BatchFolder(const std::string& path, const std::string& inputs,
                         const std::string& program)
    : m_path(fs::absolute(path).lexically_normal()),
      m_inputs(fs::absolute(inputs).lexically_normal()),
      m_program(program) {}

void BatchFolder::prepare() const {
  makeFolder(fs::path(m_path) / "recordings");
  makeFolder(fs::path(m_path) / ".work");
  WorkFolder::removeLeft(fs::path(m_path) / ".work");
}

std::string BatchFolder::placeOf(const std::string& name) const {
  return fs::path(m_path) / "recordings" / name;
}

std::string BatchFolder::newWork(const std::string& name) const {
  return WorkFolder::newPath(fs::path(m_path) / ".work", name);
}

std::vector<std::string> BatchFolder::requestOf(const Recording& recording,
                                                const std::vector<std::string>& wishes) const {
  std::vector<std::string> request{m_program, recording.input, recording.truth};
  const std::vector<std::string> options = recording.options(".");
  request.insert(request.end(), options.begin(), options.end());
  request.insert(request.end(), wishes.begin(), wishes.end());
  return request;
}

std::optional<RecordingResult> BatchFolder::resultOf(const Recording& recording,
                                                     const std::vector<std::string>& wishes) const {
  const std::string place = placeOf(recording.name);
  auto result = RecordingResult::read(fs::path(place) / resultName);
  const bool isOfThis = result && result->request == requestOf(recording, wishes) &&
                        hold(result->inputs, m_inputs) && hold(result->outputs, place);
  return isOfThis ? result : std::nullopt;
}

RecordingResult BatchFolder::begin(const Recording& recording,
                                   const std::vector<std::string>& wishes) const {
  RecordingResult result;
  result.request = requestOf(recording, wishes);
  std::vector<std::string> files = recording.filesRead();
  const fs::path beside = homographyBeside(fs::path(m_inputs) / recording.input);
  if (!beside.empty()) {  // also where it is not there: it may come
    files.push_back(fs::path(recording.input).is_absolute() ? beside
                                                            : beside.lexically_relative(m_inputs));
  }
  for (const std::string& file : files) {
    result.inputs.push_back(FileMark::of(fs::path(m_inputs) / file));
    result.inputs.back().path = file;
  }
  return result;
}

void BatchFolder::finish(const std::string& name, const std::string& work,
                         RecordingResult result) const {
  const fs::path place = placeOf(name);
  const auto earlier = RecordingResult::read(place / resultName);
  if (!result.isDone && earlier && earlier->isDone && earlier->isOfSame(result) &&
      hold(earlier->outputs, place)) {
    WorkFolder::remove(work);
    return;
  }
  makeFolder(work);
  makeFolder(place);
  syncAll(work);
  result.outputs = marksIn(work);
  removeOthers(earlier ? earlier->outputs : FileMarks(), result.outputs, place);
  for (const FileMark& mark : result.outputs) {
    const fs::path made = fs::path(work) / mark.path;
    const fs::path earlierOne = place / mark.path;
    // Only a file gives way by itself, and to a file only.
    if (fs::is_directory(earlierOne) || fs::is_directory(made)) {
      fs::remove_all(earlierOne);
    }
    fs::rename(made, earlierOne);
  }
  sync(place);
  result.write(place / resultName);
  sync(place);
  WorkFolder::remove(work);
}

}  // namespace grouptracker
