#pragma once

#include <opencv2/core.hpp>

#include <vector>

/// Where the camera stands that sees the ground through a homography (image column and row to
/// metres), estimated for square pixels and the principal point in the middle of the image.
///
/// A view without perspective carries no such information. The camera is then put 10 m above the
/// ground point that would be seen one image height below the image, so that upright bodies point
/// upwards in the image.
cv::Point3d estimateCameraPosition(const cv::Matx33d& imageToGround, const cv::Size& imageSize);

/// The smallest usual image size in which all ground points (metres) are seen, or just what they
/// fill.
cv::Size guessImageSize(const cv::Matx33d& imageToGround,
                        const std::vector<cv::Point2d>& groundPoints);
