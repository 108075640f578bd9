#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace grouptracker {

/// The lists of ids that the actors of the line before had, as text and as numbers. From line to
/// line an actor's list gets one id more and mostly loses its first one, so that nearly all of it
/// stands in the line before already and need not be read again.
class IdLists {
 public:
  using Ids = std::vector<std::uint32_t>;

  /// To be said before each line; who was not in the line before is forgotten.
  void beginLine();
  /// The ids of the list with which `text` begins, its bracket first, when it continues the actor's
  /// list of the line before; null when it has to be read. Holds until the next call.
  const Ids* continued(std::uint32_t actor, std::string_view text);
  /// Remembers a list that was read; `text` begins with it, a list of whole numbers.
  void remember(std::uint32_t actor, std::string_view text, const Ids& ids);

 private:
  struct List {
    std::string text;  ///< without the brackets and blanks next to them
    Ids ids;

    std::size_t second() const;
    bool goOn(std::size_t from, std::string_view next);
  };
  using Lists = std::unordered_map<std::uint32_t, List>;

  Lists m_lists;  ///< of this line
  Lists m_before;
};

}  // namespace grouptracker
