#include "host/input/IdLists.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace grouptracker {

namespace {

constexpr char blank = ' ';

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blank), text.size()));
  return text;
}

/// The length of what is behind a list's known ids, ", 17" before the closing bracket, and the id;
/// 0 when there is anything else.
std::size_t readLast(std::string_view rest, std::uint32_t& id) {
  if (!rest.starts_with(',')) {
    return 0;
  }
  const std::string_view number = withoutBlanks(rest.substr(1));
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), id);
  const auto digits = static_cast<std::size_t>(end - number.data());
  const bool isNumber = error == std::errc() && (digits == 1 || number.front() != '0');
  const bool isLast = isNumber && withoutBlanks(number.substr(digits)).starts_with(']');
  return isLast ? static_cast<std::size_t>(end - rest.data()) : 0;
}

}  // namespace

void IdLists::beginLine() {
  m_before.swap(m_lists);
  m_lists.clear();
}

std::optional<IdLists::Step> IdLists::step(std::uint32_t actor, std::string_view text) {
  const auto before = m_before.find(actor);
  if (before == m_before.end()) {
    return std::nullopt;
  }
  List& list = before->second;
  const std::string_view next = withoutBlanks(text.substr(1));
  const auto afterLoss = list.goOn(list.second(), next);
  const auto added = afterLoss ? afterLoss : list.goOn(0, next);
  if (!added) {
    return std::nullopt;
  }
  m_lists.insert(m_before.extract(before));
  return Step{afterLoss.has_value(), *added};
}

void IdLists::remember(std::uint32_t actor, std::string_view text) {
  text = withoutBlanks(text.substr(1, text.find(']') - 1));
  text = text.substr(0, text.find_last_not_of(blank) + 1);
  m_lists.insert_or_assign(actor, List{std::string(text)});
}

void IdLists::forget() {
  m_lists.clear();
  m_before.clear();
}

/// Where the second id stands in the text; behind it when there is none.
std::size_t IdLists::List::second() const {
  const std::size_t comma = text.find(',');
  return comma == std::string::npos ? text.size() : text.find_first_not_of(blank, comma + 1);
}

/// Becomes the list that has the ids from a place of the text on, one at least, and one id behind
/// them, if that is how `next` begins; the id.
std::optional<std::uint32_t> IdLists::List::goOn(std::size_t from, std::string_view next) {
  const std::string_view known = std::string_view(text).substr(from);
  if (known.empty() || !next.starts_with(known)) {
    return std::nullopt;
  }
  std::uint32_t id = 0;
  const std::size_t added = readLast(next.substr(known.size()), id);
  if (added == 0) {
    return std::nullopt;
  }
  text = next.substr(0, known.size() + added);
  return id;
}

}  // namespace grouptracker
