#pragma once

#include <opencv2/core.hpp>

namespace grouptracker {

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
