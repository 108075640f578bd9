#include "tests/support/base/Images.h"
#include "tests/support/base/Texts.h"
#include "tests/support/host/WalkingScene.h"
#include "tests/support/program/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

namespace fs = std::filesystem;

/// Files whose names mean something to a shell, to a page, to a database or to a library.
class FileNames : public testing::TestWithParam<std::string> {
 protected:
  FileNames() : base(folder.path() / GetParam()) {
    fs::create_directories(base.parent_path());
    folder.write("p.txt", sampleParameters());
    const std::string image = base.string() + ".png";
    writeImage(folder.path() / "i.png", cv::Mat(40, 60, CV_8UC3, cv::Scalar(9, 9, 9)));
    fs::copy_file(folder.path() / "i.png", image);
    std::string scene;
    for (int frame = 1; frame <= 12; ++frame) {
      const nlohmann::json name = fs::path(image).filename().string();
      scene += walkingLine(frame, "\"image\": " + name.dump() + ", ");
    }
    folder.write(GetParam() + ".jsonl", scene);
  }
  QString file(const std::string& ending) const {
    return QString::fromStdString(base.string() + ending);
  }
  std::string text(const std::string& ending) const { return textOf(base.string() + ending); }

  const TempFolder folder;
  const fs::path base;
};

const std::vector<std::pair<QString, std::string>> outputs{
    {"--output", ".groups"}, {"--actors", ".actors"},   {"--csv", ".csv"},
    {"--graph", ".dot"},     {"--video", ".mkv"},       {"--diagnostics", ".lines"},
    {"--sqlite", ".sqlite"}, {"--mobile-dump", ".dump"}};

TEST_P(FileNames, OfInputsImagesAndOutputsMayBeAny) {
  const bool isLong = GetParam().size() > 512;  // SQLite itself takes no longer paths
  QStringList arguments{"run", file(".jsonl"), "--parameters", "p.txt", "--quiet"};
  for (const auto& [option, ending] : outputs) {
    if (!isLong || option != "--sqlite") {
      arguments << option << file(ending);
    }
  }
  Program run(folder.path());
  EXPECT_EQ(run.run(arguments), 0) << run.errors();
  for (const auto& [option, ending] : outputs) {
    EXPECT_EQ(text(ending).empty(), isLong && option == "--sqlite") << ending;
  }

  Program report(folder.path());
  EXPECT_EQ(report.run({"report", file(".jsonl"), file(".groups"), "--output", file(".html")}), 0)
      << report.errors();
  EXPECT_THAT(text(".html"), testing::Not(testing::HasSubstr("<b>")));
  EXPECT_THAT(text(".html"), testing::HasSubstr("base64"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), isLong ? 3 : 13)
      << "nothing is written under another name";
}

/// A path of nearly the 4096 bytes that the system takes.
std::string longPath() {
  std::string path;
  for (int part = 0; part < 18; ++part) {
    path += std::string(200, static_cast<char>('a' + part)) + "/";
  }
  return path + std::string(200, 'z');
}

INSTANTIATE_TEST_SUITE_P(Odd, FileNames,
                         testing::Values("what?x=1&mode=memory#%03d", "two\nlines",
                                         "$(touch x); '<b>\"", longPath()),
                         [](const auto& test) { return std::string(1, "QLSP"[test.index]); });

}  // namespace

}  // namespace grouptracker
