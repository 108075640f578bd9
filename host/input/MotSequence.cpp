#include "host/input/MotSequence.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/LineReader.h"
#include "host/base/TextNumbers.h"

#include <filesystem>
#include <stdexcept>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

constexpr double longestSequence = 1e7;         // frames
constexpr double largestImage = 1e5;            // pixels wide or high
constexpr std::size_t longestLine = 64 * 1024;  // bytes

struct Entry {
  std::string key;
  std::string value;
};

Entry splitEntry(const std::string& line) {
  const auto trimmed = [](const std::string& text) {
    const auto begin = text.find_first_not_of(" \t");
    const auto end = text.find_last_not_of(" \t");
    return begin == std::string::npos ? std::string() : text.substr(begin, end + 1 - begin);
  };
  const auto equals = line.find('=');
  return equals == std::string::npos
             ? Entry()
             : Entry{trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))};
}

std::string existing(const fs::path& folder, std::initializer_list<const char*> names) {
  for (const char* const name : names) {
    if (fs::exists(folder / name)) {
      return folder / name;
    }
  }
  return folder / *names.begin();
}

}  // namespace

SequenceInfo readSequenceInfo(std::istream& in, const std::string& name) {
  SequenceInfo info;
  cv::Size size;
  LineReader lines(in, name, longestLine);
  while (lines.nextFilled()) {
    const Entry entry = splitEntry(lines.line());
    const auto whole = [&](double largest) {
      return wholeNumber(parseNumber(entry.value), largest, entry.key.c_str());
    };
    try {
      if (entry.key == "imDir") {
        info.imageFolder = entry.value;
        info.namesImages = true;
      } else if (entry.key == "imExt") {
        info.imageExtension = entry.value;
      } else if (entry.key == "seqLength") {
        info.length = whole(longestSequence);
      } else if (entry.key == "frameRate") {
        const double rate = parseNumber(entry.value);
        info.rate = rate > 0.0 ? std::optional(rate) : std::nullopt;
      } else if (entry.key == "imWidth") {
        size.width = static_cast<int>(whole(largestImage));
      } else if (entry.key == "imHeight") {
        size.height = static_cast<int>(whole(largestImage));
      }
    } catch (const ValueProblem& problem) {
      throw lines.error(problem.what());
    }
  }
  if (size.width > 0 && size.height > 0) {
    info.imageSize = size;
  }
  return info;
}

bool MotSequence::isOne(const std::string& folder) {
  return fs::exists(fs::path(folder) / "seqinfo.ini");
}

MotSequence::MotSequence(const std::string& folder)
    : m_folder(folder),
      m_infoFile(fs::path(folder) / "seqinfo.ini"),
      m_trackFile(existing(folder, {"gt/gt.txt", "det/det.txt"})) {
  InputFile file(m_infoFile);
  m_info = readSequenceInfo(file.stream(), m_infoFile);
}

std::optional<std::string> MotSequence::missingImages() const {
  const fs::path images = fs::path(m_folder) / m_info.imageFolder;
  if (!m_info.namesImages || fs::is_directory(images)) {
    return std::nullopt;
  }
  return "imDir: there is no folder " + images.string() + ", so frames have no images";
}

std::unique_ptr<ObservationTable> MotSequence::read(const MotChoice& choice,
                                                    const ProblemHandler& onProblem) const {
  auto table = readMot(m_trackFile, choice, onProblem);
  if (m_info.length > 0) {
    table->cover(1);
    table->cover(m_info.length);
  }
  const fs::path images = fs::path(m_folder) / m_info.imageFolder;
  if (fs::is_directory(images)) {
    table->setImages(images, m_info.imageExtension);
  }
  table->finish();
  return table;
}

}  // namespace grouptracker
