#pragma once

#include "host/camera/HostCalibration.h"

#include <opencv2/core.hpp>

#include <istream>
#include <string>

namespace grouptracker {

/// Which image coordinate a homography takes first.
enum class ImageOrder { columnRow, rowColumn };

/// The point to which a homography maps `point`; not finite for a point at the horizon.
cv::Point2d mapPoint(const cv::Matx33d& homography, const cv::Point2d& point);

/// Reads a homography from the image to the ground: three lines of three numbers, for example
///
///     2.8128700e-02   2.0091900e-03  -4.6693600e+00
///     8.0625700e-04   2.5195500e-02  -5.0608800e+00
///     3.4555400e-04   9.2512200e-05   4.6255300e-01
///
/// and returns the one that takes (column, row, 1), whatever order the file's one takes. Blank
/// lines are passed over. Wrong counts, text and a matrix that cannot be inverted are an
/// `InputError`.
cv::Matx33d readHomography(std::istream& in, const std::string& name, ImageOrder order);
/// The same for a file.
cv::Matx33d readHomography(const std::string& path, ImageOrder order);
/// Whether the file's first filled line holds numbers only, as no other calibration's does.
bool isHomographyFile(const std::string& path);

/// A camera of which only the view of the ground is known: a homography from image points (column,
/// row, pixels) to ground points (x, y, metres), and where the camera stands. Points above the
/// ground are cast onto it along the line from the camera.
class GroundPlaneCalibration : public HostCalibration {
 public:
  /// The homography must be invertible and the camera must not lie on the ground.
  GroundPlaneCalibration(const cv::Matx33d& imageToGround, const cv::Point3d& cameraPosition);

  /// The ground point moved towards the camera until it has the height.
  cv::Point3d imageToWorld(const cv::Point2d& imagePoint, double height) const override;
  cv::Point2d worldToImage(const cv::Point3d& scenePoint) const override;
  cv::Point3d getPosition() const override { return m_position; }
  std::vector<CalibrationNode> nodes() const override;

 private:
  cv::Matx33d m_imageToGround;
  cv::Matx33d m_groundToImage;
  cv::Point3d m_position;
};

/// Where the camera stands that sees the ground through a homography (image column and row to
/// metres), estimated for square pixels and the principal point in the middle of the image.
///
/// A view without perspective carries no such information. The camera is then put 10 m above the
/// ground point that would be seen one image height below the image, so that upright bodies point
/// upwards in the image.
cv::Point3d estimateCameraPosition(const cv::Matx33d& imageToGround, const cv::Size& imageSize);

/// The smallest usual image size that holds the point with the largest column and row at which
/// anything is seen (pixels), or just as large as that.
cv::Size guessImageSize(const cv::Point2d& farthest);

}  // namespace grouptracker
