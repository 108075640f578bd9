#pragma once

#include "host/base/JsonLine.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace grouptracker {

/// What an input calls a person: a whole number or a text.
using PersonName = std::variant<std::int64_t, std::string>;

/// Which number stands for whom. Everything between input and output knows people by numbers of 32
/// bits; inputs may also have texts and larger numbers, which come out as they went in. Numbers
/// below `firstAlias` stand for themselves and cost nothing; every other name gets a number of its
/// own from there on, in the order in which the names come. Any number of threads may ask.
class PersonNames {
 public:
  static constexpr std::uint32_t firstAlias = 1U << 31U;

  /// The one table of the program, so that whatever reads and writes people agrees on them.
  static PersonNames& ofProgram();

  /// As long as it lives, a thread has another table as that of the program.
  class Stead {
   public:
    explicit Stead(PersonNames& names);
    Stead(const Stead&) = delete;
    Stead& operator=(const Stead&) = delete;
    ~Stead();

   private:
    PersonNames* m_before;  ///< the one of another stead, or null
  };

  /// From now on only so many of the latest names are sure to be remembered, which bounds the
  /// memory of a program that never ends. A forgotten name that comes again gets another number.
  void remember(std::size_t names);

  std::uint32_t numberOf(std::int64_t name);
  std::uint32_t numberOf(std::string_view name);
  /// The number itself when no name is behind it.
  PersonName nameOf(std::uint32_t number) const;
  /// The name without quotes.
  std::string textOf(std::uint32_t number) const;
  /// The name as a field of CSV, in quotes where it would be several fields or none.
  std::string fieldOf(std::uint32_t number) const;

 private:
  /// Names and numbers of one time; an earlier generation is dropped as a whole.
  struct Generation {
    std::unordered_map<std::string, std::uint32_t> numbers;  ///< by text, or by '#' and number
    std::unordered_map<std::uint32_t, PersonName> names;
  };

  std::uint32_t aliasOf(const std::string& key, const PersonName& name,
                        std::optional<std::uint32_t> wish);
  std::uint32_t freeAlias();
  bool isTaken(std::uint32_t number) const;

  mutable std::mutex m_mutex;
  std::size_t m_capacity = 0;  ///< of a generation; 0 when nothing is forgotten
  Generation m_recent;
  Generation m_older;
  std::uint32_t m_nextAlias = firstAlias;
};

/// The names of numbers, in ascending order: numbers before texts.
std::vector<PersonName> sortedNames(const std::vector<std::uint32_t>& persons);

namespace json_line {

/// A person's name as JSON has it, a number or a quoted text.
std::string person(std::uint32_t person);
void appendPerson(Line& line, std::uint32_t person);
/// A JSON array of names, in ascending order.
void appendPersons(Line& line, const std::vector<std::uint32_t>& persons);

}  // namespace json_line

}  // namespace grouptracker
