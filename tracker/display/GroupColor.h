#pragma once

#include <QColor>

#include <array>
#include <bitset>

/// Hands out the display colours of groups: first a fixed palette in order, then random colours
/// that nobody has yet. All colours are opaque. The state belongs to the whole program, as the
/// numbering of groups does; for one thread only.
class GroupColor {
 public:
  GroupColor() = default;
  virtual ~GroupColor() = default;

  /// Seeds the random colours with the time.
  static void init();
  /// Takes all colours back; the next one is the first of the palette.
  static void resetColors();
  /// The next colour.
  static QColor getNewColor();

 protected:
  static bool isUsed(const QColor& color);
  static void use(const QColor& color);

  /// Global colours are constants, so that the palette is there before any static object.
  static constexpr std::array<Qt::GlobalColor, 12> stdColors = {
      Qt::red,     Qt::green,     Qt::blue,     Qt::cyan,     Qt::magenta,     Qt::yellow,
      Qt::darkRed, Qt::darkGreen, Qt::darkBlue, Qt::darkCyan, Qt::darkMagenta, Qt::darkYellow};
  /// The colours handed out, a bit for each 24-bit colour: trial groups take millions of colours in
  /// a week, and neither the search nor the memory may grow with them.
  static std::bitset<1U << 24U> usedColors;
  static unsigned int currentQtColorIndex;  ///< index of the next colour of the palette

 private:
  static QColor unusedRandomColor();
  static QColor randomColor();
};
