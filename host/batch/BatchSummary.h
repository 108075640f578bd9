#pragma once

#include "host/batch/RecordingResult.h"

#include <QFile>
#include <QSaveFile>

#include <cstddef>
#include <optional>
#include <string>

namespace grouptracker {

/// What all recordings of a batch gave together.
struct BatchTotals {
  std::size_t done = 0;
  std::size_t failed = 0;
  std::size_t open = 0;  ///< nothing became of them so far
  RecordingResult sum;   ///< numbers added, the most memory, the mean of the scores
  std::size_t scored = 0;

  std::size_t count() const { return done + failed + open; }
  void add(const std::optional<RecordingResult>& result);
  /// "198 done, 2 failed".
  std::string text() const;
};

/// The tables of a batch: `summary.csv` with a row for each recording and one for all,
///
///     name,state,frames,people,groups,events,windowed,whole,pairs,seconds,megabytes,message
///     north,done,3000,41,12,40,0.91,0.88,0.93,12.1,61.5,
///     all,1 done,3000,41,12,40,0.91,0.88,0.93,12.1,61.5,
///
/// and `index.html` with links to the reports, a thousand rows a page, what failed first. They are
/// put in place as wholes; what cannot be written is an `OutputError`.
class BatchSummary {
 public:
  explicit BatchSummary(const std::string& folder);

  /// Adds a row; no result is one that is still open.
  void add(const std::string& name, const std::optional<RecordingResult>& result);
  BatchTotals finish();

 private:
  void addToPage(const std::string& name, const std::optional<RecordingResult>& result);
  void writePage(const QString& head);
  void writeFile(QSaveFile& file, const QByteArray& text);
  void complete(QSaveFile& file);

  QString m_folder;
  QSaveFile m_table;
  QString m_rows;    ///< of the page that is being filled
  QString m_first;   ///< the rows of the first page, which is written last
  QString m_failed;  ///< rows, up to a number
  std::size_t m_inPage = 0;
  std::size_t m_page = 1;
  BatchTotals m_totals;
};

}  // namespace grouptracker
