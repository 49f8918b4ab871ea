// qarv-wave generate: what it writes and prints, and what it does with input it cannot use.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <charconv>
#include <filesystem>
#include <sstream>

#include "run_command.h"
#include "wave_def/wave_def.h"

namespace qarv::test {
namespace {

using wave_def::CWaveDef;

const std::string kSingle =
    R"({"Fsamp": 1000, "UnitAmpl": "m/s^2", "TolUpperRat": 0.1, "TolLowerRat": -0.1,
        "Single": {"Period": 0.03, "PeakLevel": 2, "EdgeTime": 0.05, "Nsamp": 700}})";

const std::string kHead = R"({"Fsamp": 1000, )";  // of a definition

CWaveDef DefineSingle() {
  wave_def::CWaveDefSingle set;
  set.SetPeriod(0.03);
  set.SetPeakLevel(2);
  set.SetEdgeTime(0.05);
  set.SetNsamp(700);
  CWaveDef def;
  def.SetFsamp(1000);
  common::CUnitCtrl unit;
  EXPECT_TRUE(common::CUnitCtrl::FromText("m/s^2", &unit));
  def.SetUnitAmpl(unit);
  def.SetTolUpperRat(0.1);
  def.SetTolLowerRat(-0.1);
  EXPECT_TRUE(def.SetDefSingle(set));
  return def;
}

/// The numbers of a line of CSV.
std::vector<double> NumbersOf(const std::string& line) {
  std::vector<double> numbers;
  const char* at = line.data();
  const char* const end = at + line.size();
  while (at < end) {
    double v = 0;
    const auto parsed = std::from_chars(at, end, v);
    EXPECT_EQ(parsed.ec, std::errc{}) << line;
    numbers.push_back(v);
    at = parsed.ptr + 1;
  }
  return numbers;
}

class Generate : public ::testing::Test {
 protected:
  std::string Definition(const std::string& text) const {
    WriteText(folder / "def.json", text);
    return folder / "def.json";
  }
  /// Expects one line on standard error that holds all of the texts, and no file but the input.
  void ExpectRefused(const std::string& json, int code,
                     const std::vector<std::string>& texts) const {
    const std::string def = Definition(json);
    const auto result = RunCommand({"generate", def, "--csv", folder / "w.csv", "--record",
                                    folder / "w.rec", "--plot", folder / "w.png"});
    EXPECT_EQ(result.code, code) << json << result.err;
    EXPECT_EQ(result.out, "") << json;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    for (const std::string& text : texts) {
      EXPECT_NE(result.err.find(text), std::string::npos) << result.err << " lacks " << text;
    }
    EXPECT_EQ(folder.List(), std::vector<std::string>{"def.json"}) << json;
  }

  TempFolder folder;
};

TEST_F(Generate, PrintsFamilySamplesDurationPeakAndBand) {
  // Edges that meet in the middle leave one largest sample.
  std::string pointed = kSingle;
  pointed.replace(pointed.find("0.05"), 4, "0.35");
  const auto result = RunCommand({"generate", Definition(pointed)});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "family:    single sine wave\n"
            "samples:   700 at 1000 Hz\n"
            "duration:  0.7 s\n"
            "peak:      -1.98334 m/s^2 at 0.352 s\n"
            "band:      -2.18168 to -1.78501 m/s^2 at the peak\n");
}

TEST_F(Generate, CsvHoldsEverySampleExactly) {
  const CWaveDef expected = DefineSingle();
  ASSERT_EQ(RunCommand({"generate", Definition(kSingle), "--csv", folder / "w.csv"}).code, 0);
  std::istringstream csv(ReadText(folder / "w.csv"));
  std::string line;
  ASSERT_TRUE(std::getline(csv, line));
  EXPECT_EQ(line, "time,waveform,lower,upper");
  for (common::uint64 i = 0; i < expected.GetNsamp(); ++i) {
    ASSERT_TRUE(std::getline(csv, line)) << i;
    EXPECT_EQ(NumbersOf(line),
              (std::vector<double>{static_cast<double>(i) / 1000, expected.GetWave()[i],
                                   expected.GetTolL()[i], expected.GetTolU()[i]}));
  }
  EXPECT_FALSE(std::getline(csv, line));
}

