#include "host/input/CvmlReader.h"

#include "host/base/InputError.h"
#include "host/base/InputFile.h"
#include "host/base/TextNumbers.h"
#include "host/base/XmlElements.h"
#include "host/people/ObservationSource.h"

#include <cstdint>
#include <optional>
#include <stdexcept>

namespace grouptracker {

namespace {

constexpr std::int64_t nothing = -1;  // outside of the element, or its number is bad

/// The frame and person between whose marks the reader is.
struct Place {
  std::int64_t frame = nothing;
  std::int64_t person = nothing;
};

cv::Rect2d boxOf(const XmlElements& xml) {
  const double width = xml.number("w");
  const double height = xml.number("h");
  const cv::Rect2d box{xml.number("xc") - width / 2.0, xml.number("yc") - height / 2.0, width,
                       height};
  expectPixels(box);
  return box;
}

void takeStart(const XmlElements& xml, Place& place, ObservationTable& table) {
  if (xml.starts("frame")) {
    place = Place();
    place.frame = wholeNumber(xml.number("number"), largestFrame, "frame number");
    table.cover(place.frame);
  } else if (xml.starts("object")) {
    place.person = nothing;
    place.person = wholeNumber(xml.number("id"), largestPerson, "object id");
  } else if (xml.starts("box") && place.frame != nothing && place.person != nothing) {
    const auto person = static_cast<std::uint32_t>(place.person);
    table.add(place.frame, {person, std::nullopt, boxOf(xml)}, xml.line());
  }
}

}  // namespace

std::unique_ptr<ObservationTable> readCvml(std::istream& in, const std::string& name,
                                           const ProblemHandler& onProblem) {
  auto table = std::make_unique<ObservationTable>(name, onProblem);
  XmlElements xml(in, name);
  Place place;
  while (xml.next()) {
    try {
      takeStart(xml, place, *table);
    } catch (const ValueProblem& problem) {
      onProblem(xml.error(problem.what()));
    }
    if (xml.ends("frame") || xml.ends("object")) {
      place = xml.ends("frame") ? Place() : Place{place.frame, nothing};
    }
  }
  table->finish();
  return table;
}

std::unique_ptr<ObservationTable> readCvml(const std::string& path,
                                           const ProblemHandler& onProblem) {
  InputFile file(path);
  return readCvml(file.stream(), path, onProblem);
}

}  // namespace grouptracker
