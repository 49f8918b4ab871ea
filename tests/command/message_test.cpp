// What the command says, and that what a file holds neither stops nor delays it: definitions of any
// depth and size, numbers as people write them.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "run_command.h"

namespace qarv::test {
namespace {

namespace fs = std::filesystem;

class Messages : public ::testing::Test {
 protected:
  CommandResult Run(const std::string& subcommand, const std::string& json) const {
    WriteText(folder / "def.json", json);
    return RunCommand({subcommand, folder / "def.json"});
  }
  void ExpectError(const std::string& json, const std::string& said) const {
    const auto result = Run("check", json);
    EXPECT_EQ(result.code, 2) << said;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(said), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("exception"), std::string::npos) << result.err;
    EXPECT_LT(result.err.size(), 500U);
  }
  TempFolder folder;
};

std::string Repeated(const std::string& text, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

// ---- Definitions of any depth and size ---------------------------------------------------------

TEST_F(Messages, DeepNestingIsOneLine) {
  const std::string open = Repeated(R"({"Classical":)", 300000);
  ExpectError(open, "is nested deeper than 32 levels");
  ExpectError(open + "1" + Repeated("}", 300000), "is nested deeper than 32 levels");
  ExpectError(R"({"Fsamp": 1, "Damping": )" + Repeated("[", 300000), "is nested deeper than 32");
}

TEST_F(Messages, DeepNestingIsOneRowOfABatch) {
  fs::create_directory(folder / "in");
  WriteText(folder / "in/deep.json", Repeated(R"({"Classical":)", 300000));
  fs::copy_file(kExamples + "single.json", folder / "in/good.json");
  const auto result = RunCommand({"batch", folder / "in", "--output", folder / "out"});
  EXPECT_EQ(result.code, 1) << result.err;
  EXPECT_NE(result.out.find("deep.json: is nested deeper"), std::string::npos) << result.out;
  EXPECT_TRUE(fs::exists(folder / "out/good.csv"));
  for (const auto& entry : fs::directory_iterator(folder / "out")) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".")) << entry.path();
  }
}

TEST_F(Messages, AnObjectHasOnlySoManyKeys) {
  std::string keys = R"({"Fsamp": 1)";
  for (int i = 0; i < 200000; ++i) keys += ", \"k" + std::to_string(i) + "\": 1";
  ExpectError(keys + "}", "has an object of more than 100 keys");
  ExpectError(R"({"Fsamp": 1, "Fsamp": 2})", "Fsamp: stands twice");
}

TEST_F(Messages, AListMayBeLong) {
  std::string list = R"({"Fsamp": 1000, "Damping": {"Nsamp": 4, "SyncWaveType": "SYNC_WAVE_WAVELET",
                        "Elements": [{"Freq": 100, "Ampl": 1, "NumHalf": 3})";
  list += Repeated(R"(, {"Freq": 100, "Ampl": 1, "NumHalf": 3})", 199999) + "]}}";
  EXPECT_EQ(Run("report", list).code, 0);
}

// ---- Numbers and texts of a definition ---------------------------------------------------------

TEST_F(Messages, AWholeNumberIsOneHoweverItIsWritten) {
  const auto samples = [&](const std::string& nsamp) {
    return Run("generate", R"({"Fsamp": 1000, "Single": {"Period": 0.02, "PeakLevel": 5,
                             "LengthType": 1.0, "Nsamp": )" +
                               nsamp + "}}");
  };
  for (const char* const nsamp : {"512", "512.0", "5.12e2"}) {
    EXPECT_NE(samples(nsamp).out.find("samples:   512 at"), std::string::npos) << nsamp;
  }
  for (const char* const nsamp : {"512.5", "\"512\"", "-0.5"}) {
    EXPECT_NE(samples(nsamp).err.find("Nsamp: is not a whole number"), std::string::npos) << nsamp;
  }
  for (const char* const nsamp : {"-1", "-1.0", "1e10", "4294967296", "1e300", "1e19"}) {
    EXPECT_NE(samples(nsamp).err.find("Nsamp: is not within 0 to 4294967295"), std::string::npos)
        << nsamp << samples(nsamp).err;
  }
  EXPECT_EQ(samples("-0").code, 1) << "0 samples are refused, not misread";
}

TEST_F(Messages, WhatIsNoJsonIsSaidWithoutTheParsersMarks) {
  ExpectError("{\"a\": tru}", "not JSON: parse error at line 1");
  ExpectError("", "not JSON: ");
  ExpectError("{\"a\": 1e999}", "not JSON: number overflow");
  ExpectError("{\"a\": \"\xff\"}", "not JSON: ");
  ExpectError("{\"a\": \"" + std::string(100000, 'x'), "not JSON: ");
}

TEST_F(Messages, AFileThatIsMissingDoesNotExist) {
  const std::string none = folder / "none.json";
  for (const char* const subcommand : {"generate", "check", "report", "srs", "show", "batch"}) {
    const auto result = RunCommand({subcommand, none});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "qarv-wave: " + none + ": does not exist\n") << subcommand;
  }
  const std::string shock = kExamples + "half_sine_fixed.json";
  EXPECT_EQ(RunCommand({"judge", shock, folder / "none.csv"}).err,
            "qarv-wave: " + (folder / "none.csv") + ": does not exist\n");
  EXPECT_EQ(RunCommand({"check", folder.GetPath().string()}).err,
            "qarv-wave: " + folder.GetPath().string() + ": is a folder\n");
  ExpectError(R"({"Measure": {"MeasPath": "m.csv"}})", "m.csv: does not exist");
}

