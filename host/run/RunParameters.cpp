#include "host/run/RunParameters.h"

#include "host/base/OutputPlace.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>
#include <fmt/format.h>

#include <sstream>

namespace grouptracker {

namespace {

constexpr double annotatedRate = 2.5;  // frames a second, as people are usually annotated
const char* const setOption = "--set";

ParameterFile readUsers(const std::string& path) {
  ParameterFile values = readParameterFile(path);
  if (values.problem) {
    throw WrongParameters(*values.problem);
  }
  return values;
}

ParameterFile builtIn(double rate) {
  std::istringstream text(builtInParameters(rate));
  return readParameterFile(text, "built-in parameters");
}

/// Whether the file holds the text now.
bool isWritten(const QString& path, const std::string& text) {
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
         file.write(text.data(), static_cast<qint64>(text.size())) ==
             static_cast<qint64>(text.size()) &&
         file.commit();
}

std::string keep(const std::string& text, const std::string& name) {
  const QString file = QString::fromStdString("/grouptracker-parameters-" + name + ".txt");
  const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  for (const QString& folder : {cache, QDir::tempPath()}) {
    if (QDir().mkpath(folder) && isWritten(folder + file, text)) {
      return (folder + file).toStdString();
    }
  }
  throw OutputError((QDir::tempPath() + file).toStdString(), "cannot be written");
}

/// A short name for a text, the same for the same text.
std::string nameFor(const std::string& text) {
  constexpr int letters = 12;
  return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha1)
      .toHex()
      .left(letters)
      .toStdString();
}

}  // namespace

RunParameters::RunParameters(const std::string& file, const std::vector<std::string>& changes)
    : m_file(file),
      m_changes(changes),
      m_rate(annotatedRate),
      m_values(file.empty() ? builtIn(annotatedRate) : readUsers(file)) {
  change();
}

void RunParameters::suit(double framesPerSecond) {
  if (m_file.empty()) {
    m_rate = framesPerSecond;
    m_values = builtIn(m_rate);
    change();
  }
}

void RunParameters::change() {
  for (const std::string& text : m_changes) {
    const auto equals = text.find('=');
    if (equals == std::string::npos) {
      throw InputError(setOption, "label=value is expected instead of " + text);
    }
    try {
      m_values.set(text.substr(0, equals), text.substr(equals + 1));
    } catch (const ValueProblem& problem) {
      throw InputError(setOption, problem.what());
    }
  }
}

std::string RunParameters::file() const {
  if (m_changes.empty()) {
    return m_file.empty() ? keep(m_values.text(), fmt::format("{:g}", m_rate)) : m_file;
  }
  const std::string text = m_values.text();
  return keep(text, nameFor(text));
}

std::string RunParameters::textWithMeanings() const {
  std::string text = m_values.text();
  text += "\n# Order and labels are fixed; comments stand behind the last value only.\n";
  for (const ParameterRow& row : parameterRows()) {
    text += fmt::format("# {} {} Unit: {}.\n", row.label, row.help, row.unit);
  }
  return text;
}

}  // namespace grouptracker
