#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace grouptracker {

/// The lists of ids that the actors of the line before had, as text. From line to line an actor's
/// list gets one id more and mostly loses its first one, so that nearly all of it stands in the
/// line before already and need not be read again.
class IdLists {
 public:
  /// How a list differs from that of the line before.
  struct Step {
    bool losesFirst = false;
    std::uint32_t added = 0;  ///< the id behind the others
  };

  /// To be said before each line; who was not in the line before is forgotten.
  void beginLine();
  /// How the list with which `text` begins, its bracket first, continues the actor's list of the
  /// line before; none when it has to be read.
  std::optional<Step> step(std::uint32_t actor, std::string_view text);
  /// Remembers a list that was read and is not empty; `text` begins with it.
  void remember(std::uint32_t actor, std::string_view text);
  /// Forgets all lists, so that those of the next line have to be read.
  void forget();

 private:
  struct List {
    std::string text;  ///< without the brackets and blanks next to them

    std::size_t second() const;
    std::optional<std::uint32_t> goOn(std::size_t from, std::string_view next);
  };
  using Lists = std::unordered_map<std::uint32_t, List>;

  Lists m_lists;  ///< of this line
  Lists m_before;
};

}  // namespace grouptracker
