// Every job of the command where its output cannot be written: one line, exit 2, nothing left.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "run_command.h"

namespace qarv::test {
namespace {

namespace fs = std::filesystem;

/// A subcommand with everything that it can write; OUT stands for the folder of its outputs.
struct Job {
  const char* name;
  const char* arguments;
};

const Job kPrintingJobs[] = {
    {"generate_csv", "generate shock.json --csv OUT/a.csv"},
    {"generate_npy", "generate shock.json --npy OUT/a.npy"},
    {"generate_wav", "generate shock.json --wav OUT/a.wav"},
    {"generate_uff", "generate shock.json --uff OUT/a.uff"},
    {"generate_plot", "generate shock.json --plot OUT/a.png"},
    {"generate_record", "generate shock.json --record OUT/a.rec"},
    {"report_json", "report shock.json --json OUT/a.json"},
    {"report_html", "report shock.json --html OUT/a.html"},
    {"judge_json", "judge shock.json shock.csv --json OUT/a.json"},
    {"judge_plot", "judge shock.json shock.csv --plot OUT/a.svg"},
    {"srs_csv", "srs shock.json --points 400 --csv OUT/a.csv"},
    {"srs_json", "srs shock.json --points 400 --json OUT/a.json"},
    {"srs_plot", "srs shock.json --plot OUT/a.svg"},
    {"show_samples", "show measured.rec --samples OUT/a.csv"},
    {"batch_output", "batch definitions --output OUT/new"},
    {"batch_csv", "batch definitions --csv OUT/a.csv"},
};

const Job kSilentJobs[] = {
    {"show_output", "show measured.rec --output OUT/a.json --samples OUT/a.csv"},
};

void PrintTo(const Job& job, std::ostream* out) { *out << job.name; }

class FailingOutput : public ::testing::TestWithParam<Job> {
 protected:
  FailingOutput() {
    const std::string examples = QARV_SOURCE_DIR "/examples/definitions/";
    fs::copy_file(QARV_WAVE_COMMAND, folder / "qarv-wave");
    fs::copy_file(examples + "compensated_ramp.json", folder / "shock.json");
    fs::create_directory(folder / "definitions");
    fs::copy_file(folder / "shock.json", folder / "definitions/shock.json");
    fs::create_directory(folder / "out");
    WriteText(folder / "out/a.csv", "old");
    EXPECT_EQ(RunCommand({"generate", examples + "measured.json", "--record",
                          folder / "measured.rec", "--csv", folder / "w.csv"})
                  .code,
              0);
    EXPECT_EQ(Shell("./qarv-wave generate shock.json --csv shock.csv >generate.out"), 0);
  }

  /// Runs a line of shell in the folder.
  int Shell(const std::string& line) const {
    const std::string all = "cd " + ShellQuoted(folder.GetPath().string()) + " && " + line;
    const int status = std::system(all.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// The command's line, with its outputs in a folder.
  static std::string LineOf(const std::string& out) {
    std::string line = GetParam().arguments;
    for (auto at = line.find("OUT"); at != std::string::npos; at = line.find("OUT", at)) {
      line.replace(at, 3, out);
      at += out.size();
    }
    return "./qarv-wave " + line;
  }
  /// Expects one line on standard error, and the output folder as it was.
  void ExpectNothingLeft(int code) const {
    const std::string err = ReadText(folder / "err");
    EXPECT_EQ(code, 2) << err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
    EXPECT_TRUE(err.starts_with("qarv-wave: ")) << err;
    std::vector<std::string> left;
    for (const auto& entry : fs::recursive_directory_iterator(folder / "out")) {
      left.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(left, std::vector<std::string>{"a.csv"});
    EXPECT_EQ(ReadText(folder / "out/a.csv"), "old");
  }

  TempFolder folder;
};

TEST_P(FailingOutput, AWorkingFolderTakesIt) {
  EXPECT_EQ(Shell(LineOf("out") + " >out.txt 2>err"), 0) << ReadText(folder / "err");
  EXPECT_EQ(ReadText(folder / "err"), "");
}

TEST_P(FailingOutput, AFolderThatIsReadOnly) {
  // The administrator may write everywhere, and becomes somebody else for this.
  const std::string user =
      geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  fs::permissions(folder.GetPath(), fs::perms{0755});
  fs::permissions(folder / "out", fs::perms{0555});
  const int code = Shell("{ " + user + LineOf("out") + " >/dev/null; } 2>err");
  fs::permissions(folder / "out", fs::perms{0755});
  ExpectNothingLeft(code);
  EXPECT_NE(ReadText(folder / "err").find("Permission denied"), std::string::npos)
      << ReadText(folder / "err");
}

TEST_P(FailingOutput, AFileThatGetsTooLarge) {
  // A block is 512 bytes, which is less than the shortest of the files.
  ExpectNothingLeft(Shell("{ ulimit -f 0; " + LineOf("out") + " >/dev/null; } 2>&1 | cat >err; " +
                          "grep -q . err && exit 2"));
}

TEST_P(FailingOutput, ADiskThatIsFull) {
  if (Shell("unshare --map-root-user --mount mount -t tmpfs -o size=4k none out 2>err") != 0) {
    GTEST_SKIP() << "no file system can be mounted here: " << ReadText(folder / "err");
  }
  // The disk lives as long as the shell in it, which says what is left on it.
  const std::string line =
      "mount -t tmpfs -o size=4k none out && { head -c 3072 /dev/zero >out/full; " + LineOf("out") +
      " >/dev/null 2>err; echo $? >code; ls -A out >left; }";
  ASSERT_EQ(Shell("unshare --map-root-user --mount sh -c " + ShellQuoted(line)), 0);
  EXPECT_EQ(ReadText(folder / "left"), "full\n") << ReadText(folder / "err");
  EXPECT_EQ(ReadText(folder / "code"), "2\n");
  ExpectNothingLeft(2);
}

class FailingStandardOutput : public FailingOutput {};

TEST_P(FailingStandardOutput, IsFull) {
  ExpectNothingLeft(Shell(LineOf("out") + " >/dev/full 2>err"));
}

TEST_P(FailingStandardOutput, HasAReaderThatGoesAway) {
  // The reader is gone before the first byte.
  ASSERT_EQ(Shell("{ sleep 0.2; " + LineOf("out") + " 2>err; echo $? >code; } | true"), 0);
  EXPECT_EQ(ReadText(folder / "code"), "2\n");
  ExpectNothingLeft(2);
}

std::string NameOf(const ::testing::TestParamInfo<Job>& job) { return job.param.name; }

INSTANTIATE_TEST_SUITE_P(Printing, FailingOutput, ::testing::ValuesIn(kPrintingJobs), NameOf);
INSTANTIATE_TEST_SUITE_P(Silent, FailingOutput, ::testing::ValuesIn(kSilentJobs), NameOf);
INSTANTIATE_TEST_SUITE_P(Printing, FailingStandardOutput, ::testing::ValuesIn(kPrintingJobs),
                         NameOf);

}  // namespace
}  // namespace qarv::test
