// Standard streams, FIFOs and process substitutions as inputs and outputs, and what happens where
// the streams of the run itself are closed or full.
#include <gtest/gtest.h>

#include "run_command.h"

namespace qarv::test {
namespace {

namespace fs = std::filesystem;

// Where the memory can be bounded, a run that would take all of it ends; a sanitizer needs more
// than there is.
#if defined(__SANITIZE_ADDRESS__)
const std::string kBounded = "true";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
const std::string kBounded = "true";
#else
const std::string kBounded = "ulimit -v 2000000";
#endif
#else
const std::string kBounded = "ulimit -v 2000000";
#endif

class Streams : public ::testing::Test {
 protected:
  Streams() {
    fs::copy_file(QARV_SOURCE_DIR "/examples/definitions/half_sine_fixed.json",
                  folder / "shock.json");
    fs::create_symlink(QARV_WAVE_COMMAND, folder / "w");
    EXPECT_EQ(Bash("./w generate shock.json --csv expected.csv --record expected.rec --wav "
                   "expected.wav --plot expected.png >summary"),
              0);
  }
  /// Runs a line of bash in the folder.
  int Bash(const std::string& line) const {
    const std::string all = "cd " + ShellQuoted(folder.GetPath().string()) +
                            " && timeout 60 bash -c " + ShellQuoted(line);
    const int status = std::system(all.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string Text(const std::string& file) const { return ReadText(folder / file); }
  void ExpectSame(const std::string& file, const std::string& expected) const {
    EXPECT_TRUE(Text(file) == Text(expected)) << file << " is not " << expected;
    EXPECT_FALSE(Text(file).empty());
  }
  TempFolder folder;
};

// ---- Outputs -----------------------------------------------------------------------------------

TEST_F(Streams, AnOutputOnStandardOutputSendsTheMessagesToStandardError) {
  for (const char* const name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
    ASSERT_EQ(Bash(std::string("./w generate shock.json --csv ") + name + " >out 2>err"), 0);
    ExpectSame("out", "expected.csv");
    ExpectSame("err", "summary");
    ASSERT_EQ(Bash(std::string("./w generate shock.json --csv ") + name + " 2>err | cat >out"), 0);
    ExpectSame("out", "expected.csv");
  }
  ASSERT_EQ(Bash("./w report shock.json --json - 2>err >out"), 0);
  EXPECT_TRUE(Text("out").starts_with("{\n")) << Text("out");
  EXPECT_TRUE(Text("err").starts_with("family ")) << Text("err");
  ASSERT_EQ(Bash("mkdir in && cp shock.json in && ./w batch in --csv - >out 2>err"), 0);
  EXPECT_TRUE(Text("out").starts_with("definition,family,")) << Text("out");
}

TEST_F(Streams, TheFileThatStandardOutputGoesToKeepsWhatElseIsWrittenThere) {
  ASSERT_EQ(Bash("{ echo head; ./w generate shock.json --csv ./all 2>err; echo tail; } >all"), 0);
  EXPECT_EQ(Text("all"), "head\n" + Text("expected.csv") + "tail\n");
  ASSERT_EQ(Bash("{ ./w generate shock.json --csv /dev/fd/5 >out; echo tail >&5; } 5>all"), 0);
  EXPECT_EQ(Text("all"), Text("expected.csv") + "tail\n");
  ExpectSame("out", "summary");
}

TEST_F(Streams, FifosAndProcessSubstitutionsTakeEveryOutput) {
  ASSERT_EQ(Bash("mkfifo f && { cat f >csv & ./w generate shock.json --csv f >out && wait; }"), 0);
  ExpectSame("csv", "expected.csv");
  ExpectSame("out", "summary");
  EXPECT_TRUE(fs::is_fifo(folder / "f"));
  // A sound file is written back and forth, a picture by another program.
  ASSERT_EQ(Bash("./w generate shock.json --record >(cat >rec) --wav >(cat >wav) --plot >(cat >png)"
                 " >out; code=$?; sleep 0.3; exit $code"),
            0);
  ExpectSame("rec", "expected.rec");
  ExpectSame("wav", "expected.wav");
  EXPECT_TRUE(Text("png").starts_with("\x89PNG"));
  EXPECT_EQ(Bash("./w generate shock.json --csv /dev/null >out"), 0);
  ExpectSame("out", "summary");
}

TEST_F(Streams, OneStreamDoesNotTakeTwoOutputs) {
  for (const char* const two :
       {"--csv - --record /dev/stdout", "--csv /dev/fd/1 --uff -", "--csv f --uff ./f"}) {
    EXPECT_EQ(
        Bash(std::string("test -p f || mkfifo f; ./w generate shock.json ") + two + " >out 2>err"),
        2);
    EXPECT_NE(Text("err").find("is written twice"), std::string::npos) << two << Text("err");
    EXPECT_EQ(Text("out"), "");
  }
}

TEST_F(Streams, NothingComesOutWhereSomethingFails) {
  EXPECT_EQ(Bash("./w generate shock.json --csv - --record no/such 2>err >out"), 2);
  EXPECT_EQ(Text("out"), "");
  EXPECT_EQ(Bash("TMPDIR=$PWD ./w generate shock.json --csv - >/dev/full 2>err"), 2);
  EXPECT_EQ(Text("err"), "qarv-wave: /dev/stdout: No space left on device\n");
  for (const std::string& name : folder.List()) EXPECT_FALSE(name.starts_with(".")) << name;
}

// ---- Inputs ------------------------------------------------------------------------------------

TEST_F(Streams, EveryInputIsReadFromStandardInput) {
  ASSERT_EQ(Bash("cat shock.json | ./w generate - --csv out.csv >out"), 0);
  ExpectSame("out.csv", "expected.csv");
  EXPECT_EQ(
      Bash("./w check - <shock.json >out && ./w report - <shock.json >a && cat expected.rec | "
           "./w report - >b && cmp a b"),
      0);
  EXPECT_EQ(
      Bash("./w judge shock.json - <expected.csv >out && ./w judge - expected.csv <expected.rec"
           " >out"),
      0);
  EXPECT_EQ(Bash("./w srs - <expected.csv >a && ./w srs expected.csv >b && cmp a b"), 0);
  EXPECT_EQ(
      Bash("./w generate shock.json --uff - 2>err | ./w srs - >a && ./w srs - <shock.json >b && "
           "tail -1 a >la; tail -1 b | cmp - la"),
      0);
  EXPECT_EQ(Bash("./w show - <expected.rec >a && ./w show expected.rec -o - >b && cmp a b"), 0);
}

TEST_F(Streams, ARequiredSpectrumIsReadFromStandardInput) {
  WriteText(folder / "req.json",
            R"({"Q": 10, "Points": [[45, 20], [500, 40]], "TolUpper": 3, "TolLower": -3})");
  for (const char* const job : {"judge shock.json expected.csv", "srs shock.json"}) {
    const std::string line = std::string("./w ") + job + " --requirement ";
    const int code = Bash(line + "req.json --json file.json >file 2>err");
    EXPECT_EQ(Bash(line + "- --json stream.json <req.json >stream 2>err"), code) << Text("err");
    ExpectSame("stream", "file");
    ExpectSame("stream.json", "file.json");
  }
}

TEST_F(Streams, FifosAndProcessSubstitutionsAreInputs) {
  EXPECT_EQ(Bash("./w report <(cat shock.json) >a && ./w report shock.json >b && cmp a b"), 0);
  EXPECT_EQ(Bash("./w judge <(cat expected.rec) <(cat expected.csv) >out"), 0);
  EXPECT_EQ(Bash("mkfifo f.csv && { cat expected.csv >f.csv & ./w srs f.csv >out; }"), 0);
  // Byte by byte.
  EXPECT_EQ(Bash("for i in '{' '\"Fsamp\": 100, \"Single\": {\"Period\": 0.2, ' '\"PeakLevel\": 1, "
                 "\"Nsamp\": 40}}'; do printf '%s' \"$i\"; sleep 0.05; done | ./w report - >out"),
            0);
}

TEST_F(Streams, ADefinitionThatIsAStreamNamesItsSamplesFromTheWorkingFolder) {
  WriteText(folder / "m.csv", "0,1\n0.1,2\n0.2,1\n");
  const std::string json = R"({"Measure": {"MeasPath": "m.csv"}})";
  EXPECT_EQ(Bash("echo '" + json + "' | ./w generate - --record m.rec >out"), 0);
  EXPECT_EQ(Bash("./w generate <(echo '" + json + "') >out"), 0);
  EXPECT_EQ(Bash("./w show - <m.rec >out 2>err"), 2);
  EXPECT_NE(Text("err").find("--samples: is needed"), std::string::npos) << Text("err");
  EXPECT_EQ(
      Bash("./w show - --samples s.csv <m.rec >again.json && ./w generate again.json --record "
           "again.rec >out"),
      0);
}

TEST_F(Streams, OneStreamIsNotTwoInputs) {
  EXPECT_EQ(Bash("cat shock.json | ./w judge - - 2>err"), 2);
  EXPECT_EQ(Text("err"), "qarv-wave: /dev/stdin: is read twice\n");
  EXPECT_EQ(Bash("./w check shock.json <&- >out && ./w check - <&- 2>err"), 2);
  EXPECT_EQ(Text("err"), "qarv-wave: /dev/stdin: cannot be read: Bad file descriptor\n");
}

TEST_F(Streams, WhatHasNoEndIsRefused) {
  ASSERT_EQ(Bash("ln -s /dev/zero zero.json; ln -s /dev/zero zero.csv; ln -s /dev/zero zero.uff"),
            0);
  const auto error = [&](const std::string& line) {
    EXPECT_EQ(Bash(kBounded + "; " + line + " 2>err"), 2) << line;
    return Text("err");
  };
  for (const std::string name :
       {"/dev/zero", "/dev/urandom", "zero.json", "zero.csv", "zero.uff"}) {
    EXPECT_EQ(error("./w srs " + name), "qarv-wave: " + name + ": is a device\n");
  }
  EXPECT_EQ(error("tr '\\0' ' ' </dev/zero | ./w check -"),
            "qarv-wave: /dev/stdin: is larger than 67108864 bytes\n");
  EXPECT_EQ(error("tr '\\0' '1' </dev/zero | ./w judge shock.json -"),
            "qarv-wave: /dev/stdin: has a line of more than 65536 bytes\n");
  // The size that the system tells is not asked for.
  EXPECT_EQ(error("truncate -s 5G sparse.json && ./w check sparse.json"),
            "qarv-wave: sparse.json: is larger than 67108864 bytes\n");
}

// ---- The run's own streams ---------------------------------------------------------------------

TEST_F(Streams, AStandardErrorThatCannotBeWrittenChangesNoExitCode) {
  WriteText(folder / "refused.json",
            R"({"Fsamp": 0, "Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 4}})");
  WriteText(folder / "odd.json", R"({"Fsamp": 100, "TolUpperRat": -1, "TolLowerRat": 1,
            "Single": {"Period": 0.5, "PeakLevel": 1, "Nsamp": 40}})");
  for (const char* const lost : {"2>/dev/full", "2>&-"}) {
    EXPECT_EQ(Bash(std::string("./w generate none.json ") + lost), 2) << lost;
    EXPECT_EQ(Bash(std::string("./w gnerate ") + lost), 2) << lost;
    EXPECT_EQ(Bash(std::string("./w generate refused.json ") + lost), 1) << lost;
    EXPECT_EQ(Bash(std::string("./w generate odd.json >out ") + lost), 0) << lost;
    EXPECT_NE(Text("out"), "");
    EXPECT_EQ(Bash(std::string("./w generate shock.json --csv - >out ") + lost), 0) << lost;
    ExpectSame("out", "expected.csv");
    EXPECT_EQ(Bash(std::string("./w srs odd.json --to 40 >out ") + lost), 0) << lost;
  }
}

TEST_F(Streams, ADescriptorThatIsClosedAtTheStartGoesToNoOutput) {
  ASSERT_EQ(
      Bash("./w generate odd.json 2>/dev/null; ./w generate shock.json --csv a.csv <&- >out 2>&-"),
      0);
  ExpectSame("a.csv", "expected.csv");
  EXPECT_EQ(Bash("./w generate shock.json --csv b.csv --plot b.svg >&- 2>err"), 2);
  EXPECT_EQ(Text("err"), "qarv-wave: standard output: Bad file descriptor\n");
  EXPECT_FALSE(fs::exists(folder / "b.csv"));
  EXPECT_EQ(Bash("./w generate shock.json --csv b.csv <&- >&- 2>&-"), 2);
  EXPECT_EQ(Bash("./w generate shock.json --csv - >&- 2>err"), 2);
  EXPECT_EQ(Text("err"), "qarv-wave: /dev/stdout: Bad file descriptor\n");
}

}  // namespace
}  // namespace qarv::test