TEST_F(Generate, RecordIsWhatTheLibraryWrites) {
  CWaveDef expected = DefineSingle();
  common::CSerialData stream;
  ASSERT_TRUE(expected.Serialize(&stream));
  ASSERT_EQ(RunCommand({"generate", Definition(kSingle), "--record", folder / "w.rec"}).code, 0);
  const std::string bytes = ReadText(folder / "w.rec");
  EXPECT_TRUE(
      std::equal(bytes.begin(), bytes.end(), stream.GetData(), stream.GetData() + stream.GetSize(),
                 [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; }));
}

TEST_F(Generate, PlotsArePngOrSvg) {
  const std::string def = Definition(kSingle);
  ASSERT_EQ(RunCommand({"generate", def, "--plot", folder / "w.png"}).code, 0);
  ASSERT_EQ(RunCommand({"generate", def, "--plot", folder / "w.svg"}).code, 0);
  EXPECT_TRUE(ReadText(folder / "w.png").starts_with("\x89PNG\r\n\x1a\n"));
  const std::string svg = ReadText(folder / "w.svg");
  for (const char* const text : {"<svg", "def: sine 2 m/s^2, 33.33 Hz", "Time [ms]",
                                 "Acceleration [m/s^2]", "upper band", "waveform", "lower band"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
  const auto other = RunCommand({"generate", def, "--plot", folder / "w.jpg"});
  EXPECT_EQ(other.code, 2);
  EXPECT_NE(other.err.find("w.jpg"), std::string::npos);
}

TEST_F(Generate, PlotsWavesOfAnyLengthAndValue) {
  for (const char* const set : {R"("Period": 0.01, "PeakLevel": 1, "Nsamp": 1)",
                                R"("Period": 0.01, "PeakLevel": 0, "Nsamp": 9)",
                                R"("Period": 0, "PeakLevel": 1, "Nsamp": 50)",
                                R"("Period": 0.01, "PeakLevel": "inf", "Nsamp": 50)",
                                R"("Period": 0.01, "PeakLevel": 1e308, "Nsamp": 50)",
                                R"("Period": 0.01, "PeakLevel": 1, "Nsamp": 300000)"}) {
    const std::string json =
        std::string(R"({"Fsamp": 1000, "TolUpperRat": 0.1, "Single": {)") + set + "}}";
    const auto result = RunCommand({"generate", Definition(json), "--plot", folder / "w.png"});
    EXPECT_EQ(result.code, 0) << set << result.err;
    EXPECT_GT(ReadText(folder / "w.png").size(), 2000U) << set;
  }
}

TEST_F(Generate, FileNamesCannotReachThePlotScript) {
  const std::string name = "a\"b'c$d`e\\f_g^h.json";
  WriteText(folder / name, kSingle);
  const auto result = RunCommand({"generate", folder / name, "--plot", folder / "a\"; exit.svg"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_NE(ReadText(folder / "a\"; exit.svg").find("_g^h: sine 2 m/s^2"), std::string::npos);
}

TEST_F(Generate, WarnsWhereTheUpperBandLiesBelowTheLower) {
  std::string crossed = kSingle;
  crossed.replace(crossed.find("-0.1"), 4, "0.2");
  const auto result = RunCommand({"generate", Definition(crossed)});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err,
            std::string("qarv-wave: warning: ") + (folder / "def.json") +
                ": the upper band lies below the lower one at 700 of 700 samples, first at "
                "sample 0\n");
}

TEST_F(Generate, InputThatIsNoDefinitionIsNamedInOneLine) {
  const std::string head = R"({"Fsamp": 1000, "Single": )";
  ExpectRefused(R"({"Fsamp": 1000, "Sngle": {}})", 2, {"def.json", "Classical, Symmetry"});
  ExpectRefused(R"({"Fsamp": 1000, "fsamp": 1, "Single": {}})", 2,
                {"def.json: fsamp: unknown key"});
  ExpectRefused(head + R"({"Periode": 1}})", 2, {"def.json: Single.Periode: unknown key"});
  ExpectRefused(head + R"({"Period": "x", "PeakLevel": 1, "Nsamp": 4}})", 2,
                {"def.json: Single.Period: is not a number"});
  ExpectRefused(head + R"({"Period": 1, "PeakLevel": true, "Nsamp": 4}})", 2,
                {"def.json: Single.PeakLevel: is not a number"});
  ExpectRefused(head + R"({"Period": 1, "PeakLevel": 1}})", 2, {"def.json: Single.Nsamp: missing"});
  ExpectRefused(head + R"({"Period": 1, "PeakLevel": 1, "Nsamp": 1.5}})", 2, {"Single.Nsamp"});
  ExpectRefused(head + R"({"Period": 1, "PeakLevel": 1, "Nsamp": -1}})", 2, {"Single.Nsamp"});
  ExpectRefused(head + R"({"Period": 1, "PeakLevel": 1, "Nsamp": 4294967296}})", 2,
                {"Single.Nsamp", "4294967295"});
  ExpectRefused(head + "[]}", 2, {"def.json: Single: is not an object"});
  ExpectRefused(head + R"({"Period": 1, "Period": 2}})", 2, {"def.json", "Period: stands twice"});
  ExpectRefused(R"({"Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 4}})", 2,
                {"def.json: Fsamp: missing"});
  ExpectRefused(R"({"Fsamp": 1, "Single": {}, "Gradual": {}})", 2,
                {"Single: stands beside Gradual"});
  ExpectRefused(R"({"Fsamp": 1, "LongWave": 1, "Single": {}})", 2,
                {"LongWave: is neither true nor false"});
  ExpectRefused(R"({"Fsamp": 1, "UnitAmpl": "furlong", "Single": {}})", 2, {"UnitAmpl"});
  ExpectRefused("[]", 2, {"def.json"});
  ExpectRefused("", 2, {"def.json: not JSON"});
  ExpectRefused("{\"Fsamp\": 1000, \"a\nb", 2, {"def.json: not JSON"});
  for (std::size_t n = 0; n < kSingle.size(); n += 7) {
    ExpectRefused(kSingle.substr(0, n), 2, {"def.json: not JSON"});
  }
}

