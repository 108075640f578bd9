#include "host/base/PersonNames.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace grouptracker {

namespace {

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();  // to trackers; no alias

std::string jsonOf(const PersonName& name) {
  const auto* const text = std::get_if<std::string>(&name);
  return text != nullptr ? jsonText(*text) : std::to_string(std::get<std::int64_t>(name));
}

thread_local PersonNames* inStead = nullptr;

}  // namespace

PersonNames& PersonNames::ofProgram() {
  static PersonNames names;
  return inStead != nullptr ? *inStead : names;
}

PersonNames::Stead::Stead(PersonNames& names) : m_before(inStead) {
  inStead = &names;
}

PersonNames::Stead::~Stead() {
  inStead = m_before;
}

void PersonNames::remember(std::size_t names) {
  const std::lock_guard lock(m_mutex);
  m_capacity = std::max<std::size_t>(names, 1);
}

std::uint32_t PersonNames::numberOf(std::int64_t name) {
  if (name >= 0 && name < firstAlias) {
    return static_cast<std::uint32_t>(name);
  }
  const bool fits = name > 0 && name <= none;
  return aliasOf("#" + std::to_string(name), name,
                 fits ? std::optional(static_cast<std::uint32_t>(name)) : std::nullopt);
}

std::uint32_t PersonNames::numberOf(std::string_view name) {
  return aliasOf("\"" + std::string(name), std::string(name), std::nullopt);
}

// A name in use moves to the recent generation; both are looked through, the recent one first.
std::uint32_t PersonNames::aliasOf(const std::string& key, const PersonName& name,
                                   std::optional<std::uint32_t> wish) {
  const std::lock_guard lock(m_mutex);
  if (const auto found = m_recent.numbers.find(key); found != m_recent.numbers.end()) {
    return found->second;
  }
  if (m_capacity > 0 && m_recent.numbers.size() >= m_capacity) {
    m_older = std::exchange(m_recent, Generation());
  }
  const auto earlier = m_older.numbers.find(key);
  const bool getsWish = wish && !isTaken(*wish);
  const std::uint32_t number = earlier != m_older.numbers.end() ? earlier->second
                               : getsWish                       ? *wish
                                                                : freeAlias();
  m_recent.numbers.emplace(key, number);
  m_recent.names.emplace(number, name);
  return number;
}

std::uint32_t PersonNames::freeAlias() {
  while (m_nextAlias == none || isTaken(m_nextAlias)) {
    m_nextAlias = m_nextAlias == none ? firstAlias : m_nextAlias + 1;
  }
  return m_nextAlias;
}

bool PersonNames::isTaken(std::uint32_t number) const {
  return m_recent.names.contains(number) || m_older.names.contains(number);
}

PersonName PersonNames::nameOf(std::uint32_t number) const {
  if (number < firstAlias) {
    return std::int64_t{number};
  }
  const std::lock_guard lock(m_mutex);
  for (const Generation* const generation : {&m_recent, &m_older}) {
    const auto found = generation->names.find(number);
    if (found != generation->names.end()) {
      return found->second;
    }
  }
  return std::int64_t{number};
}

std::string PersonNames::textOf(std::uint32_t number) const {
  const PersonName name = nameOf(number);
  const auto* const text = std::get_if<std::string>(&name);
  return text != nullptr ? *text : std::to_string(std::get<std::int64_t>(name));
}

std::string PersonNames::fieldOf(std::uint32_t number) const {
  const std::string text = textOf(number);
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  return doublyQuoted(text);
}

std::vector<PersonName> sortedNames(const std::vector<std::uint32_t>& persons) {
  std::vector<PersonName> names;
  names.reserve(persons.size());
  for (const std::uint32_t person : persons) {
    names.push_back(PersonNames::ofProgram().nameOf(person));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string json_line::person(std::uint32_t person) {
  return jsonOf(PersonNames::ofProgram().nameOf(person));
}

void json_line::appendPerson(Line& line, std::uint32_t person) {
  person < PersonNames::firstAlias ? appendNumber(line, person)
                                   : line.append(json_line::person(person));
}

void json_line::appendPersons(Line& line, const std::vector<std::uint32_t>& persons) {
  const bool areThemselves = std::all_of(persons.begin(), persons.end(), [](std::uint32_t person) {
    return person < PersonNames::firstAlias;
  });
  if (areThemselves) {
    appendNumbers(line, persons);
    return;
  }
  appendArray(line, sortedNames(persons),
              [&line](const PersonName& name) { append(line, "{}", jsonOf(name)); });
}

}  // namespace grouptracker
