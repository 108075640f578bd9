#include "tracker/display/GroupExtension.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Numbering.h"

#include <algorithm>
#include <cmath>
#include <dirent.h>
#include <memory>
#include <utility>

std::string GroupExtension::imagesFolder;
std::string GroupExtension::fileFormat;
int GroupExtension::firstImage = 0;
bool GroupExtension::saveOutput = false;
std::string GroupExtension::outputFolder;
bool GroupExtension::extDisplayOn = false;
bool GroupExtension::openCVOutput = false;
int GroupExtension::numDigits = 10;

namespace {

/// The first name in the folder that contains the text, in the order in which the system lists
/// them; the last name listed when none does.
std::string findName(DIR* folder, const std::string& text) {
  std::string name;
  while (const dirent* entry = readdir(folder)) {
    name = static_cast<const char*>(entry->d_name);
    if (name.find(text) != std::string::npos) {
      break;
    }
  }
  return name;
}

/// The number in the image names of a frame, padded with zeros.
std::string imageNumber(int frame) {
  const int number = frame + GroupExtension::firstImage - 1;
  std::string text;
  for (int k = GroupExtension::numDigits - 1; k >= 1; --k) {
    if (std::pow(10.0, k) > number) {
      text += '0';
    }
  }
  return text + std::to_string(number);
}

}  // namespace

// Nothing is taken over, so there is nothing to name.
GroupExtension::GroupExtension(const GroupExtension& /*other*/) : GroupExtension() {}

void GroupExtension::init() {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(imagesFolder.c_str()), closedir);
  if (folder == nullptr) {
    Diagnostics::print("Error opening {}\n", imagesFolder);
    return;
  }
  const std::string name = findName(folder.get(), fileFormat);
  if (name.empty()) {
    return;
  }
  // Without images the name may be as short as that of the folder itself.
  numDigits = static_cast<int>(name.size() - std::min(name.size(), fileFormat.size()));
  Diagnostics::print("Images of {} caracters\n", numDigits);
}

QString GroupExtension::getImageFileName(int i) const {
  const std::string name = imagesFolder + imageNumber(i) + fileFormat;
  Diagnostics::print("input image {}\n", name);
  return QString::fromStdString(name);
}

QString GroupExtension::getOutputImageFileName(int i) const {
  return QString::fromStdString(outputImageName(i));
}

std::string GroupExtension::outputImageName(int i) {
  return outputFolder + imageNumber(i) + "_output" + fileFormat;
}

void GroupExtension::setCenters(std::vector<int> pixels) {
  m_centers = std::move(pixels);
}

void GroupExtension::setSuddenPoints(std::vector<int> pixels) {
  m_suddenPoints = std::move(pixels);
}

void GroupExtension::resetBboxes() {
  m_bboxes.clear();
  m_inclBboxes.clear();
}

void GroupExtension::resetGroups() {
  m_displayGroups.clear();
}

void GroupExtension::addBbox(const cv::Rect& r, unsigned int ident) {
  m_bboxes.push_back(toBbox(r, ident));
}

void GroupExtension::addInclBbox(const cv::Rect& r, unsigned int ident) {
  m_inclBboxes.push_back(toBbox(r, ident));
}

void GroupExtension::drawGroups(std::list<DisplayGroup> groups) {
  m_displayGroups = std::move(groups);
}

GroupExtension::Bbox GroupExtension::toBbox(const cv::Rect& r, unsigned int ident) {
  return {r.x, r.y, r.x + r.width - 1, r.y + r.height - 1, static_cast<int>(ident)};
}

int GroupExtension::drawnFrame() const {
  return delayed(static_cast<unsigned int>(m_frameNumber));
}