TEST_F(Generate, EveryFamilyNamesItsMissingField) {
  const auto missing = [&](const std::string& family, const std::string& set,
                           const std::string& key) {
    ExpectRefused(kHead + "\"" + family + R"(": )" + set + "}", 2,
                  {std::string("def.json: ") + family + "." + key + ": missing"});
  };
  missing("Gradual", R"({"Period": 1, "LevelBeg": 1, "LevelEnd": 1, "Nsamp": 4})", "LengthType");
  missing("SineBeatBurst", R"({"WaveKind": "SINE_BEAT", "Ampl": 1, "Freq": 2, "Frame": 1})",
          "Cycle");
  missing("Symmetry", R"({"WaveKind": "HALF_SINE", "Peak": 1})", "Width");
  missing("Damping", R"({"Nsamp": 4, "SyncWaveType": "SYNC_WAVE_WAVELET"})", "Elements");
  missing("Damping", R"({"Nsamp": 4, "SyncWaveType": "SYNC_WAVE_DAMPED_SINE", "Elements": []})",
          "Freq");
  missing(
      "Damping",
      R"({"Nsamp": 4, "SyncWaveType": "SYNC_WAVE_WAVELET", "Elements": [{"Freq": 2, "Ampl": 1}, {"Freq": 2}]})",
      "Elements[1].Ampl");
  missing("Measure", "{}", "MeasPath");
  missing("Classical", R"({"WaveKind": "HALF_SINE"})", "MainAmpl");
}

