#include "host/batch/BatchSummary.h"

#include "host/base/FileDescriptor.h"
#include "host/base/OutputPlace.h"
#include "host/batch/ManifestReader.h"

#include <QUrl>
#include <fmt/format.h>

#include <algorithm>

namespace grouptracker {

namespace {

constexpr std::size_t rowsOfPage = 1000;
constexpr std::size_t mostFailed = 200;  // rows at the head of the first page

const char* const header =
    "name,state,frames,people,groups,events,windowed,whole,pairs,seconds,megabytes,message\n";

const char* const style = R"(<!doctype html>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Recordings</title>
<style>
body { font: 15px/1.4 sans-serif; margin: 1.5em; }
table { border-collapse: collapse; }
th, td { padding: .15em .7em; border-bottom: 1px solid #ddd; text-align: right; }
th:first-child, td:first-child, td:last-child { text-align: left; }
.failed, .open { background: #fbe9e7; }
nav { margin: 1em 0; }
</style>
)";

const char* const tableHead =
    "<table><tr><th>recording<th>state<th>frames<th>people<th>groups<th>events"
    "<th>windowed<th>whole<th>pairs<th>seconds<th>MB<th>\n";

/// The numbers of a row, in the order of the header.
QStringList numbersOf(const RecordingResult& result) {
  QStringList numbers;
  for (const auto number : {result.frames, result.people, result.groups, result.events}) {
    numbers.push_back(QString::number(number));
  }
  const auto score = [&](double RecordingScores::*member) {
    return result.scores ? QString::number((*result.scores).*member, 'f', 3) : QString();
  };
  numbers << score(&RecordingScores::windowed) << score(&RecordingScores::whole)
          << score(&RecordingScores::pairs);
  return numbers << QString::number(result.seconds, 'f', 2)
                 << QString::number(result.megabytes, 'f', 1);
}

const char* stateOf(const std::optional<RecordingResult>& result) {
  return !result ? "open" : result->isDone ? "done" : "failed";
}

std::string tableRow(const std::string& name, const std::string& state,
                     const RecordingResult& result) {
  return fmt::format("{},{},{},{}\n", csvCell(name), csvCell(state),
                     numbersOf(result).join(',').toStdString(), csvCell(result.message));
}

/// A name with a link, if the recording has a file to link to.
QString linked(const std::string& name, const RecordingResult& result) {
  const QString text = QString::fromStdString(name).toHtmlEscaped();
  const auto has = [&result](const char* file) {
    return std::any_of(result.outputs.begin(), result.outputs.end(),
                       [file](const FileMark& mark) { return mark.path == file; });
  };
  const char* const file = has("report.html")    ? "report.html"
                           : has("groups.jsonl") ? "groups.jsonl"
                           : has("log.txt")      ? "log.txt"
                                                 : nullptr;
  const QString folder = QUrl::toPercentEncoding(QString::fromStdString(name));
  return file == nullptr ? text
                         : QString("<a href=\"recordings/%1/%2\">%3</a>").arg(folder, file, text);
}

QString pageRow(const std::string& name, const std::optional<RecordingResult>& result) {
  const RecordingResult shown = result.value_or(RecordingResult());
  return QString("<tr class=%1><td>%2<td>%1<td>%3<td>%4\n")
      .arg(stateOf(result), linked(name, shown), numbersOf(shown).join("<td>"),
           QString::fromStdString(shown.message).toHtmlEscaped());
}

QString pageName(std::size_t page) {
  return page == 1 ? QString("index.html") : QString("index-%1.html").arg(page);
}

}  // namespace

void BatchTotals::add(const std::optional<RecordingResult>& result) {
  if (!result) {
    ++open;
    return;
  }
  ++(result->isDone ? done : failed);
  sum.frames += result->frames;
  sum.people += result->people;
  sum.groups += result->groups;
  sum.events += result->events;
  sum.seconds += result->seconds;
  sum.megabytes = std::max(sum.megabytes, result->megabytes);
  if (result->scores) {
    ++scored;
    const double share = 1.0 / static_cast<double>(scored);
    RecordingScores mean = sum.scores.value_or(RecordingScores());
    for (const auto member :
         {&RecordingScores::windowed, &RecordingScores::whole, &RecordingScores::pairs}) {
      mean.*member += ((*result->scores).*member - mean.*member) * share;
    }
    sum.scores = mean;
  }
}

std::string BatchTotals::text() const {
  std::string text = fmt::format("{} done", done);
  text += failed > 0 ? fmt::format(", {} failed", failed) : std::string();
  text += open > 0 ? fmt::format(", {} open", open) : std::string();
  return text;
}

BatchSummary::BatchSummary(const std::string& folder)
    : m_folder(QFile::decodeName(folder.c_str())), m_table(m_folder + "/summary.csv") {
  m_table.open(QIODevice::WriteOnly);  // a failure shows when it is written
  writeFile(m_table, header);
}

void BatchSummary::add(const std::string& name, const std::optional<RecordingResult>& result) {
  m_totals.add(result);
  const RecordingResult shown = result.value_or(RecordingResult());
  writeFile(m_table, QByteArray::fromStdString(tableRow(name, stateOf(result), shown)));
  addToPage(name, result);
}

void BatchSummary::addToPage(const std::string& name,
                             const std::optional<RecordingResult>& result) {
  if (m_inPage == rowsOfPage) {
    m_page == 1 ? m_first.swap(m_rows) : writePage(QString());
    m_rows.clear();
    m_inPage = 0;
    ++m_page;
  }
  const QString row = pageRow(name, result);
  m_rows += row;
  ++m_inPage;
  if (result && !result->isDone && m_totals.failed <= mostFailed) {
    m_failed += row;
  }
}

void BatchSummary::writePage(const QString& head) {
  QSaveFile file(m_folder + "/" + pageName(m_page));
  file.open(QIODevice::WriteOnly);
  const QString back =
      m_page == 1 ? QString() : "<nav><a href=\"index.html\">first page</a></nav>\n";
  writeFile(file, (style + head + back + tableHead + m_rows + "</table>\n").toUtf8());
  complete(file);
}

BatchTotals BatchSummary::finish() {
  const std::string all = tableRow("all", m_totals.text(), m_totals.sum);
  writeFile(m_table, QByteArray::fromStdString(all));
  complete(m_table);
  const std::size_t pages = m_page;
  QString head = "<h1>" + QString::fromStdString(m_totals.text()) + "</h1>\n<nav>";
  for (std::size_t page = 2; page <= pages; ++page) {
    head += QString("<a href=\"%1\">%2</a> ").arg(pageName(page)).arg(page);
  }
  head += "</nav>\n";
  if (!m_failed.isEmpty()) {
    head += "<h2>Failed</h2>\n" + QString(tableHead) + m_failed + "</table>\n<h2>All</h2>\n";
  }
  if (pages > 1) {
    writePage(QString());
    m_rows = m_first;
    m_page = 1;
  }
  for (std::size_t page = pages + 1; QFile::remove(m_folder + "/" + pageName(page)); ++page) {
  }
  const RecordingResult& sum = m_totals.sum;
  m_rows += "<tr><th>all<td><td>" + numbersOf(sum).join("<td>") + "<td>\n";
  writePage(head);
  return m_totals;
}

void BatchSummary::writeFile(QSaveFile& file, const QByteArray& text) {
  if (file.write(text) != text.size()) {
    throw OutputError(file.fileName().toStdString(), systemProblem("cannot be written"));
  }
}

void BatchSummary::complete(QSaveFile& file) {
  if (!file.commit()) {
    throw OutputError(file.fileName().toStdString(), systemProblem("cannot be written"));
  }
}

}  // namespace grouptracker
