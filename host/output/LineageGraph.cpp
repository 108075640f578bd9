#include "host/output/LineageGraph.h"

#include "host/base/PersonNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

namespace grouptracker {

namespace {

// Inches, as Graphviz counts.
constexpr double laneHeight = 0.55;
constexpr double barHeight = 0.2;
constexpr double characterWidth = 0.085;

using Life = FamilyTree::Life;

/// The names of everybody who ever was in a group, fit for a text between quotes.
std::vector<std::string> namesOf(const Life& life) {
  std::vector<std::string> names;
  for (const std::uint32_t person : life.persons) {
    const std::string quoted = jsonText(PersonNames::ofProgram().textOf(person));
    names.push_back(quoted.substr(1, quoted.size() - 2));
  }
  return names;
}

/// The number of a group and its people, of many the first.
std::string labelOf(std::uint32_t group, const Life& life) {
  constexpr std::size_t most = 6;
  std::string text = fmt::format("{}: ", group);
  auto names = namesOf(life);
  names.resize(std::min(most, names.size()));
  text += json_line::joined(names, ", ");
  return life.persons.size() > most ? fmt::format("{} +{}", text, life.persons.size() - most)
                                    : text;
}

/// The first of 1, 2, 5, 10, ... frames that is not below the least.
std::int64_t roundStep(double least) {
  for (std::int64_t power = 1;; power *= 10) {
    for (const std::int64_t digit : {1, 2, 5}) {
      if (static_cast<double>(digit * power) >= least) {
        return digit * power;
      }
    }
  }
}

/// Writes a tree whose drawing follows time.
class Drawing {
 public:
  explicit Drawing(const FamilyTree& tree) : m_tree(tree) {
    if (tree.lives().empty()) {
      return;
    }
    m_first = std::numeric_limits<std::int64_t>::max();
    m_last = std::numeric_limits<std::int64_t>::min();
    for (const auto& [group, life] : tree.lives()) {
      m_first = std::min(m_first, life.first);
      m_last = std::max(m_last, life.last);
    }
    constexpr double usual = 0.05;  // inches a frame
    constexpr double narrowest = 8.0;
    constexpr double widest = 60.0;
    const auto frames = static_cast<double>(m_last - m_first + 1);
    m_scale = std::clamp(usual * frames, narrowest, widest) / frames;
    const auto lengthOf = [this](std::uint32_t group) {
      const auto characters =
          static_cast<double>(labelOf(group, m_tree.lives().at(group)).size() + 1);
      return static_cast<std::int64_t>(std::ceil(characters * characterWidth / m_scale));
    };
    m_lanes = tree.lanes(1, lengthOf);
  }

  std::string text() const {
    std::string text =
        "digraph groups {\n"
        "  layout=neato;\n"
        "  splines=line;\n"
        "  outputorder=edgesfirst;\n"
        "  node [shape=plaintext, fontname=\"sans-serif\", fontsize=10, height=0.15];\n"
        "  edge [color=\"#555555\", arrowsize=0.6];\n";
    text += axis();
    for (const auto& [group, life] : m_tree.lives()) {
      text += bar(group, life);
    }
    std::size_t number = 0;
    for (const FamilyTree::Tie& tie : m_tree.ties()) {
      text += arrow(tie, number++);
    }
    return text + "}\n";
  }

 private:
  double column(std::int64_t frame) const { return static_cast<double>(frame - m_first) * m_scale; }
  double row(std::uint32_t group) const { return -laneHeight * m_lanes.at(group); }

  static std::string at(double x, double y) { return fmt::format("pos=\"{:.3f},{:.3f}!\"", x, y); }

  /// The numbers of some frames above all, with a line down from each.
  std::string axis() const {
    constexpr double leastStep = 1.5;
    if (m_lanes.empty()) {
      return {};
    }
    const std::int64_t step = roundStep(leastStep / m_scale);
    const int lowest = std::max_element(m_lanes.begin(), m_lanes.end(), [](auto& a, auto& b) {
                         return a.second < b.second;
                       })->second;
    std::string text;
    for (std::int64_t frame = m_first - m_first % step; frame <= m_last; frame += step) {
      if (frame >= m_first) {
        text += fmt::format("  t{} [label=\"frame {}\", {}];\n", frame - m_first, frame,
                            at(column(frame), laneHeight));
        text += fmt::format("  b{} [shape=point, style=invis, {}];\n", frame - m_first,
                            at(column(frame), -laneHeight * (lowest + 1)));
        text +=
            fmt::format("  t{0} -> b{0} [color=\"#dddddd\", arrowhead=none];\n", frame - m_first);
      }
    }
    return text;
  }

  std::string bar(std::uint32_t group, const Life& life) const {
    constexpr double narrowest = 0.04;
    const double left = column(life.first);
    const double width = std::max(narrowest, column(life.last + 1) - left);
    const std::string label = labelOf(group, life);
    const double labelWidth = characterWidth * static_cast<double>(label.size());
    return fmt::format(
        "  g{0} [shape=box, style=filled, fillcolor=\"#9ecae1\", color=\"#3182bd\", label=\"\", "
        "fixedsize=true, width={1:.3f}, height={2}, {3}, "
        "tooltip=\"group {0}: frames {4} to {5}, persons {6}\"];\n"
        "  n{0} [label=\"{7}\", {8}];\n",
        group, width, barHeight, at(left + width / 2.0, row(group)), life.first, life.last,
        json_line::joined(namesOf(life), ", "), label,
        at(left + labelWidth / 2.0, row(group) + barHeight));
  }

  /// From the end of what merges to the other group at that frame, and from there to the beginning
  /// of what splits, or to where that group is by then.
  std::string arrow(const FamilyTree::Tie& tie, std::size_t number) const {
    if (tie.kind == EventKind::merged) {
      return point(fmt::format("e{}", number), tie.to, tie.frame) +
             fmt::format("  g{}:e -> e{} [tooltip=\"{} merged into {}\"];\n", tie.from, number,
                         tie.from, tie.to);
    }
    const bool isNew = m_tree.lives().at(tie.to).first >= tie.frame;
    const std::string end = isNew ? fmt::format("g{}:w", tie.to) : fmt::format("f{}", number);
    return point(fmt::format("e{}", number), tie.from, tie.frame) +
           (isNew ? std::string() : point(end, tie.to, tie.frame)) +
           fmt::format("  e{} -> {} [style=dashed, tooltip=\"{} split from {}\"];\n", number, end,
                       tie.to, tie.from);
  }

  /// A point on the bar of a group.
  std::string point(const std::string& name, std::uint32_t group, std::int64_t frame) const {
    const Life& life = m_tree.lives().at(group);
    const double x = column(std::clamp(frame, life.first, life.last + 1));
    return fmt::format("  {} [shape=point, width=0.05, color=\"#555555\", {}];\n", name,
                       at(x, row(group)));
  }

  const FamilyTree& m_tree;
  std::int64_t m_first = 0;
  std::int64_t m_last = 0;
  double m_scale = 1.0;  ///< inches per frame
  std::map<std::uint32_t, int> m_lanes;
};

}  // namespace

void LineageGraph::write(const RunStep& step) {
  constexpr std::chrono::seconds pause(5);  // from one writing to the next
  m_tree.add(step);
  if (m_file.canBeReplaced() && Clock::now() - m_written >= pause) {
    m_file.write(Drawing(m_tree).text());
    m_written = Clock::now();
  }
}

void LineageGraph::finish() {
  m_file.write(Drawing(m_tree).text());
}

}  // namespace grouptracker