TEST_F(Generate, FieldsThatTheOthersPutOutOfForceAreRefused) {
  ExpectRefused(
      R"({"Fsamp": 1000, "SineBeatBurst": {"WaveKind": "SINE_BURST", "Ampl": 1, "Freq": 50,
                    "Cycle": 4, "Frame": 1, "EdgeRise": 1}})",
      2, {"SineBeatBurst.EdgeRise: has no effect without Edging"});
  ExpectRefused(
      R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 1, "MainWidth": 0.01, "Fmax": 1000,
                    "Nsamp": 64, "TolKind": "TOL_USER_DEF", "TolUserDef": {"TolPulsEndL": 0.1}}})",
      2, {"Classical.TolUserDef.TolPulsEndL: has no effect without TolPulsSet"});
}

TEST_F(Generate, WhatTheLibraryRefusesIsExplained) {
  const auto refused = [&](const std::string& rest, const std::string& reason) {
    ExpectRefused(kHead + rest + "}", 1, {"def.json: ", reason});
  };
  ExpectRefused(R"({"Fsamp": 0, "Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 4}})", 1,
                {"Fsamp is 0"});
  refused(R"("Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 0})", "Nsamp is 0");
  refused(R"("Gradual": {"Period": 1, "LevelBeg": 1, "LevelEnd": 1, "LengthType": 7, "Nsamp": 4})",
          "LengthType");
  refused(
      R"("Gradual": {"Period": 1, "LevelBeg": 1, "LevelEnd": 1, "LengthType": "LENGTH_BY_SLOPE", "Nsamp": 4})",
      "WaveSlope is 0");
  refused(
      R"("SineBeatBurst": {"WaveKind": "SINE_BEAT", "Ampl": 1, "Freq": 2, "Cycle": 0, "Frame": 1})",
      "Cycle is 0");
  refused(
      R"("SineBeatBurst": {"WaveKind": "SINE_BEAT", "Ampl": 1, "Freq": 1e9, "Cycle": 1, "Frame": 1})",
      "no samples");
  refused(
      R"("SineBeatBurst": {"WaveKind": "SINE_BEAT", "Ampl": 1, "Freq": 1, "Cycle": 1, "Frame": 4294967295, "RestTime": 1e30})",
      "does not fit into memory");
  refused(R"("Symmetry": {"WaveKind": "TRIANGLE", "Peak": 1, "Width": 0.1, "PeakPos": 2})",
          "PeakPos is 2, behind the width; works with PeakPos 1");
  refused(R"("Symmetry": {"WaveKind": "TRAPEZOID", "Peak": 1, "Width": 0.1})", "WaveKind");
  refused(R"("Symmetry": {"WaveKind": "HALF_SINE", "Peak": 1, "Width": 0.1, "MidZero": -0.3})",
          "pulses and silences have no samples");
  refused(R"("Symmetry": {"WaveKind": "HALF_SINE", "Peak": 1, "Width": 0.1, "MidZero": -0.15})",
          "a pulse of 100 samples does not fit between the silences into 51 samples");
  refused(R"("Damping": {"Nsamp": 4, "SyncWaveType": "SYNC_WAVE_WAVELET", "Elements": []})",
          "no Elements");
  const auto classical = [&](const std::string& changed, const std::string& reason) {
    refused(
        R"("Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 1, "MainWidth": 0.01, "Fmax": 1000,
               "Nsamp": 64, "TolKind": "TOL_FIXED_3")" +
            changed + "}",
        reason);
  };
  classical(R"(, "AddCmp": true)", "CmpType is not set");
  classical(
      R"(, "AddCmp": true, "CmpType": "CMP_COSINE", "CmpPre": 1, "CmpPost": 1)",
      "no room for the compensation: before the pulse 343 samples are needed and 19 available, "
      "after the pulse 57 samples are needed and 18 available");
  classical(
      R"(, "AddCmp": true, "CmpType": "CMP_COSINE", "CmpPre": 1, "CmpPost": 1, "RestPre": -1)",
      "the rests leave no place");
  classical(R"(, "MainShift": 0.5)", "MainShift");
  classical(
      R"(, "MainShift": -0.4)",
      "the front region of the band lies at sample -13, before the frame of 64 samples; works "
      "with MainShift -0.203125 or Nsamp 190");
  classical(R"(, "MainShift": 0.4)",
            "the end of the pulse lies at sample 69, behind the frame of 64 samples; works with "
            "MainShift 0.296875 or Nsamp 121");
}

