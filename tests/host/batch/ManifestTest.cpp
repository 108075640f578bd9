#include "host/batch/ManifestReader.h"
#include "host/batch/RecordingRules.h"
#include "tests/support/base/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace grouptracker {

namespace {

using testing::ElementsAre;

/// A folder with two inputs, and rules for a `run` that knows five options.
class Manifest : public testing::Test {
 protected:
  Manifest() {
    m_folder.write("a.csv", "frame,id,x,y\n");
    m_folder.write("b c.csv", "frame,id,x,y\n");
    std::filesystem::create_directory(m_folder.path() / "out");
    m_folder.write("out/old.csv", "frame,id,x,y\n");
  }
  RecordingRules rules(const std::string& file) const {
    const auto check = [](const std::string& option) {
      return option == "--rate=fast" ? std::optional<std::string>("--rate: a number is expected")
                                     : std::nullopt;
    };
    return {{{"rate", false, false, false, ""},
             {"set", false, false, false, ""},
             {"images", false, true, false, "none"},
             {"events", false, false, true, ""},
             {"mobile-dump", false, false, true, "none"},
             {"output", false, false, true, ""},
             {"top-view", true, false, false, ""}},
            check,
            (m_folder.path() / file).string(),
            (m_folder.path() / "out").string()};
  }
  /// Each recording in words, or all that is wrong.
  std::vector<std::string> read(const std::string& file, const std::string& text) const {
    m_folder.write(file, text);
    RecordingRules rules = this->rules(file);
    std::vector<std::string> found;
    std::vector<std::string> wrong;
    const auto onProblem = [&](const InputError& problem) {
      const std::string prefix = m_folder.path().string() + "/";
      wrong.push_back(std::string(problem.what()).substr(prefix.size()));
    };
    const auto reader = ManifestReader::open((m_folder.path() / file).string(), onProblem);
    for (ManifestEntry entry; reader->next(entry);) {
      rules.check(entry, onProblem);
      const Recording recording = rules.recordingOf(entry);
      found.push_back(recording.name + "|" + recording.input + "|" + recording.truth);
      for (const std::string& option : recording.options("W")) {
        found.back() += "|" + option;
      }
    }
    rules.checkNames(onProblem);
    return wrong.empty() ? found : wrong;
  }

  TempFolder m_folder;
};

TEST_F(Manifest, SaysTheSameAsCsvAndAsToml) {
  const auto expected = ElementsAre("one|a.csv||--rate=12.5|--set=a=1|--set=b=2|--top-view",
                                    "two|b c.csv|a.csv|--rate=25|--events=W/e.jsonl",
                                    "th,\"ree|a.csv||--rate=25|--images=none|--mobile-dump=none");
  EXPECT_THAT(read("m.csv",
                   "name,input,truth,rate,set,top-view,events,images,mobile-dump\r\n"
                   "one, a.csv ,,12.5,a=1;b=2,true,,,\r\n"
                   "\r\n"
                   "two,\"b c.csv\",a.csv,25,,false,e.jsonl,,\r\n"
                   "\"th,\"\"ree\",a.csv,,25,,,,none,none\r\n"),
              expected);
  EXPECT_THAT(read("m.toml",
                   "defaults.rate = 25\n"
                   "[[recording]]\nname = \"one\"\ninput = \"a.csv\"\nrate = 12.5\n"
                   "set = [\"a=1\", \"b=2\"]\ntop-view = true\n"
                   "[[recording]]\nname = \"two\"\ninput = \"b c.csv\"\ntruth = \"a.csv\"\n"
                   "top-view = false\nevents = \"e.jsonl\"\n"
                   "[[recording]]\nname = 'th,\"ree'\ninput = \"a.csv\"\nimages = \"none\"\n"
                   "mobile-dump = \"none\"\n"),
              expected);
}

TEST_F(Manifest, GetsAllItsProblemsWithTheirLines) {
  EXPECT_THAT(
      read("m.csv",
           "name,input,rat,rate,output,images,events,top-view\n"
           "all,a.csv,1,fast,x,none,,\n"
           "two,missing.csv,1,25,x,missing,../e.jsonl,maybe\n"
           "Two,out/old.csv,,,,,groups.jsonl,\n"
           ",a.csv,,,,,,\n"
           "../up,a.csv,,,,,,\n"
           "short,a.csv\n"
           "open,\"a.csv,,,,,,\n"),
      ElementsAre("m.csv:2: name: all is the summary's last row",
                  "m.csv:1: rat is no option of run; did you mean rate?",
                  "m.csv:2: --rate: a number is expected",
                  "m.csv:1: output is given by the batch itself",
                  "m.csv:3: missing.csv: cannot be read: No such file or directory",
                  "m.csv:3: missing: cannot be read: No such file or directory",
                  "m.csv:3: events: ../e.jsonl is no name of a file, which will be in the "
                  "recording's folder",
                  "m.csv:3: top-view: true or false is expected",
                  "m.csv:4: out/old.csv lies in the folder of the results",
                  "m.csv:4: events: groups.jsonl is written for every recording",
                  "m.csv:5: name is missing", "m.csv:6: name: ../up cannot be the name of a folder",
                  "m.csv:7: 2 cells where the first line has 8",
                  "m.csv:8: a quote is not closed on its line",
                  "m.csv:4: the name is that of line 3, or differs in capitals only"));
  EXPECT_THAT(read("m.toml", "x = 1\n[[recording]]\nname = \"one\"\nrate = \"fast\"\nspeed = 1\n"),
              ElementsAre("m.toml:1: x: only [defaults] and [[recording]] are known",
                          "m.toml:4: --rate: a number is expected",
                          "m.toml:5: speed is no option of run", "m.toml:2: input is missing"));
  EXPECT_THAT(read("m.toml",
                   "[[recording]]\nname = \"one\"\ninput = \"a.csv\"\nstrict = true\n"
                   "[recording.set]\ndelay = 4\n"),
              ElementsAre("m.toml:5: set: a value, or a list of values, is expected",
                          "m.toml:4: strict has no sense in a batch"));
  EXPECT_THAT(read("m.csv",
                   "name,input,events,mobile-dump\n"
                   "one,a.csv,x,x\n"
                   "two,a.csv,x,none\n"
                   "three,.,,\n"),
              ElementsAre("m.csv:2: mobile-dump: x is written by another option, too",
                          "m.csv:4: . holds the folder of the results"));
  EXPECT_THAT(errorOf([&] { read("broken.toml", "[[recording]]\nname = \n"); }),
              testing::HasSubstr("broken.toml:2: "));
  EXPECT_THAT(errorOf([&] { read("empty.csv", ""); }), testing::HasSubstr("names the columns"));
}

TEST(CsvCell, IsReadAsTheTextThatItHolds) {
  EXPECT_EQ(csvCell("plain text"), "plain text");
  EXPECT_EQ(csvCell("a,\"b\"\nc"), "\"a,\"\"b\"\" c\"");
}

}  // namespace

}  // namespace grouptracker
