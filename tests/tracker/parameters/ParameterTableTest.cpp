#include "tracker/parameters/ParameterTable.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

/// The cells of one row of a table of the page.
std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t begin = 1; begin < line.size();) {
    const std::size_t end = line.find('|', begin);
    const std::string cell = line.substr(begin, end - begin);
    const std::size_t first = cell.find_first_not_of(' ');
    cells.push_back(first == std::string::npos
                        ? ""
                        : cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
    begin = end + 1;
  }
  return cells;
}

TEST(ParameterTable, IsWhatThePageSays) {
  std::ifstream page(PARAMETER_PAGE);
  std::size_t number = 0;
  for (std::string line; std::getline(page, line);) {
    if (line.find(":\" | ") == std::string::npos || !line.starts_with("| ")) {
      continue;
    }
    const auto cells = cellsOf(line);
    ASSERT_EQ(cells.size(), 6U) << line;
    ASSERT_LT(number, parameterCount) << line;
    const ParameterRow& row = parameterRows()[number++];
    EXPECT_EQ(cells[0], std::to_string(number));
    EXPECT_EQ(cells[1], fmt::format("\"{}\"", row.label));
    EXPECT_EQ(cells[2], row.unit) << row.label;
    EXPECT_EQ(cells[3], row.usual.isLimited()
                            ? fmt::format("{:g} to {:g}", row.usual.lowest, row.usual.highest)
                            : "")
        << row.label;
    EXPECT_EQ(cells[4], row.help) << row.label;
  }
  EXPECT_EQ(number, parameterCount);
}

TEST(ParameterTable, HoldsForTheSampleFiles) {
  for (const auto& sample : std::filesystem::directory_iterator(SAMPLE_PARAMETERS)) {
    std::ifstream file(sample.path());
    std::string label;
    std::string value;
    for (const ParameterRow& row : parameterRows()) {
      ASSERT_TRUE(file >> label >> value) << sample.path();
      EXPECT_EQ(label, row.label) << sample.path();
      EXPECT_TRUE(row.usual.contains(std::strtod(value.c_str(), nullptr)))
          << sample.path() << ": " << label << ' ' << value;
    }
    EXPECT_FALSE(file >> label) << sample.path();
  }
}

}  // namespace