TEST_F(Generate, ADefinitionThatCannotBeReadIsAnError) {
  for (const std::string& file : {folder / "missing.json", folder.GetPath().string()}) {
    const auto result = RunCommand({"generate", file});
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find(file), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

TEST_F(Generate, BadArgumentsAreOneLineAndExitTwo) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"generate"},
                                                    {"gnerate", "x"},
                                                    {"generate", "x", "y"},
                                                    {"generate", "x", "--colour", "red"},
                                                    {"show"}}) {
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
  EXPECT_EQ(RunCommand({"--help"}).code, 0);
  EXPECT_TRUE(RunCommand({"--version"}).out.starts_with("qarv-wave "));
}

TEST_F(Generate, FilesThatCannotBeWrittenLeaveTheOthersUntouched) {
  const std::string def = Definition(kSingle);
  WriteText(folder / "w.csv", "old");
  const auto fails = [&](const std::vector<std::string>& options, const std::string& text) {
    std::vector<std::string> arguments{"generate", def};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
    EXPECT_EQ(ReadText(folder / "w.csv"), "old");
    EXPECT_EQ(ReadText(def), kSingle);
    EXPECT_EQ(folder.List(), (std::vector<std::string>{"def.json", "w.csv"}));
  };
  fails({"--csv", folder / "w.csv", "--record", folder / "no/w.rec"}, "no/w.rec");
  fails({"--csv", folder / "w.csv", "--record", folder.GetPath().string()},
        "is not a regular file");
  fails({"--csv", folder / "w.csv", "--record", "/dev/full"}, "/dev/full");
  fails({"--csv", folder / "w.csv", "--record", folder / "w.csv"}, "is written twice");
  fails({"--csv", folder / "w.csv", "--record",
         folder / "../" + folder.GetPath().filename().string() + "/def.json"},
        "is an input");
  fails({"--csv", folder / "w.csv", "--plot", folder / "w.gif"}, "w.gif");
}

TEST_F(Generate, NothingThatWasReadIsReplaced) {
  const auto refused = [&](const std::vector<std::string>& arguments, const std::string& file) {
    const std::string before = ReadText(file);
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 2) << file;
    EXPECT_NE(result.err.find(": is an input\n"), std::string::npos) << result.err;
    EXPECT_EQ(ReadText(file), before);
  };
  WriteText(folder / "m.csv", "0,1\n0.1,2\n0.2,1\n0.3,2\n");
  const std::string measured = Definition(R"({"Measure": {"MeasPath": "m.csv"}})");
  const std::string samples = folder / "m.csv";
  refused({"generate", measured, "--csv", samples}, samples);
  refused({"report", measured, "--json", samples}, samples);
  refused({"srs", samples, "--csv", samples}, samples);
  refused({"judge", measured, samples, "--json", measured}, measured);
  refused({"batch", folder.GetPath().string(), "--csv", measured}, measured);
  // A folder of outputs in which the samples of a later definition lie.
  std::filesystem::create_directory(folder / "out");
  std::filesystem::copy_file(samples, folder / "out/a.csv");
  WriteText(folder / "b.json", R"({"Measure": {"MeasPath": "out/a.csv"}})");
  std::filesystem::rename(measured, folder / "a.json");
  refused({"batch", folder.GetPath().string(), "--output", folder / "out"}, folder / "out/a.csv");
  EXPECT_FALSE(std::filesystem::exists(folder / "out/index.html"));
}

