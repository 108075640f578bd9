#include "host/camera/PeopleCamera.h"

#include "host/camera/PeopleCameraModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <random>
#include <set>

namespace grouptracker {

namespace {

constexpr std::size_t fewestBoxes = 40;
constexpr std::size_t fewestPeople = 4;
constexpr std::size_t mostBoxes = 2000;  // in the refinement
constexpr double borderMargin = 3.0;     // pixels; a box that near to the border may be cut
constexpr double lowestBox = 8.0;        // pixels
constexpr double narrowestBox = 0.15;    // width by height of a person who stands
constexpr double widestBox = 0.8;
constexpr double leastGrowth = 1.25;   // of heights from the farthest people to the nearest
constexpr double fewestInliers = 0.5;  // share
constexpr double tightestBand = 0.05;  // share of the height by which a box may always differ
constexpr double usualLens = 1.0;      // focal length by the image's longer side

/// The height of a box as a linear function of its foot: gradient * foot + offset.
struct LinearHeights {
  cv::Point2d gradient;
  double offset = 0.0;

  double at(const cv::Point2d& foot) const { return gradient.dot(foot) + offset; }
};

bool isWhole(const cv::Rect2d& box, const cv::Size& image) {
  const double shape = box.width / std::max(box.height, 1.0);
  return box.height >= lowestBox && shape >= narrowestBox && shape <= widestBox &&
         box.x >= borderMargin && box.y >= borderMargin &&
         box.x + box.width <= image.width - borderMargin &&
         box.y + box.height <= image.height - borderMargin;
}

StandingPerson standing(const cv::Rect2d& box, const cv::Size& image) {
  return {{box.x + (box.width - image.width) / 2.0, box.y + box.height - image.height / 2.0},
          box.height};
}

double misfit(const LinearHeights& heights, const StandingPerson& person) {
  return std::abs(heights.at(person.foot) / person.height - 1.0);
}

std::optional<LinearHeights> through(const StandingPerson& a, const StandingPerson& b,
                                     const StandingPerson& c) {
  const cv::Matx33d feet(a.foot.x, a.foot.y, 1.0, b.foot.x, b.foot.y, 1.0, c.foot.x, c.foot.y, 1.0);
  if (std::abs(cv::determinant(feet)) < 1.0) {
    return std::nullopt;
  }
  const cv::Matx31d solution = feet.solve(cv::Matx31d(a.height, b.height, c.height));
  return LinearHeights{{solution(0), solution(1)}, solution(2)};
}

/// Least median of squares over random triples.
LinearHeights fitHeights(const std::vector<StandingPerson>& people, double& spread) {
  constexpr int trials = 500;
  std::mt19937 random(1);  // the same camera every time
  const auto any = [&] { return people[random() % people.size()]; };
  LinearHeights best;
  spread = std::numeric_limits<double>::infinity();
  std::vector<double> misfits(people.size());
  for (int i = 0; i < trials; ++i) {
    const auto heights = through(any(), any(), any());
    if (!heights) {
      continue;
    }
    std::transform(people.begin(), people.end(), misfits.begin(),
                   [&](const StandingPerson& person) { return misfit(*heights, person); });
    const double middle = median(misfits);
    if (middle < spread) {
      spread = middle;
      best = *heights;
    }
  }
  return best;
}

/// Every n-th item, so that at most `most` are left.
template <typename Item>
std::vector<Item> thinned(const std::vector<Item>& items, std::size_t most) {
  std::vector<Item> some;
  const std::size_t stride = items.size() / most + 1;
  for (std::size_t i = 0; i < items.size(); i += stride) {
    some.push_back(items[i]);
  }
  return some;
}

std::vector<StandingPerson> inliersOf(const std::vector<StandingPerson>& people,
                                      const LinearHeights& heights, double spread) {
  constexpr double spreads = 2.5 * 1.4826;  // standard deviations, by the median
  const double band = std::max(tightestBand, spreads * spread);
  std::vector<StandingPerson> inliers;
  std::copy_if(people.begin(), people.end(), std::back_inserter(inliers),
               [&](const StandingPerson& person) { return misfit(heights, person) <= band; });
  return inliers;
}

void refuseTooFew(std::size_t boxes, std::size_t people) {
  if (boxes < fewestBoxes || people < fewestPeople) {
    throw NoPeopleCamera(fmt::format(
        "only {} whole boxes of {} people can be used; at least {} boxes of {} people are needed",
        boxes, people, fewestBoxes, fewestPeople));
  }
}

void refuseFlatView(const std::vector<StandingPerson>& inliers, const LinearHeights& heights) {
  std::vector<double> sizes;
  sizes.reserve(inliers.size());
  for (const StandingPerson& person : inliers) {
    sizes.push_back(heights.at(person.foot));
  }
  std::sort(sizes.begin(), sizes.end());
  const double growth = sizes[sizes.size() * 95 / 100] / sizes[sizes.size() * 5 / 100];
  if (!(growth >= leastGrowth)) {
    throw NoPeopleCamera(fmt::format(
        "all people are at about one distance (the nearest appear only {:.2f} times as high as the "
        "farthest), which does not tell how the camera is tilted",
        growth));
  }
  if (heights.gradient.y <= 0.0) {
    throw NoPeopleCamera(
        "people lower in the image do not appear higher, so this is no view of people on a ground");
  }
}

/// Strides over one time for all, so long that a walker covers about half a body's height; some
/// walkers stand, and are left out.
std::vector<std::vector<Stride>> stridesOf(const std::vector<PersonBox>& boxes,
                                           const cv::Size& image) {
  constexpr std::int64_t longest = 64;  // steps
  constexpr double farEnough = 0.4;     // body heights in the image
  constexpr std::size_t fewest = 3;
  std::map<std::uint32_t, std::map<std::int64_t, StandingPerson>> tracks;
  for (const PersonBox& box : boxes) {
    tracks[box.person][box.step] = standing(box.box, image);
  }
  for (std::int64_t gap = 1; gap <= longest; gap *= 2) {
    std::vector<std::vector<Stride>> walkers;
    std::vector<double> lengths;
    for (const auto& [person, track] : tracks) {
      std::vector<Stride> strides;
      std::int64_t free = track.begin()->first;
      for (const auto& [step, from] : track) {
        const auto to = track.find(step + gap);
        if (step < free || to == track.end()) {
          continue;
        }
        strides.push_back({from.foot, to->second.foot});
        lengths.push_back(cv::norm(to->second.foot - from.foot) / from.height);
        free = step + gap;
      }
      if (strides.size() >= fewest) {
        walkers.push_back(std::move(strides));
      }
    }
    if (!lengths.empty() && median(lengths) >= farEnough) {
      return walkers;
    }
  }
  return {};
}

/// The upright camera with that focal length under which heights grow as in the linear fit.
UprightCamera startFrom(const LinearHeights& heights, double focal, double bodyHeight) {
  const double growth = std::hypot(heights.gradient.x, heights.gradient.y);
  UprightCamera camera;
  camera.logFocal = std::log(focal);
  camera.roll = std::atan2(heights.gradient.x, heights.gradient.y);
  camera.tilt = std::atan(heights.offset / growth / focal);
  camera.logHeight = std::log(bodyHeight / growth * std::cos(camera.tilt));
  return camera;
}

RefinedCamera refine(const WalkingPeople& people, const LinearHeights& heights) {
  constexpr std::array<double, 4> lenses{0.6, 1.0, 1.6, 2.8};
  std::optional<RefinedCamera> best;
  for (const double lens : lenses) {
    const double focal = lens / usualLens * people.usualFocal;
    const auto refined = refineCamera(people, startFrom(heights, focal, people.bodyHeight));
    if (!best || refined.cost < best->cost) {
      best = refined;
    }
  }
  return *best;
}

double heightResidual(const WalkingPeople& people, const UprightCamera& camera) {
  std::vector<double> residuals;
  for (const StandingPerson& person : people.standing) {
    residuals.push_back(
        std::abs(expectedHeight(camera, person.foot, people.bodyHeight) / person.height - 1.0));
  }
  return median(residuals);
}

}  // namespace

QSharedPointer<GroundPlaneCalibration> PeopleCamera::calibration() const {
  const UprightCamera camera{std::log(focalLength), tilt, roll, std::log(height)};
  const cv::Matx33d rotation = rotationOf(camera);
  const cv::Matx33d lens(focalLength, 0, imageSize.width / 2.0, 0, focalLength,
                         imageSize.height / 2.0, 0, 0, 1);
  cv::Matx33d groundToCamera = rotation;
  for (int row = 0; row < 3; ++row) {
    groundToCamera(row, 2) = -rotation(row, 2) * height;
  }
  return QSharedPointer<GroundPlaneCalibration>::create((lens * groundToCamera).inv(),
                                                        cv::Point3d(0.0, 0.0, height));
}

PeopleCamera estimatePeopleCamera(const std::vector<PersonBox>& boxes, const cv::Size& imageSize,
                                  double bodyHeight) {
  std::vector<PersonBox> whole;
  std::copy_if(boxes.begin(), boxes.end(), std::back_inserter(whole),
               [&](const PersonBox& box) { return isWhole(box.box, imageSize); });
  std::set<std::uint32_t> persons;
  std::vector<StandingPerson> people;
  for (const PersonBox& box : whole) {
    persons.insert(box.person);
    people.push_back(standing(box.box, imageSize));
  }
  refuseTooFew(people.size(), persons.size());
  people = thinned(people, mostBoxes);
  double spread = 0.0;
  const LinearHeights heights = fitHeights(people, spread);
  WalkingPeople walking{inliersOf(people, heights, spread), stridesOf(whole, imageSize), bodyHeight,
                        usualLens * std::max(imageSize.width, imageSize.height)};
  const double inliers =
      static_cast<double>(walking.standing.size()) / static_cast<double>(people.size());
  if (inliers < fewestInliers) {
    throw NoPeopleCamera(
        "the boxes' heights do not follow from where they stand, as those of "
        "people on a flat ground would");
  }
  refuseFlatView(walking.standing, heights);
  const RefinedCamera refined = refine(walking, heights);
  const UprightCamera& camera = refined.camera;
  return {imageSize,
          std::exp(camera.logFocal),
          camera.tilt,
          camera.roll,
          std::exp(camera.logHeight),
          refined.focalError,
          heightResidual(walking, camera),
          inliers,
          whole.size(),
          persons.size()};
}

}  // namespace grouptracker
