#include "host/camera/PeopleCameraModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace grouptracker {

namespace {

constexpr double heightSpread = 0.08;    // of people's heights and their boxes, as a share
constexpr double speedSpread = 0.25;     // of a walker's speed, as a share
constexpr double focalSpread = 0.5;      // of usual lenses, as a share
constexpr double unseen = 10.0;          // residual of what the camera cannot see, in spreads
constexpr double smallestStride = 1e-3;  // m; keeps the logarithm of a standstill finite

using Normal = cv::Matx<double, UprightCamera::count, UprightCamera::count>;
using Gradient = cv::Vec<double, UprightCamera::count>;

/// The place on the ground under an image point, metres; not finite above the horizon.
cv::Point2d groundUnder(const UprightCamera& camera, const cv::Matx33d& rotation,
                        const cv::Point2d& point) {
  const double focal = std::exp(camera.logFocal);
  const cv::Vec3d ray = rotation.t() * cv::Vec3d(point.x / focal, point.y / focal, 1.0);
  const double steps =
      ray[2] < 0.0 ? -std::exp(camera.logHeight) / ray[2] : std::numeric_limits<double>::infinity();
  return {steps * ray[0], steps * ray[1]};
}

void appendHeights(const WalkingPeople& people, const UprightCamera& camera,
                   std::vector<double>& residuals) {
  for (const StandingPerson& person : people.standing) {
    const double expected = expectedHeight(camera, person.foot, people.bodyHeight);
    residuals.push_back(expected > 0.0 ? std::log(person.height / expected) / heightSpread
                                       : unseen);
  }
}

// Compared with the walker's own median, so that slow and fast walkers say the same and a change
// of scale says nothing.
void appendSpeeds(const WalkingPeople& people, const UprightCamera& camera,
                  std::vector<double>& residuals) {
  const cv::Matx33d rotation = rotationOf(camera);
  for (const auto& walker : people.walkers) {
    std::vector<double> lengths;
    for (const Stride& stride : walker) {
      const cv::Point2d way =
          groundUnder(camera, rotation, stride.to) - groundUnder(camera, rotation, stride.from);
      const double length = std::hypot(way.x, way.y);
      lengths.push_back(std::log(std::isfinite(length) ? std::max(length, smallestStride)
                                                       : 1.0 / smallestStride));
    }
    const double usual = median(lengths);
    for (const double length : lengths) {
      residuals.push_back((length - usual) / speedSpread);
    }
  }
}

std::vector<double> residualsOf(const WalkingPeople& people, const UprightCamera& camera) {
  std::vector<double> residuals;
  appendHeights(people, camera, residuals);
  appendSpeeds(people, camera, residuals);
  residuals.push_back((camera.logFocal - std::log(people.usualFocal)) / focalSpread);
  return residuals;
}

/// Cauchy's loss, which forgives outliers.
double costOf(const std::vector<double>& residuals) {
  double cost = 0.0;
  for (const double r : residuals) {
    cost += std::log1p(r * r);
  }
  return cost;
}

/// The normal equations of the reweighted squares, derivatives by differences.
void linearise(const WalkingPeople& people, UprightCamera camera,
               const std::vector<double>& residuals, Normal& normal, Gradient& gradient) {
  constexpr double step = 1e-5;
  std::vector<std::vector<double>> derivatives;
  for (int i = 0; i < UprightCamera::count; ++i) {
    const double before = camera[i];
    camera[i] = before + step;
    derivatives.push_back(residualsOf(people, camera));
    camera[i] = before;
    for (std::size_t k = 0; k < residuals.size(); ++k) {
      derivatives.back()[k] = (derivatives.back()[k] - residuals[k]) / step;
    }
  }
  normal = Normal::zeros();
  gradient = Gradient();
  for (std::size_t k = 0; k < residuals.size(); ++k) {
    const double weight = 1.0 / (1.0 + residuals[k] * residuals[k]);
    for (int i = 0; i < UprightCamera::count; ++i) {
      const double weighted = weight * derivatives[static_cast<std::size_t>(i)][k];
      gradient[i] += weighted * residuals[k];
      for (int j = 0; j < UprightCamera::count; ++j) {
        normal(i, j) += weighted * derivatives[static_cast<std::size_t>(j)][k];
      }
    }
  }
}

UprightCamera moved(UprightCamera camera, const Gradient& step) {
  for (int i = 0; i < UprightCamera::count; ++i) {
    camera[i] -= step[i];
  }
  return camera;
}

}  // namespace

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double& UprightCamera::operator[](int index) {
  constexpr double UprightCamera::*members[count] = {&UprightCamera::logFocal, &UprightCamera::tilt,
                                                     &UprightCamera::roll,
                                                     &UprightCamera::logHeight};
  return this->*members[index];
}

cv::Matx33d rotationOf(const UprightCamera& camera) {
  const cv::Vec3d right(1.0, 0.0, 0.0);
  const cv::Vec3d forward(0.0, std::cos(camera.tilt), -std::sin(camera.tilt));
  const cv::Vec3d down = forward.cross(right);
  const cv::Vec3d rolledRight = right * std::cos(camera.roll) + down * std::sin(camera.roll);
  const cv::Vec3d rolledDown = down * std::cos(camera.roll) - right * std::sin(camera.roll);
  return {rolledRight[0], rolledRight[1], rolledRight[2], rolledDown[0], rolledDown[1],
          rolledDown[2],  forward[0],     forward[1],     forward[2]};
}

double expectedHeight(const UprightCamera& camera, const cv::Point2d& foot, double bodyHeight) {
  const cv::Matx33d rotation = rotationOf(camera);
  const cv::Point2d ground = groundUnder(camera, rotation, foot);
  const cv::Vec3d head =
      rotation * cv::Vec3d(ground.x, ground.y, bodyHeight - std::exp(camera.logHeight));
  const double row = std::exp(camera.logFocal) * head[1] / head[2];
  return head[2] > 0.0 && std::isfinite(row) ? std::max(0.0, foot.y - row) : 0.0;
}

RefinedCamera refineCamera(const WalkingPeople& people, const UprightCamera& start) {
  constexpr int mostSteps = 60;
  constexpr double enough = 1e-9;  // of the cost that a step must save
  RefinedCamera best{start, 0.0, 0.0};
  std::vector<double> residuals = residualsOf(people, start);
  best.cost = costOf(residuals);
  double damping = 1e-3;
  Normal normal;
  Gradient gradient;
  for (int i = 0; i < mostSteps && damping < 1e9; ++i) {
    linearise(people, best.camera, residuals, normal, gradient);
    Normal damped = normal;
    for (int k = 0; k < UprightCamera::count; ++k) {
      damped(k, k) *= 1.0 + damping;
    }
    const UprightCamera tried = moved(best.camera, damped.solve(gradient, cv::DECOMP_SVD));
    auto triedResiduals = residualsOf(people, tried);
    const double cost = costOf(triedResiduals);
    if (!(cost < best.cost)) {
      damping *= 10.0;
      continue;
    }
    const bool isDone = best.cost - cost < enough * best.cost;
    best.camera = tried;
    best.cost = cost;
    residuals = std::move(triedResiduals);
    damping /= 10.0;
    if (isDone) {
      break;
    }
  }
  linearise(people, best.camera, residuals, normal, gradient);
  best.focalError = std::sqrt(normal.inv(cv::DECOMP_SVD)(0, 0));
  return best;
}

}  // namespace grouptracker
