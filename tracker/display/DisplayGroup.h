#pragma once

#include <QColor>
#include <opencv2/core/types.hpp>

#include <list>
#include <string>
#include <utility>

/// What is to be drawn of one group at one frame: the boxes of its mobiles in image pixels, its
/// colour and a text. A plain record that owns all it holds.
class DisplayGroup {
 public:
  DisplayGroup() = default;
  DisplayGroup(unsigned int groupId, const QColor& groupColor, std::string groupText)
      : m_id(groupId), m_color(groupColor), m_text(std::move(groupText)) {}
  DisplayGroup(const DisplayGroup&) = default;
  DisplayGroup(DisplayGroup&&) noexcept = default;
  DisplayGroup& operator=(const DisplayGroup&) = default;
  DisplayGroup& operator=(DisplayGroup&&) noexcept = default;
  virtual ~DisplayGroup() = default;

  unsigned int getId() const { return m_id; }
  void setId(unsigned int groupId) { m_id = groupId; }
  const QColor& getColor() const { return m_color; }
  void setColor(const QColor& groupColor) { m_color = groupColor; }
  const std::string& getText() const { return m_text; }
  void setText(const std::string& groupText) { m_text = groupText; }

  /// Adds the box of a mobile; boxes are drawn in the order in which they were added.
  void addMobile(unsigned int ident, const cv::Rect& rect) { m_mobiles.emplace_back(ident, rect); }
  /// Mobile ids with their boxes.
  const std::list<std::pair<unsigned int, cv::Rect>>& getMobiles() const { return m_mobiles; }

 private:
  unsigned int m_id = 0;
  std::list<std::pair<unsigned int, cv::Rect>> m_mobiles;
  QColor m_color = QColor(Qt::red);
  std::string m_text;
};
