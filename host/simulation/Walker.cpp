#include "host/simulation/Walker.h"

#include <algorithm>
#include <cmath>

namespace grouptracker {

namespace {

// Helbing and Molnar 1995, table of parameters.
constexpr double relaxationTime = 0.5;       // s
constexpr double repulsionPotential = 2.1;   // m²/s²
constexpr double repulsionRange = 0.3;       // m
constexpr double strideTime = 2.0;           // s; the other's next steps are avoided, too
constexpr double sideWeight = 0.5;           // of others outside of the field of view
constexpr double cosOfHalfView = -0.173648;  // 100°
constexpr double farthestOther = 5.0;        // m; the repulsion beyond is below 1e-5 m/s²

// Moussaid et al. 2010.
constexpr double gazeStrength = 4.0;
constexpr double attractionStrength = 3.0;   // m/s²
constexpr double companionStrength = 1.0;    // m/s²
constexpr double companionDistance = 0.8;    // m, between the middles of two bodies
constexpr double halfGazeAngle = 1.5707963;  // 90°

// Friends walk closer than strangers.
constexpr double strangenessOfCompanions = 0.15;

// A company waits a little for those who catch up, and these hurry.
constexpr double hurrySpeed = 1.9;  // m/s
constexpr double waitingShare = 0.7;

// People who stand give way only little, and return to where they stood.
constexpr double strangenessOfStanding = 0.4;
constexpr double settlingTime = 0.8;   // s within which a stander makes good for a push
constexpr double standingReach = 0.5;  // m from the post

cv::Point2d unit(const cv::Point2d& v) {
  const double norm = cv::norm(v);
  return norm > 0.0 ? v * (1.0 / norm) : cv::Point2d();
}

/// Where the rest of a walker's company is, without those who are still on the way to it.
struct Company {
  cv::Point2d middle;
  cv::Point2d velocity;
  int others = 0;
  bool isWaiting = false;
};

Company companyOf(const Walker& walker, const std::vector<Walker>& all) {
  Company company;
  for (const Walker& other : all) {
    if (other.company != walker.company || other.id == walker.id) {
      continue;
    }
    company.isWaiting = company.isWaiting || other.isCatchingUp;
    if (!other.isCatchingUp) {
      company.middle += other.position;
      company.velocity += other.velocity;
      ++company.others;
    }
  }
  if (company.others > 0) {
    company.middle *= 1.0 / company.others;
    company.velocity *= 1.0 / company.others;
  }
  return company;
}

cv::Point2d driveToPost(const Walker& walker) {
  const cv::Point2d aim = *walker.post + walker.sway - walker.position;
  const double speed = std::min(walker.desiredSpeed, cv::norm(aim) / settlingTime);
  return (unit(aim) * speed - walker.velocity) * (1.0 / relaxationTime);
}

cv::Point2d drive(const Walker& walker, const Company& company) {
  if (walker.post) {
    return driveToPost(walker);
  }
  cv::Point2d aim = walker.goal - walker.position;
  double speed = walker.desiredSpeed;
  if (walker.isCatchingUp && company.others > 0) {
    aim = company.middle + company.velocity - walker.position;
    speed = std::min(hurrySpeed, cv::norm(company.velocity) + cv::norm(aim));
  } else if (company.isWaiting) {
    speed *= waitingShare;
  }
  return (unit(aim) * speed - walker.velocity) * (1.0 / relaxationTime);
}

/// Others repel along ellipses that reach out to where their next steps lead.
cv::Point2d repulsion(const Walker& walker, const Walker& other) {
  const cv::Point2d apart = walker.position - other.position;
  const double distance = cv::norm(apart);
  if (distance > farthestOther || distance == 0.0) {
    return {};
  }
  const cv::Point2d stride = other.velocity * strideTime;
  const cv::Point2d apartThen = apart - stride;
  const double sum = distance + cv::norm(apartThen);
  const double semiAxis = 0.5 * std::sqrt(std::max(sum * sum - stride.dot(stride), 1e-6));
  const double potential =
      repulsionPotential / repulsionRange * std::exp(-semiAxis / repulsionRange);
  const cv::Point2d force = (unit(apart) + unit(apartThen)) * (potential * sum / (4.0 * semiAxis));
  const bool isInView = unit(walker.velocity).dot(-unit(apart)) > cosOfHalfView;
  return force * (isInView ? 1.0 : sideWeight);
}

/// Slows those ahead until they see their company, and draws in those who are too far from it.
cv::Point2d togetherness(const Walker& walker, const Company& company) {
  if (company.others == 0 || walker.isCatchingUp || walker.post) {
    return {};
  }
  const cv::Point2d toMiddle = company.middle - walker.position;
  const double cosine = std::clamp(unit(walker.velocity).dot(unit(toMiddle)), -1.0, 1.0);
  const double headTurn = std::max(0.0, std::acos(cosine) - halfGazeAngle);
  const cv::Point2d gaze = walker.velocity * (-gazeStrength * headTurn);
  const double reach = std::max(0.5, company.others / 2.0);  // m, more for larger groups
  const bool isFar = cv::norm(toMiddle) > reach;
  return gaze + unit(toMiddle) * (isFar ? attractionStrength : 0.0);
}

cv::Point2d elbowRoom(const Walker& walker, const Walker& companion) {
  const cv::Point2d apart = walker.position - companion.position;
  return cv::norm(apart) < companionDistance ? unit(apart) * companionStrength : cv::Point2d();
}

}  // namespace

bool Walker::stands() const {
  return post && cv::norm(*post - position) < standingReach;
}

cv::Point2d socialForce(const Walker& walker, const std::vector<Walker>& all) {
  const Company company = companyOf(walker, all);
  cv::Point2d force = drive(walker, company) + togetherness(walker, company);
  const double strangeness = walker.stands() ? strangenessOfStanding : 1.0;
  for (const Walker& other : all) {
    if (other.id == walker.id) {
      continue;
    }
    const bool isCompanion = other.company == walker.company;
    force += repulsion(walker, other) * (isCompanion ? strangenessOfCompanions : strangeness);
    if (isCompanion) {
      force += elbowRoom(walker, other);
    }
  }
  return force;
}

}  // namespace grouptracker
