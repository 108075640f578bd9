#pragma once

#include "tracker/images/ImageCodec.h"

#include <filesystem>

// Tests read and write images as the program does, so that those without images start as fast.

inline cv::Mat imageOf(const std::filesystem::path& file) {
  return ImageCodec::loaded().read(file.string());
}

/// Writes an image in the form that the ending of its name says; false when it cannot be written.
bool writeImage(const std::filesystem::path& file, const cv::Mat& pixels);
