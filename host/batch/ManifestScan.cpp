#include "host/batch/ManifestScan.h"

#include "host/base/InputError.h"
#include "host/base/OutputFile.h"
#include "host/batch/ManifestReader.h"
#include "host/batch/RecordingRules.h"
#include "host/input/InputFormats.h"

#include <QString>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

/// What the program itself writes, or what stands beside tracks: groups.txt, north.events.jsonl.
bool isBesideTracks(const fs::path& file) {
  constexpr std::array<std::string_view, 5> words{"groups", "true_groups", "truth", "actors",
                                                  "events"};
  const std::string name = file.filename();
  const std::string parts = "." + name + ".";
  return name.front() == '.' ||
         std::any_of(words.begin(), words.end(), [&parts](std::string_view word) {
           return parts.find("." + std::string(word) + ".") != std::string::npos;
         });
}

/// Whether a reader takes it and finds a frame; what is damaged behind it is told when it runs.
bool isInput(const fs::path& path) {
  try {
    InputOptions options;
    options.decodesVideo = false;
    const OpenedInput input = openInput(path, options);
    InputFrame frame;
    return input.frames->next(frame);
  } catch (const std::exception&) {
    return false;
  }
}

/// The entries of a folder by name.
std::vector<fs::path> entriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code problem;
  for (fs::directory_iterator item(folder, problem), end; item != end; item.increment(problem)) {
    entries.push_back(item->path());
  }
  if (problem) {
    throw InputError(folder, problem.message());
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

class Scan {
 public:
  Scan(const fs::path& root, const fs::path& seenFrom) : m_root(root), m_seenFrom(seenFrom) {}

  void look(const fs::path& folder);
  const std::string& rows() const { return m_rows; }
  std::size_t count() const { return m_count; }

 private:
  void add(const fs::path& input, const fs::path& folder, bool isAlone);
  std::string nameOf(const fs::path& input, const fs::path& folder);
  std::string shown(const fs::path& path) const;

  fs::path m_root;
  fs::path m_seenFrom;
  std::string m_rows;
  std::size_t m_count = 0;
  std::set<std::string> m_names;  ///< without regard to capitals
  std::set<fs::path> m_lookedAt;  ///< folders, without links
};

void Scan::look(const fs::path& folder) {
  std::error_code unknown;
  const fs::path place = fs::weakly_canonical(folder, unknown);
  const fs::path wayUp = fs::weakly_canonical(m_root, unknown).lexically_relative(place);
  const bool isAbove = !wayUp.empty() && wayUp != "." && *wayUp.begin() != "..";
  if (isAbove || !m_lookedAt.insert(place).second) {
    return;  // by a link
  }
  if (isInput(folder)) {
    add(folder, folder, true);
    return;
  }
  std::vector<fs::path> files;
  std::vector<fs::path> folders;
  for (const fs::path& entry : entriesOf(folder)) {
    std::error_code unreadable;
    if (fs::is_directory(entry, unreadable) && entry.filename().string().front() != '.') {
      folders.push_back(entry);
    } else if (fs::is_regular_file(entry, unreadable) && !isBesideTracks(entry) && isInput(entry)) {
      files.push_back(entry);
    }
  }
  for (const fs::path& file : files) {
    add(file, folder, files.size() == 1);
  }
  std::for_each(folders.begin(), folders.end(), [this](const fs::path& inner) { look(inner); });
}

void Scan::add(const fs::path& input, const fs::path& folder, bool isAlone) {
  const auto firstOf = [&](const std::vector<std::string>& names) {
    const auto found = std::find_if(names.begin(), names.end(), [&folder](const std::string& name) {
      return fs::is_regular_file(folder / name);
    });
    return found == names.end() ? std::string() : shown(folder / *found);
  };
  const std::string stem = input.stem();
  std::vector<std::string> truths{stem + ".truth.jsonl", stem + ".groups.txt"};
  std::vector<std::string> cameras{stem + ".calibration.yml"};
  if (isAlone) {
    truths.insert(truths.end(), {"truth.jsonl", "groups.txt"});
    cameras.emplace_back("calibration.yml");
  }
  m_rows += csvCell(nameOf(input, folder)) + "," + csvCell(shown(input)) + "," +
            csvCell(firstOf(truths)) + "," + csvCell(firstOf(cameras)) + "\n";
  ++m_count;
}

/// The way to it without the file's ending; with that, and a number, where another is called so.
std::string Scan::nameOf(const fs::path& input, const fs::path& folder) {
  fs::path way = input.lexically_relative(m_root);
  way = way == "." ? fs::weakly_canonical(m_root).filename() : way;
  const auto isFree = [this](std::string name) {
    name = QString::fromStdString(name).toCaseFolded().toStdString();
    return !problemOfName(name) && m_names.insert(name).second;
  };
  std::string name = input == folder ? way : way.parent_path() / way.stem();
  std::replace(name.begin(), name.end(), '/', '-');
  if (isFree(name)) {
    return name;
  }
  name = way;
  std::replace(name.begin(), name.end(), '/', '-');
  constexpr std::size_t longest = 100;  // bytes, with room for a number
  std::string numbered = name = name.substr(0, longest);
  for (int number = 2; !isFree(numbered); ++number) {
    numbered = fmt::format("{}-{}", name, number);
  }
  return numbered;
}

std::string Scan::shown(const fs::path& path) const {
  return m_root.is_absolute()
             ? path
             : fs::absolute(path).lexically_relative(fs::absolute(m_seenFrom).lexically_normal());
}

}  // namespace

std::size_t writeManifestOf(const std::string& folder, const std::string& manifest) {
  const fs::path root = fs::path(folder).lexically_normal();
  const fs::path clean = root.has_filename() ? root : root.parent_path();
  const fs::path seenFrom = fs::path(manifest).parent_path();
  Scan scan(clean, seenFrom.empty() ? fs::path(".") : seenFrom);
  scan.look(clean);
  OutputFile(manifest).writeLines("name,input,truth,calibration\n" + scan.rows());
  return scan.count();
}

}  // namespace grouptracker
