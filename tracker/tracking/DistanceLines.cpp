#include "tracker/tracking/DistanceLines.h"

#include "tracker/diagnostics/Diagnostics.h"
#include "tracker/geometry/Util.h"

namespace {

// Where the distance of a pair is kept; the first of the two has the lower place.
std::size_t pairOf(std::size_t a, std::size_t b) {
  return b * (b - 1) / 2 + a;
}

}  // namespace

void DistanceLines::print(const std::list<QSharedPointer<MetaLPO>>& mobiles) {
  takeIn(mobiles);
  for (std::size_t first = 0; first < m_mobiles.size(); ++first) {
    printFrom(first);
  }
}

template <typename... Parts>
std::string_view DistanceLines::textOf(const Parts&... parts) {
  m_text.clear();
  m_text.write(parts...);
  return m_text.text();
}

void DistanceLines::takeIn(const std::list<QSharedPointer<MetaLPO>>& mobiles) {
  m_mobiles.clear();
  for (const auto& mobile : mobiles) {
    m_mobiles.push_back({mobile->getIdent(), mobile->getBaseCenter(), {}});
    m_mobiles.back().asSecond.set(textOf(mobile->getIdent(), " = "));
  }
  m_distances.resize(m_mobiles.size() * m_mobiles.size() / 2);
}

void DistanceLines::printFrom(std::size_t first) {
  TextBuffer::Short<48> start;
  start.set(textOf("distance between ", m_mobiles[first].ident, " and "));
  for (std::size_t second = 0; second < m_mobiles.size(); ++second) {
    const Mobile& other = m_mobiles[second];
    if (m_mobiles[first].ident == other.ident) {
      continue;
    }
    const Distance& distance =
        first < second ? measure(first, second) : m_distances[pairOf(second, first)];
    if (distance.length > 0) {
      Diagnostics::write(start, other.asSecond, distance, "\n");
    } else {
      Diagnostics::write(start, other.asSecond, metres(first, second), "\n");
    }
  }
}

double DistanceLines::metres(std::size_t a, std::size_t b) const {
  return Util::norm3D(m_mobiles[b].center - m_mobiles[a].center);
}

const DistanceLines::Distance& DistanceLines::measure(std::size_t a, std::size_t b) {
  Distance& distance = m_distances[pairOf(a, b)];
  distance.set(textOf(metres(a, b)));
  return distance;
}
