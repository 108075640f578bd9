#pragma once

#include "host/base/InputError.h"
#include "host/base/PersonNames.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <string>
#include <vector>

namespace grouptracker {

/// Numbers as they come from Python: any array or list that numpy can turn into doubles.
using Numbers = pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;

/// The rows of an array of `width` numbers each. Another shape is a `ValueProblem` with `name`.
template <std::size_t width>
std::vector<std::array<double, width>> rowsOf(const Numbers& array, const std::string& name) {
  const bool isEmpty = array.size() == 0;
  if (!isEmpty && (array.ndim() != 2 || array.shape(1) != static_cast<pybind11::ssize_t>(width))) {
    throw ValueProblem(name + ": an array of N x " + std::to_string(width) + " is expected");
  }
  std::vector<std::array<double, width>> rows(static_cast<std::size_t>(array.size()) / width);
  const double* number = array.data();
  for (auto& row : rows) {
    std::copy(number, number + width, row.begin());
    number += width;
  }
  return rows;
}

/// Ids out of an array of the whole numbers that stand for themselves, as most trackers have them;
/// none for any other array.
inline std::optional<std::vector<std::uint32_t>> wholeIdsOf(const pybind11::array& array) {
  using Whole = pybind11::array_t<std::int64_t>;
  if (array.ndim() != 1 || !pybind11::isinstance<Whole>(array)) {
    return std::nullopt;
  }
  const auto numbers = pybind11::reinterpret_borrow<Whole>(array).unchecked<1>();
  std::vector<std::uint32_t> ids(static_cast<std::size_t>(numbers.shape(0)));
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const std::int64_t number = numbers(static_cast<pybind11::ssize_t>(i));
    if (number < 0 || number >= PersonNames::firstAlias) {
      return std::nullopt;
    }
    ids[i] = static_cast<std::uint32_t>(number);
  }
  return ids;
}

/// What the persons are called, in ascending order: a list of numbers and texts.
inline pybind11::list personList(const std::vector<std::uint32_t>& persons) {
  const bool areThemselves = std::all_of(persons.begin(), persons.end(), [](std::uint32_t person) {
    return person < PersonNames::firstAlias;
  });
  return areThemselves && std::is_sorted(persons.begin(), persons.end())
             ? pybind11::cast(persons)
             : pybind11::cast(sortedNames(persons));
}

/// Ids of persons out of an array or list of whole numbers from 0 to 2^32 - 1, or of texts, as the
/// numbers that stand for them. What else there is, is a `ValueProblem`.
inline std::vector<std::uint32_t> idsOf(const pybind11::object& names) {
  constexpr double largest = std::numeric_limits<std::uint32_t>::max();
  const auto array = pybind11::array::ensure(names);
  if (!array || (array.size() != 0 && array.ndim() != 1)) {
    throw ValueProblem("ids: an array of N is expected");
  }
  if (const auto whole = wholeIdsOf(array)) {
    return *whole;
  }
  PersonNames& program = PersonNames::ofProgram();
  const bool areTimes = std::string_view("mM").find(array.dtype().kind()) != std::string::npos;
  std::vector<std::uint32_t> ids;
  ids.reserve(static_cast<std::size_t>(array.size()));
  for (const pybind11::handle name : array.attr("tolist")()) {
    if (pybind11::isinstance<pybind11::str>(name)) {
      ids.push_back(program.numberOf(name.cast<std::string>()));
      continue;
    }
    const bool isNumber = !areTimes && (PyIndex_Check(name.ptr()) || PyFloat_Check(name.ptr()));
    const double id = isNumber ? name.cast<double>() : -1.0;
    if (!(id >= 0.0 && id <= largest) || std::trunc(id) != id) {
      throw ValueProblem("ids: a whole number from 0 to 4294967295 is expected, or a text");
    }
    ids.push_back(program.numberOf(static_cast<std::int64_t>(id)));
  }
  return ids;
}

}  // namespace grouptracker