TEST_F(Generate, OutputsReplaceFilesAndFollowLinks) {
  const std::string def = Definition(kSingle);
  WriteText(folder / "real.csv", "old");
  std::filesystem::create_symlink(folder / "real.csv", folder / "link.csv");
  ASSERT_EQ(RunCommand({"generate", def, "--csv", folder / "link.csv"}).code, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.csv"));
  EXPECT_TRUE(ReadText(folder / "real.csv").starts_with("time,"));
}

TEST_F(Generate, AFileThatGetsTooLargeLeavesNothing) {
  const std::string def = Definition(kSingle);
  WriteText(folder / "w.csv", "old");
  std::string line = "ulimit -f 8; ";  // blocks of 512 bytes, fewer than the samples take
  line.append(ShellQuoted(QARV_WAVE_COMMAND)).append(" generate ").append(ShellQuoted(def));
  line.append(" --record ").append(ShellQuoted(folder / "w.rec"));
  line.append(" --csv ").append(ShellQuoted(folder / "w.csv"));
  line.append(" >/dev/null 2>").append(ShellQuoted(folder / "err"));
  const int status = std::system(line.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_NE(ReadText(folder / "err").find("File too large"), std::string::npos)
      << ReadText(folder / "err");
  EXPECT_EQ(ReadText(folder / "w.csv"), "old");
  EXPECT_EQ(folder.List(), (std::vector<std::string>{"def.json", "err", "w.csv"}));
}

TEST_F(Generate, AClosedStandardOutputIsAnError) {
  const std::string def = Definition(kSingle);
  const std::string line = ShellQuoted(QARV_WAVE_COMMAND) + " generate " + ShellQuoted(def) +
                           " --csv " + ShellQuoted(folder / "w.csv") + " >/dev/full 2>" +
                           ShellQuoted(folder / "err");
  const int status = std::system(line.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_NE(ReadText(folder / "err").find("standard output"), std::string::npos);
}

TEST_F(Generate, ACompensationThatCannotBeSaysWhy) {
  const auto refused = [&](const std::string& rest, const std::string& reason) {
    ExpectRefused(
        R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": 50, "MainWidth": 0.02, "Fmax": 1000,
                      "AddCmp": true, "CmpPre": 1, "CmpPost": 1, )" +
            rest + "}}",
        1, {"def.json: Classical: AddCmp: ", reason});
  };
  refused(R"("Nsamp": 1024, "TolKind": "TOL_FIXED_1", "CmpType": "CMP_COSINE")", "floor of 1 %");
  refused(R"("Nsamp": 96, "TolKind": "TOL_FIXED_4", "CmpType": "CMP_OPTIMIZED")",
          "brings the table home");
  refused(R"("Nsamp": 16384, "TolKind": "TOL_FIXED_1", "CmpType": "CMP_COSINE")",
          "leaves its band at gain 1, first at sample ");
}

TEST_F(Generate, ACompensatedPulseSaysWhatItAsksOfTheShaker) {
  const auto result =
      RunCommand({"generate", QARV_SOURCE_DIR "/examples/definitions/compensated_flat_cosine.json",
                  "--plot", folder / "w.svg"});
  EXPECT_EQ(result.code, 0) << result.err;
  for (const char* const text :
       {"levels:    0.04", "shares:    0.3", "gain:      ", "shift:     0 samples",
        "velocity:  2.1", " m/s at most, ", "stroke:    18.0", " mm at most to one side, "}) {
    EXPECT_NE(result.out.find(text), std::string::npos) << text << "\n" << result.out;
  }
  const std::string svg = ReadText(folder / "w.svg");
  EXPECT_NE(svg.find("Velocity [m/s]"), std::string::npos);
  EXPECT_NE(svg.find("Displacement [mm]"), std::string::npos);
}

TEST_F(Generate, ClassicalPulsesTakeTheirRateFromTheAnalysisFrequency) {
  const auto result = RunCommand({"generate", Definition(R"({"Classical": {"WaveKind": "HALF_SINE",
      "MainAmpl": 50, "MainWidth": 0.01, "Fmax": 1000, "Nsamp": 256, "TolKind": "TOL_FIXED_4"}})"),
                                  "--record", folder / "w.rec"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("256 at 2560 Hz"), std::string::npos) << result.out;
}

}  // namespace
}  // namespace qarv::test
