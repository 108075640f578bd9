#include "tracker/display/GroupColor.h"

#include <QDateTime>
#include <QtGlobal>

std::bitset<1U << 24U> GroupColor::usedColors;
unsigned int GroupColor::currentQtColorIndex = 0;

namespace {

constexpr int maxTries = 10;   // the colour of the last try is given even if somebody has it
constexpr int resetTries = 9;  // so hard to find that the colours count as used up

// Qt marks its generator as deprecated, but it is one that the host can seed and repeat.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

void seed(uint value) {
  qsrand(value);
}

/// One of a colour's components; 255 is never reached.
int randomComponent() {
  constexpr double perStep = 1.0 / 2147483648.0;  // the generator stays below 2^31
  return static_cast<int>(qrand() * 255.0 * perStep);
}

QT_WARNING_POP

std::size_t indexOf(const QColor& color) {
  return color.rgb() & 0xFFFFFFU;
}

}  // namespace

void GroupColor::init() {
  seed(static_cast<uint>(QDateTime::currentDateTime().toSecsSinceEpoch()));
}

void GroupColor::resetColors() {
  usedColors.reset();
  currentQtColorIndex = 0;
}

QColor GroupColor::getNewColor() {
  if (currentQtColorIndex < stdColors.size()) {
    const Qt::GlobalColor color = stdColors.at(currentQtColorIndex);
    // The index stays at a colour that somebody has, so that from there on all are random.
    if (!isUsed(color)) {
      use(color);
      ++currentQtColorIndex;
      return color;
    }
  }
  return unusedRandomColor();
}

QColor GroupColor::unusedRandomColor() {
  QColor color;
  int tries = 0;
  do {
    ++tries;
    color = randomColor();
  } while (isUsed(color) && tries < maxTries);

  // Only the try before the last one starts over; its colour is dropped though it is free.
  if (tries == resetTries) {
    resetColors();
    return getNewColor();
  }
  use(color);
  return color;
}

QColor GroupColor::randomColor() {
  const int red = randomComponent();
  const int green = randomComponent();
  const int blue = randomComponent();
  return {red, green, blue};
}

bool GroupColor::isUsed(const QColor& color) {
  return usedColors.test(indexOf(color));
}

void GroupColor::use(const QColor& color) {
  usedColors.set(indexOf(color));
}
