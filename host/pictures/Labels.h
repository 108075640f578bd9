#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <string>
#include <vector>

namespace grouptracker {

/// Writes short texts beside what they name, off people and off each other; where a crowd leaves
/// no room a text is left out. What matters most comes first.
class Labels {
 public:
  /// `textScale` is the size of texts, 1 for pictures of some 500 rows.
  Labels(cv::Mat& picture, double textScale) : m_picture(picture), m_scale(textScale) {}

  /// Somebody is here, pixels: nothing is written on it.
  void keepFree(const cv::Rect& area) { m_people.push_back(area); }
  /// Writes the number of a group on a plate in its colour. `area` is where the group is, pixels.
  /// Where people are on all sides the plate may lie on them.
  void addPlate(const std::string& text, const cv::Rect& area, const cv::Scalar& colour);
  /// Writes the number of a person close by.
  void addName(const std::string& text, const cv::Rect& area, const cv::Scalar& ink,
               const cv::Scalar& rim);

 private:
  std::optional<cv::Rect> findPlace(cv::Size size, const cv::Rect& area, int rings,
                                    bool isOffPeople) const;
  bool isFree(const cv::Rect& place, bool isOffPeople) const;

  cv::Mat& m_picture;
  double m_scale;
  std::vector<cv::Rect> m_people;
  std::vector<cv::Rect> m_texts;
};

}  // namespace grouptracker
