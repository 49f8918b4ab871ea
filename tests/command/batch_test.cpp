// qarv-wave batch: its table, its files, what it does with definitions that cannot be used, and how
// it shows progress.
#include <gtest/gtest.h>

#include <sstream>

#include "files/csv_reader.h"
#include "files/input_file.h"
#include "progress.h"
#include "run_command.h"

namespace qarv::test {
namespace {

namespace fs = std::filesystem;

const std::string kSine = R"({"Fsamp": 1000, "UnitAmpl": "g", "TolUpperRat": 0.1,
    "TolLowerRat": -0.1, "Single": {"Period": 0.02, "PeakLevel": 5, "Nsamp": 500}})";

class BatchCommand : public ::testing::Test {
 protected:
  BatchCommand() { fs::create_directory(folder / "in"); }
  void Define(const std::string& name, const std::string& json) const {
    WriteText(folder / "in/" + name + ".json", json);
  }
  std::vector<std::string> Outputs() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder / "out")) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  TempFolder folder;
};

TEST_F(BatchCommand, PrintsALinePerDefinitionInTheOrderOfTheirNames) {
  Define("b", kSine);
  Define("a", kSine);
  WriteText(folder / "in/note.txt", "no definition");
  const auto result = RunCommand({"batch", folder / "in"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "definition  family            samples  duration  peak  state\n"
            "a           single sine wave  500      0.5 s     5 g   clean\n"
            "b           single sine wave  500      0.5 s     5 g   clean\n");
  EXPECT_EQ(folder.List(), std::vector<std::string>{"in"});
}

TEST_F(BatchCommand, WritesWhatTheOtherCommandsWrite) {
  Define("sine", kSine);
  const auto result = RunCommand({"batch", folder / "in", "--output", folder / "out"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(Outputs(),
            (std::vector<std::string>{"index.html", "sine.csv", "sine.html", "sine.json",
                                      "sine.png", "sine.rec", "sine.srs.png", "summary.csv"}));
  const std::string def = folder / "in/sine.json";
  ASSERT_EQ(RunCommand({"generate", def, "--csv", folder / "s.csv", "--record", folder / "s.rec",
                        "--plot", folder / "s.png"})
                .code,
            0);
  EXPECT_EQ(ReadText(folder / "out/sine.csv"), ReadText(folder / "s.csv"));
  EXPECT_EQ(ReadText(folder / "out/sine.rec"), ReadText(folder / "s.rec"));
  ASSERT_EQ(RunCommand({"report", def, "--html", folder / "s.html"}).code, 0);
  const auto withoutPicture = [](const std::string& html) {
    return html.substr(html.find("<table>"));
  };
  EXPECT_EQ(withoutPicture(ReadText(folder / "out/sine.html")),
            withoutPicture(ReadText(folder / "s.html")));
  EXPECT_TRUE(ReadText(folder / "out/sine.srs.png").starts_with("\x89PNG"));
}

TEST_F(BatchCommand, ThePageLinksTheDataOfEveryDefinition) {
  Define("a sine", kSine);
  Define("none", "{");
  ASSERT_EQ(RunCommand({"batch", folder / "in", "--output", folder / "out"}).code, 1);
  const std::string page = ReadText(folder / "out/index.html");
  for (const char* const link :
       {"a%20sine.csv", "a%20sine.rec", "a%20sine.json", "a%20sine.html", "summary.csv"}) {
    EXPECT_NE(page.find("<a href=\"" + std::string(link) + "\">"), std::string::npos) << link;
  }
  for (const char* const text : {"sine 5 g, 50 Hz", "class=\"clean\"", "class=\"fails\""}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(page.find("href=\"none"), std::string::npos) << "it has no files";
}

TEST_F(BatchCommand, TheDefinitionsThatItWritesAreThoseThatItRead) {
  for (const char* const name : {"measured.json", "measured_shock.csv", "compensated_ramp.json"}) {
    fs::copy_file(kExamples + name, folder / "in/" + name);
  }
  ASSERT_EQ(RunCommand({"batch", folder / "in", "--output", folder / "out"}).code, 0);
  for (const char* const name : {"measured", "compensated_ramp"}) {
    const auto result = RunCommand({"generate", folder / "out/" + name + ".json", "--csv",
                                    folder / "again.csv", "--record", folder / "again.rec"});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(ReadText(folder / "again.csv"), ReadText(folder / "out/" + name + ".csv")) << name;
    EXPECT_EQ(ReadText(folder / "again.rec"), ReadText(folder / "out/" + name + ".rec")) << name;
  }
}

TEST_F(BatchCommand, SamplesThatAreNoNumbersHaveNoSpectrum) {
  Define("odd", R"({"Fsamp": 100, "Single": {"Period": 1, "PeakLevel": "inf", "Nsamp": 40}})");
  ASSERT_EQ(RunCommand({"batch", folder / "in", "--output", folder / "out"}).code, 3);
  EXPECT_FALSE(fs::exists(folder / "out/odd.srs.png"));
  EXPECT_TRUE(fs::exists(folder / "out/odd.png"));
  EXPECT_EQ(ReadText(folder / "out/index.html").find("odd.srs.png"), std::string::npos);
}

TEST_F(BatchCommand, ADefinitionThatCannotBeUsedIsALineAndTheOthersGoOn) {
  Define("1 good", kSine);
  Define("2 refused", R"({"Fsamp": 0, "Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 4}})");
  Define("3 unusable", "{");
  Define("4 odd", R"({"Fsamp": 100, "Single": {"Period": 0.05, "PeakLevel": 1, "Nsamp": 40}})");
  const auto result = RunCommand(
      {"batch", folder / "in", "--output", folder / "out", "--csv", folder / "table.csv"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "");
  for (const char* const text : {"1 good", "clean\n", "fails: ", "Single: Fsamp is 0\n", "not JSON",
                                 "warning: a period has 5"}) {
    EXPECT_NE(result.out.find(text), std::string::npos) << text << result.out;
  }
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 5);
  const auto outputs = Outputs();
  EXPECT_EQ(outputs.size(), 14U);  // of two definitions, with table and page
  EXPECT_EQ(ReadText(folder / "table.csv"), ReadText(folder / "out/summary.csv"));
  EXPECT_NE(ReadText(folder / "out/index.html").find("Single: Fsamp is 0"), std::string::npos);
}

TEST_F(BatchCommand, WarningsAloneAreExitThree) {
  Define("odd", R"({"Fsamp": 100, "Single": {"Period": 0.05, "PeakLevel": 1, "Nsamp": 40}})");
  EXPECT_EQ(RunCommand({"batch", folder / "in"}).code, 3);
}

TEST_F(BatchCommand, TheTableHasTheNumbersOfTheReport) {
  Define("shock", ReadText(kExamples + "half_sine_fixed.json"));
  ASSERT_EQ(RunCommand({"batch", folder / "in", "--csv", folder / "t.csv"}).code, 0);
  std::istringstream lines(ReadText(folder / "t.csv"));
  std::string head;
  std::string row;
  std::getline(lines, head);
  std::getline(lines, row);
  EXPECT_EQ(head,
            "definition,family,samples,duration,duration_unit,peak,peak_unit,upper_margin,"
            "upper_margin_unit,lower_margin,lower_margin_unit,peak_velocity,peak_velocity_unit,"
            "peak_displacement,peak_displacement_unit,residual_velocity,residual_velocity_unit,"
            "residual_displacement,residual_displacement_unit,state,remark");
  EXPECT_TRUE(row.starts_with("shock,classical shock pulse,512,0.04,s,50.0,g,")) << row;
  EXPECT_TRUE(row.ends_with(",clean,")) << row;
}

TEST_F(BatchCommand, NamesReachNeitherThePageNorTheTable) {
  Define("a \"b\"<i>#1,2%", kSine);
  ASSERT_EQ(RunCommand({"batch", folder / "in", "--output", folder / "out"}).code, 0);
  const std::string page = ReadText(folder / "out/index.html");
  EXPECT_NE(
      page.find("href=\"a%20%22b%22%3Ci%3E%231%2C2%25.html\">a &quot;b&quot;&lt;i&gt;#1,2%</a>"),
      std::string::npos);
  EXPECT_EQ(page.find("<i>"), std::string::npos);
  EXPECT_NE(ReadText(folder / "out/summary.csv").find("\n\"a \"\"b\"\"<i>#1,2%\",single"),
            std::string::npos);
}

TEST_F(BatchCommand, RefusesAFolderThatIsNone) {
  EXPECT_EQ(RunCommand({"batch", folder / "in"}).code, 2);  // empty
  EXPECT_EQ(RunCommand({"batch", folder / "none"}).code, 2);
  Define("sine", kSine);
  EXPECT_EQ(RunCommand({"batch", folder / "in/sine.json"}).code, 2);
  EXPECT_EQ(RunCommand({"batch", folder / "in", "-o", folder / "in/../in"}).code, 2);
  EXPECT_EQ(RunCommand({"batch", folder / "in", "-o", folder / "in/sine.json"}).code, 2);
  EXPECT_EQ(folder.List(), std::vector<std::string>{"in"});
}

TEST_F(BatchCommand, AFolderThatItMadeDisappearsAgainWhereItFails) {
  Define("sine", kSine);
  EXPECT_EQ(
      RunCommand({"batch", folder / "in", "-o", folder / "new/deep", "--csv", "/dev/full"}).code,
      2);
  EXPECT_EQ(folder.List(), std::vector<std::string>{"in"});
  EXPECT_EQ(RunCommand({"batch", folder / "in", "-o", folder / "new/deep/"}).code, 0);
  EXPECT_TRUE(fs::exists(folder / "new/deep/index.html"));
}

// ---- Interruption ------------------------------------------------------------------------------

TEST_F(BatchCommand, AnInterruptionLeavesNothing) {
  for (int i = 0; i < 40; ++i) Define("sine" + std::to_string(i), kSine);
  fs::create_directory(folder / "here");
  WriteText(folder / "here/sine3.csv", "old");
  for (const std::string out : {"here", "new/deep"}) {
    for (const char* const when : {"0.05", "0.2", "0.45", "0.8"}) {
      for (const auto& [signal, number] : {std::pair{"TERM", 15}, std::pair{"HUP", 1}}) {
        std::string line = "cd " + ShellQuoted(folder.GetPath().string()) + " && { ";
        line.append(ShellQuoted(QARV_WAVE_COMMAND)).append(" batch in --output ").append(out);
        line.append(" >/dev/null 2>&1 & child=$!; sleep ").append(when);
        line.append("; kill -").append(signal).append(" $child; wait $child; }");
        const int status = std::system(line.c_str());
        EXPECT_EQ(WEXITSTATUS(status), 128 + number) << when;
        EXPECT_FALSE(fs::exists(folder / "new")) << when;
        std::vector<std::string> left;
        for (const auto& entry : fs::directory_iterator(folder / "here")) {
          left.push_back(entry.path().filename().string());
        }
        EXPECT_EQ(left, std::vector<std::string>{"sine3.csv"}) << when;
        EXPECT_EQ(ReadText(folder / "here/sine3.csv"), "old");
      }
    }
  }
}

TEST_F(BatchCommand, WhoeverIgnoresAHangUpKeepsTheRun) {
  for (int i = 0; i < 5; ++i) Define("sine" + std::to_string(i), kSine);
  std::string line = "cd " + ShellQuoted(folder.GetPath().string()) + " && { trap '' HUP; ";
  line.append(ShellQuoted(QARV_WAVE_COMMAND));
  line.append(" batch in --output out >/dev/null 2>&1 & child=$!; sleep 0.2; kill -HUP $child; ");
  line.append("wait $child; }");
  EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 0);
  EXPECT_TRUE(fs::exists(folder / "out/index.html"));
}

// ---- Progress ----------------------------------------------------------------------------------

/// What a command writes on a terminal.
std::string OnTerminal(const std::vector<std::string>& arguments, const TempFolder& folder) {
  std::string line = ShellQuoted(QARV_WAVE_COMMAND);
  for (const std::string& argument : arguments) line.append(" ").append(ShellQuoted(argument));
  const std::string script = "script --quiet --return --command " + ShellQuoted(line) + " " +
                             ShellQuoted(folder / "terminal") + " >/dev/null </dev/null";
  EXPECT_EQ(std::system(script.c_str()), 0);
  return ReadText(folder / "terminal");
}

TEST_F(BatchCommand, ShowsProgressOnATerminalAndErasesIt) {
  for (const char* const name : {"a", "b", "c"}) Define(name, kSine);
  const std::vector<std::string> arguments{"batch", folder / "in", "-o", folder / "out"};
  const std::string said = OnTerminal(arguments, folder);
  const auto shown = said.find("\r[1/3] b\x1b[K");
  ASSERT_NE(shown, std::string::npos) << said;
  const auto erased = said.find("\r\x1b[K", shown);
  ASSERT_NE(erased, std::string::npos) << said;
  EXPECT_GT(said.find("definition  family"), erased);
  EXPECT_EQ(RunCommand(arguments).err, "") << "nothing where it is piped";
}

TEST_F(BatchCommand, ALargeSpectrumShowsProgressToo) {
  Define("long",
         R"({"Fsamp": 10000, "Single": {"Period": 0.02, "PeakLevel": 5, "Nsamp": 300000}})");
  const std::vector<std::string> arguments{"srs", folder / "in/long.json", "--points", "1500"};
  EXPECT_NE(OnTerminal(arguments, folder).find("/1500] lines of the spectrum\x1b[K"),
            std::string::npos);
  EXPECT_EQ(RunCommand(arguments).err, "");
}

TEST(Pace, SaysNothingForItsSilenceAndThenAFewTimesASecond) {
  using std::chrono::milliseconds;
  const command::Pace::Time start{};
  command::Pace pace(milliseconds(2000), start);
  std::vector<int> said;
  for (int ms = 0; ms < 2350; ms += 10) {
    if (pace.IsDue(start + milliseconds(ms))) said.push_back(ms);
  }
  EXPECT_EQ(said, (std::vector<int>{2000, 2100, 2200, 2300}));
}

TEST(InputFile, SaysHowMuchOfItHasBeenRead) {
  const TempFolder folder;
  WriteText(folder / "a.txt", std::string(1 << 20, 'x'));  // in 16 pieces
  command::InputFile file(folder / "a.txt");
  EXPECT_EQ(file.GetPercent(), 0U);
  std::size_t before = 0;
  for (int piece = 1; piece <= 16; ++piece) {
    file.ReadPiece();
    EXPECT_NEAR(static_cast<double>(file.GetPercent()), 100.0 * piece / 16, 1.0);
    EXPECT_GT(file.GetPercent(), before);
    before = file.GetPercent();
  }
}

}  // namespace
}  // namespace qarv::test
