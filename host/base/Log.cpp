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

std::string objectOf(program_log::Level level, const std::string& text) {
  const std::string now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString();
  return fmt::format(R"({{"time": "{}", "level": "{}", "message": {}}})", now,
                     levelNames.at(static_cast<std::size_t>(level)), jsonText(text));
}

}  // namespace

void program_log::setFormat(Format format) {
  chosenFormat = format;
}

void program_log::write(Level level, const std::string& text) {
  const std::string line = (chosenFormat == Format::text ? text : objectOf(level, text)) + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace grouptracker