TEST_F(Messages, AnUnknownSubcommandIsNamed) {
  const auto result = RunCommand({"gnerate", "x.json"});
  EXPECT_EQ(result.code, 2);
  EXPECT_TRUE(result.err.starts_with("qarv-wave: gnerate: is no subcommand: one of generate, "))
      << result.err;
}

// ---- Numbers of the results --------------------------------------------------------------------

TEST_F(Messages, SamplesThatAreNoNumbersAreSaidInAReport) {
  WriteText(folder / "m.csv", "0,1\n0.1,nan\n0.2,-nan\n0.3,inf\n0.4,1\n");
  const std::string json = R"({"Measure": {"MeasPath": "m.csv"}})";
  const auto result = Run("report", json);
  EXPECT_NE(result.out.find("samples that are no numbers        3\n"), std::string::npos)
      << result.out;
  ASSERT_EQ(RunCommand({"report", folder / "def.json", "--json", folder / "r.json", "--html",
                        folder / "r.html"})
                .code,
            0);
  EXPECT_EQ(nlohmann::json::parse(ReadText(folder / "r.json"))["no_numbers"]["value"], 3);
  EXPECT_NE(ReadText(folder / "r.html").find("samples that are no numbers"), std::string::npos);
  EXPECT_EQ(Run("report", ReadText(kExamples + "half_sine_fixed.json")).out.find("no numbers"),
            std::string::npos);
}

TEST_F(Messages, NothingIsMinusZeroAndNoNumberHasASign) {
  WriteText(folder / "m.csv", "0,-0\n0.1,-nan\n0.2,-0\n0.3,-0.0\n");
  WriteText(folder / "n.csv", "0,-0\n0.1,1\n0.2,-1\n0.3,-0.0\n");
  for (const char* const samples : {"m.csv", "n.csv"}) {
    Run("check",
        std::string(R"({"TolLowerRat": -0.0, "Measure": {"MeasPath": ")") + samples + "\"}}");
    const auto written = [&](const std::vector<std::string>& arguments) {
      const auto result = RunCommand(arguments);
      std::string all = result.out + result.err;
      for (const std::string& name : folder.List()) {
        if (name.starts_with("out")) all += ReadText(folder / name);
      }
      return all;
    };
    const std::string def = folder / "def.json";
    std::string all = written({"generate", def, "--csv", folder / "out.csv"});
    all += written({"report", def, "--json", folder / "out.json"});
    all += written({"srs", def, "--to", "1", "--csv", folder / "out.srs.csv"});
    all += written({"batch", folder.GetPath().string(), "--csv", folder / "out.table.csv"});
    all += written({"check", def});
    if (std::string(samples) == "n.csv") {
      all += written({"generate", def, "--uff", folder / "out.uff"});
      all += written({"judge", def, folder / "n.csv", "--json", folder / "out.judge.json"});
    }
    EXPECT_EQ(all.find("-nan"), std::string::npos) << all;
    EXPECT_EQ(all.find("nan("), std::string::npos) << all;
    // The name of the folder is any.
    for (std::size_t at; (at = all.find(folder.GetPath().string())) != std::string::npos;) {
      all.erase(at, folder.GetPath().string().size());
    }
    for (std::size_t at = all.find("-0"); at != std::string::npos; at = all.find("-0", at + 2)) {
      // A minus sign in front of a zero belongs to a number that goes on, or is an exponent's.
      const std::size_t end = all.find_first_not_of("0.", at + 1);
      const bool exponent = at > 0 && (all[at - 1] == 'e' || all[at - 1] == 'E');
      const bool number = end != std::string::npos && all[end] >= '1' && all[end] <= '9';
      EXPECT_TRUE(exponent || number) << all.substr(at > 40 ? at - 40 : 0, 80);
    }
  }
}

TEST_F(Messages, ACorrelationIsNotAboveOne) {
  // Multiples of many a waveform, of which the sums are rounded this way and that.
  int count = 0;
  for (const auto& entry : fs::directory_iterator(kExamples)) {
    const std::string def = entry.path().string();
    if (entry.path().extension() != ".json") continue;
    ASSERT_EQ(RunCommand({"generate", def, "--csv", folder / "w.csv"}).code, 0) << def;
    std::istringstream lines(ReadText(folder / "w.csv"));
    std::ostringstream text;
    text.precision(17);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
      const std::size_t comma = line.find(',');
      text << line.substr(0, comma) << ',' << 3.0 * std::stod(line.substr(comma + 1)) << '\n';
    }
    WriteText(folder / "m.csv", text.str());
    fs::remove(folder / "j.json");
    RunCommand({"judge", def, folder / "m.csv", "--json", folder / "j.json"});
    if (!fs::exists(folder / "j.json")) continue;  // a record that is refused has no correlation
    ++count;
    const auto verdict = nlohmann::json::parse(ReadText(folder / "j.json"));
    EXPECT_LE(verdict["correlation"]["value"].get<double>(), 1.0) << def;
  }
  EXPECT_GE(count, 20);
}

// ---- Lines of the library ----------------------------------------------------------------------

TEST_F(Messages, ThousandsOfPacketsThatDoNotFitAreElevenLines) {
  const auto result =
      Run("generate", R"({"Fsamp": 10000, "SineBeatBurst": {"WaveKind": "SINE_BURST",
      "Ampl": 1, "Freq": 1, "Cycle": 1, "Frame": 4000, "RestTime": -1.0002}})");
  EXPECT_EQ(result.code, 0);
  std::size_t count = 0;
  std::istringstream lines(result.err);
  for (std::string line; std::getline(lines, line);) count += line.starts_with("[Error] ");
  EXPECT_EQ(count, 11U) << result.err;
}

}  // namespace
}  // namespace qarv::test
