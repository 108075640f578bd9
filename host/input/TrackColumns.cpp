#include "host/input/TrackColumns.h"

#include "host/base/InputError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

namespace grouptracker {

namespace {

/// A quantity as the user calls it on the command line, and as files do: small letters without
/// blanks and dashes.
struct UsualNames {
  const char* key;
  std::vector<std::string> names;
};

const std::array<UsualNames, trackQuantities>& usualNames() {
  static const std::array<UsualNames, trackQuantities> all{{
      {"frame", {"frame", "frameid", "framenumber", "frameno", "framenum", "frameindex", "fr"}},
      {"time", {"time", "timestamp", "seconds"}},
      {"id",
       {"id", "person", "personid", "persid", "pid", "ped", "pedid", "pedestrian", "pedestrianid",
        "track", "trackid", "agent", "agentid"}},
      {"x", {"x", "posx", "xpos", "positionx"}},
      {"y", {"y", "posy", "ypos", "positiony"}},
  }};
  return all;
}

struct Unit {
  const char* name;
  double metres;
};

constexpr std::array<Unit, 3> units{{{"cm", 0.01}, {"mm", 0.001}, {"m", 1.0}}};

bool isSpacing(char c) {
  return std::string_view(" \t_-.").find(c) != std::string_view::npos;
}

std::string plain(std::string_view name) {
  std::string letters;
  for (const char c : name) {
    if (!isSpacing(c)) {
      letters += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  return letters;
}

/// A column's name, without the unit that may follow it.
struct ColumnName {
  std::string name;
  std::optional<double> unit;  ///< metres
};

ColumnName readName(const std::string& text) {
  const std::string whole = plain(text);
  const auto end = std::min(whole.find_first_of("[(/"), whole.size());
  std::string_view unit = std::string_view(whole).substr(std::min(end + 1, whole.size()));
  unit = unit.substr(0, unit.find_first_of("])"));
  unit = unit.starts_with("in") ? unit.substr(2) : unit;
  const auto* const found = std::find_if(units.begin(), units.end(),
                                         [unit](const Unit& known) { return unit == known.name; });
  return {whole.substr(0, end), found == units.end() ? std::nullopt : std::optional(found->metres)};
}

std::optional<std::size_t> findName(const std::vector<std::string>& header,
                                    const std::string& wanted, std::size_t quantity) {
  if (!wanted.empty()) {
    const auto found = std::find(header.begin(), header.end(), wanted);
    if (found == header.end()) {
      throw ValueProblem(fmt::format("no column is called \"{}\"", wanted));
    }
    return found - header.begin();
  }
  for (const std::string& usual : usualNames()[quantity].names) {
    for (std::size_t i = 0; i < header.size(); ++i) {
      if (readName(header[i]).name == usual) {
        return i;
      }
    }
  }
  return std::nullopt;
}

[[noreturn]] void refuse(const std::vector<std::string>& header, const char* missing) {
  std::string names;
  for (const std::string& name : header) {
    names += (names.empty() ? "\"" : ", \"") + name + '"';
  }
  throw ValueProblem(
      fmt::format("no column holds the {}; there are {}: say which with --columns, "
                  "such as frame=t,id=ped,x=px,y=py",
                  missing, names));
}

void requireAll(const TrackColumns& columns, const std::vector<std::string>& header) {
  if (!columns.at(TrackQuantity::frame) && !columns.at(TrackQuantity::time)) {
    refuse(header, "frame or time");
  }
  for (const TrackQuantity quantity : {TrackQuantity::person, TrackQuantity::x, TrackQuantity::y}) {
    if (!columns.at(quantity)) {
      refuse(header, usualNames()[static_cast<std::size_t>(quantity)].key);
    }
  }
}

std::optional<std::size_t> quantityOf(std::string_view key) {
  for (std::size_t i = 0; i < trackQuantities; ++i) {
    if (key == usualNames()[i].key) {
      return i;
    }
  }
  return std::nullopt;
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> pieces;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

bool isComplete(const std::vector<std::optional<TrackQuantity>>& order) {
  const auto has = [&order](TrackQuantity quantity) {
    return std::count(order.begin(), order.end(), quantity) == 1;
  };
  return has(TrackQuantity::frame) != has(TrackQuantity::time) && has(TrackQuantity::person) &&
         has(TrackQuantity::x) && has(TrackQuantity::y);
}

}  // namespace

bool TableChoice::parseColumns(const std::string& text) {
  TableChoice parsed;
  const bool isList = text.find('=') == std::string::npos;
  for (const std::string& piece : split(text)) {
    const auto end = std::min(piece.find('='), piece.size());
    const auto quantity = quantityOf(piece.substr(0, end));
    if (isList) {
      parsed.order.push_back(quantity ? std::optional(static_cast<TrackQuantity>(*quantity))
                                      : std::nullopt);
    } else if (quantity && end + 1 < piece.size() && parsed.names[*quantity].empty()) {
      parsed.names[*quantity] = piece.substr(end + 1);
    } else {
      return false;
    }
  }
  if (isList && !isComplete(parsed.order)) {
    return false;
  }
  names = parsed.names;
  order = parsed.order;
  return true;
}

bool TableChoice::isEmpty() const {
  return order.empty() && std::all_of(names.begin(), names.end(),
                                      [](const std::string& name) { return name.empty(); });
}

std::size_t TrackColumns::fewest() const {
  std::size_t fewest = 0;
  for (const auto& place : places) {
    fewest = place ? std::max(fewest, *place + 1) : fewest;
  }
  return fewest;
}

TrackColumns findColumns(const std::vector<std::string>& header, const TableChoice& choice) {
  TrackColumns columns;
  if (!choice.order.empty()) {
    for (std::size_t i = 0; i < choice.order.size(); ++i) {
      if (choice.order[i]) {
        columns.places[static_cast<std::size_t>(*choice.order[i])] = i;
      }
    }
    columns.unit = choice.unit.value_or(1.0);
    return columns;
  }
  for (std::size_t i = 0; i < trackQuantities; ++i) {
    columns.places[i] = findName(header, choice.names[i], i);
  }
  requireAll(columns, header);
  const auto ownUnit = readName(header[*columns.at(TrackQuantity::x)]).unit;
  columns.unit = choice.unit.value_or(ownUnit.value_or(1.0));
  return columns;
}

}  // namespace grouptracker
