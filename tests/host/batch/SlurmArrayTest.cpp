#include "host/batch/SlurmArray.h"
#include "tests/support/base/Texts.h"

#include <QSysInfo>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace grouptracker {

namespace {

using testing::HasSubstr;

/// Commands of Slurm that say what the test wants and note how they were called.
class Slurm : public testing::Test {
 protected:
  Slurm() {
    std::filesystem::create_directory(m_folder.path() / "bin");
    command("sinfo", "echo one " + QSysInfo::machineHostName().toStdString());
    command("sbatch", "echo \"$@\" > " + path("called") + "; echo '42;cluster'");
    command("squeue", "exit 0");
    command("scontrol", "echo 'MaxArraySize            = 101'");
    ::setenv("PATH", (path("bin") + ":/usr/bin:/bin").c_str(), 1);
  }
  ~Slurm() override { ::setenv("PATH", m_before.c_str(), 1); }
  std::string path(const std::string& name) const { return m_folder.path() / name; }
  void command(const std::string& name, const std::string& lines) const {
    namespace fs = std::filesystem;
    fs::permissions(m_folder.write("bin/" + name, "#!/bin/sh\n" + lines + "\n"),
                    fs::perms::owner_all);
  }

  TempFolder m_folder;
  std::string m_before = std::getenv("PATH");
};

TEST_F(Slurm, GetsTheTasksWithWhatTheSiteWants) {
  SlurmArray array(path("s"), {"partition=long", "mem=2G"});
  array.submit("name", "echo $SLURM_ARRAY_TASK_ID\n", 3);
  EXPECT_EQ(array.job(), "-M cluster 42");
  EXPECT_EQ(textOf(path("s/task.sh")), "#!/bin/sh\necho $SLURM_ARRAY_TASK_ID\n");
  const std::string called = textOf(path("called"));
  EXPECT_THAT(called, HasSubstr("--requeue"));
  EXPECT_THAT(called, HasSubstr("--array=0-2 "));
  EXPECT_THAT(called, HasSubstr(" --partition=long --mem=2G " + path("s/task.sh")));
  EXPECT_EQ(array.itemsOfTask(100), 1U);
  EXPECT_EQ(array.itemsOfTask(100'000), 991U) << "of 101 tasks that the site allows";
}

TEST_F(Slurm, IsAskedUntilAllTasksHaveEnded) {
  command("squeue",
          "n=$(cat " + path("asked") + " 2>/dev/null || echo 0)\n" + "echo $((n + 1)) > " +
              path("asked") + "\n" +
              "case $n in\n"
              "0) echo 'CLUSTER: cluster'; echo 'R None'; echo 'PD JobHoldMaxRequeue' ;;\n"
              "1) echo 'cannot contact' >&2; exit 1 ;;\n"
              "2) echo 'R None'; echo 'PD Resources' ;;\n"
              "*) echo 'slurm_load_jobs error: Invalid job id specified' >&2; exit 1 ;;\n"
              "esac");
  SlurmArray array(path("s"), {});
  EXPECT_FALSE(array.takeUp());
  array.submit("name", "", 2);
  std::vector<std::string> seen;
  EXPECT_TRUE(array.follow([&seen](const SlurmArray::State& state) {
    seen.push_back(std::to_string(state.left) + state.reason);
  }));
  EXPECT_THAT(seen, testing::ElementsAre("2JobHoldMaxRequeue", "2", "0"));
  EXPECT_FALSE(SlurmArray(path("s"), {}).takeUp()) << "it has ended";
}

TEST_F(Slurm, IsTakenUpByALaterCommandWhereItWas) {
  SlurmArray(path("s"), {}).submit("name", "", 2);
  // Its first answer is none, which does not mean that nothing is there.
  command("squeue", "[ -e " + path("asked") + " ] && echo 'R None' && exit\n" + "echo \"$@\" > " +
                        path("asked") + "; exit 1");
  SlurmArray again(path("s"), {});
  EXPECT_TRUE(again.takeUp());
  EXPECT_EQ(again.job(), "-M cluster 42");
  EXPECT_THAT(textOf(path("asked")), testing::StartsWith("-M cluster -h -r -j 42 "));
  command("scancel", "echo \"$@\" > " + path("called"));
  SlurmArray(path("s"), {}).cancelEarlier();
  EXPECT_EQ(textOf(path("called")), "-M cluster 42\n");
}

TEST_F(Slurm, WantsPlacesThatAllMachinesSee) {
  SlurmArray array(path("s"), {"partition=long", "account=us"});
  const auto check = [&] { return array.checkPlaces({path("bin")}); };
  EXPECT_EQ(check(), "") << "one machine";
  command("sinfo", "echo 'CLUSTER: x'; echo far elsewhere long");
  command("srun", "echo \"$@\" > " + path("called") + "; for lines; do :; done; sh -c \"$lines\"");
  EXPECT_EQ(check(), "");
  EXPECT_THAT(textOf(path("called")), testing::StartsWith("--partition=long --account=us "));
  command("srun", "echo " + path("bin") + "; echo asked");
  EXPECT_EQ(errorOf(check),
            path("bin") +
                ": lies on a disk of this machine, which node far does not see; a folder "
                "that all share is needed");
  command("srun", "echo 'srun: error: Unable to allocate resources' >&2; exit 1");
  EXPECT_THAT(check(), HasSubstr("node far has no time to say whether it sees " + path("s")));
}

TEST_F(Slurm, TellsWhatItRefuses) {
  command("sbatch", "echo 'sbatch: error: invalid partition specified: x' >&2; exit 1");
  SlurmArray array(path("s"), {});
  EXPECT_EQ(errorOf([&] { array.submit("name", "", 2); }),
            "sbatch: sbatch: error: invalid partition specified: x (status 1)");
  std::filesystem::remove(path("bin/sinfo"));
  ::setenv("PATH", path("bin").c_str(), 1);
  EXPECT_EQ(errorOf([&] { array.checkPlaces({}); }), "--engine slurm: sinfo is not to be found");
}

TEST(SlurmQuoting, KeepsAnyWordWhole) {
  EXPECT_EQ(SlurmArray::quoted("it's $HOME"), "'it'\\''s $HOME'");
}

}  // namespace

}  // namespace grouptracker
