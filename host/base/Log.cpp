#include "host/base/Log.h"

#include "host/base/JsonLine.h"

#include <QDateTime>
#include <fmt/format.h>

#include <array>
#include <cstdio>

namespace grouptracker {

namespace {

program_log::Format chosenFormat = program_log::Format::text;

const std::array<const char*, 3> levelNames{"info", "warning", "error"};

}  // namespace

void program_log::setFormat(Format format) {
  chosenFormat = format;
}

void program_log::write(Level level, const std::string& text) {
  if (chosenFormat == Format::text) {
    fmt::print(stderr, "{}\n", text);
    return;
  }
  const std::string now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString();
  fmt::print(stderr, "{{\"time\": \"{}\", \"level\": \"{}\", \"message\": {}}}\n", now,
             levelNames.at(static_cast<std::size_t>(level)), jsonText(text));
}

}  // namespace grouptracker
