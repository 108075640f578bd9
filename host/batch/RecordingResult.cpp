#include "host/batch/RecordingResult.h"

#include "host/base/FileDescriptor.h"
#include "host/base/JsonAccess.h"
#include "host/base/JsonLine.h"
#include "host/base/OutputPlace.h"

#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <exception>

namespace grouptracker {

namespace {

void appendMarks(json_line::Line& line, const char* name, const FileMarks& marks) {
  json_line::append(line, "\n \"{}\": ", name);
  json_line::appendArray(line, marks, [&line](const FileMark& mark) {
    json_line::append(line, "{{\"path\": {}, \"size\": {}, \"modified\": {}, \"hash\": {}}}",
                      jsonText(mark.path), mark.size, mark.modified, jsonText(mark.hash));
  });
  json_line::append(line, ",");
}

std::string textOf(const RecordingResult& result) {
  json_line::Line line;
  json_line::append(line, "{{\"done\": {}, \"message\": {},\n \"request\": ", result.isDone,
                    jsonText(result.message));
  json_line::appendArray(line, result.request, [&line](const std::string& text) {
    json_line::append(line, "{}", jsonText(text));
  });
  json_line::append(line, ",");
  appendMarks(line, "inputs", result.inputs);
  appendMarks(line, "outputs", result.outputs);
  if (result.scores) {
    json_line::append(line, "\n \"windowed\": {}, \"whole\": {}, \"pairs\": {},",
                      jsonNumber(result.scores->windowed), jsonNumber(result.scores->whole),
                      jsonNumber(result.scores->pairs));
  }
  json_line::append(line, "\n \"frames\": {}, \"people\": {}, \"groups\": {}, \"events\": {},",
                    result.frames, result.people, result.groups, result.events);
  json_line::append(line, "\n \"seconds\": {}, \"megabytes\": {}}}\n", jsonNumber(result.seconds),
                    jsonNumber(result.megabytes));
  return {line.data(), line.size()};
}

FileMark markIn(json::Value value) {
  return {json::asText(value["path"], "path"), json::as<std::int64_t>(value["size"], "size"),
          json::as<std::int64_t>(value["modified"], "modified"),
          json::asText(value["hash"], "hash")};
}

RecordingResult resultIn(json::Value value) {
  RecordingResult result;
  result.isDone = value["done"].get_bool();
  result.message = json::asText(value["message"], "message");
  json::readArray(
      value["request"], "request", [](json::Value text) { return json::asText(text, "request"); },
      result.request);
  json::readArray(value["inputs"], "inputs", markIn, result.inputs);
  json::readArray(value["outputs"], "outputs", markIn, result.outputs);
  json::Value windowed;
  if (value["windowed"].get(windowed) == simdjson::SUCCESS) {
    result.scores = {json::as<double>(windowed, "windowed"),
                     json::as<double>(value["whole"], "whole"),
                     json::as<double>(value["pairs"], "pairs")};
  }
  result.frames = json::as<std::uint64_t>(value["frames"], "frames");
  result.people = json::as<std::uint64_t>(value["people"], "people");
  result.groups = json::as<std::uint64_t>(value["groups"], "groups");
  result.events = json::as<std::uint64_t>(value["events"], "events");
  result.seconds = json::as<double>(value["seconds"], "seconds");
  result.megabytes = json::as<double>(value["megabytes"], "megabytes");
  return result;
}

}  // namespace

bool RecordingResult::isOfSame(const RecordingResult& other) const {
  const auto isSame = [](const FileMark& a, const FileMark& b) {
    return a.path == b.path && a.hash == b.hash;
  };
  return request == other.request &&
         std::equal(inputs.begin(), inputs.end(), other.inputs.begin(), other.inputs.end(), isSame);
}

std::optional<RecordingResult> RecordingResult::read(const std::string& path) {
  QFile file(QFile::decodeName(path.c_str()));
  if (!file.open(QIODevice::ReadOnly)) {
    return std::nullopt;
  }
  try {
    simdjson::dom::parser parser;
    return resultIn(json::parse(parser, file.readAll().toStdString()));
  } catch (const std::exception&) {  // nothing that this program puts in place
    return std::nullopt;
  }
}

void RecordingResult::write(const std::string& path) const {
  QSaveFile file(QFile::decodeName(path.c_str()));
  const QByteArray text = QByteArray::fromStdString(textOf(*this));
  const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                         file.write(text) == text.size() && file.commit();
  if (!isWritten) {
    throw OutputError(path, systemProblem("cannot be written"));
  }
}

}  // namespace grouptracker
