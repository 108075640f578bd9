#pragma once

#include "host/report/ImageStrip.h"
#include "host/report/ReportData.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

/// What a report says about itself.
struct ReportTitle {
  std::string input;
  std::string groups;
  double framesPerSecond = 0.0;  ///< of the input; 0 when nobody knows
  std::string title;             ///< empty for one that follows from the input
  std::string date;              ///< when the groups were written
  std::string program;           ///< name and version of what made the report
  /// Labels and values of the run's parameters; empty when nobody knows them.
  std::vector<std::pair<std::string, std::string>> parameters;
};

/// The explanation of each group, in plain text.
using Explanations = std::map<std::uint32_t, std::string>;

/// The whole page: one file that needs nothing else.
QByteArray makeReportPage(const ReportTitle& title, ReportData& data, const ImageStrip& images,
                          const Explanations& explanations);

}  // namespace grouptracker
