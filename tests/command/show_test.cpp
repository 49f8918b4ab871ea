// qarv-wave show: a record becomes the definition that it was made from.
#include "jobs/show.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "command_error.h"
#include "files/definition_file.h"
#include "run_command.h"

namespace qarv::test {
namespace {

using wave_def::CWaveDef;

/// Generates a definition, shows its record, generates what was shown, and compares the records.
void ExpectRoundTrip(const std::string& definition, const TempFolder& folder) {
  const auto first = RunCommand({"generate", definition, "--record", folder / "first.rec"});
  ASSERT_EQ(first.code, 0) << first.err;
  const auto shown = RunCommand({"show", folder / "first.rec", "-o", folder / "shown.json"});
  ASSERT_EQ(shown.code, 0) << shown.err;
  const auto second =
      RunCommand({"generate", folder / "shown.json", "--record", folder / "second.rec"});
  ASSERT_EQ(second.code, 0) << second.err;
  EXPECT_EQ(ReadText(folder / "first.rec"), ReadText(folder / "second.rec")) << definition;
  // What is printed is what -o writes, but for the place of a measured waveform's samples.
  const auto printed = RunCommand({"show", folder / "first.rec"});
  EXPECT_EQ(printed.code, 0);
  std::string expected = ReadText(folder / "shown.json");
  const std::string name = "\"first.rec.samples.csv\"";
  if (const auto at = expected.find(name); at != std::string::npos) {
    expected.replace(at + 1, name.size() - 2, folder / "first.rec.samples.csv");
  }
  EXPECT_EQ(printed.out, expected);
}

TEST(Show, EveryExampleComesBackByteForByte) {
  int count = 0;
  const std::string examples = QARV_SOURCE_DIR "/examples/definitions";
  for (const auto& entry : std::filesystem::directory_iterator(examples)) {
    if (entry.path().extension() != ".json") continue;
    const TempFolder folder;
    ExpectRoundTrip(entry.path().string(), folder);
    ++count;
  }
  EXPECT_GE(count, 20);
}

TEST(Show, NumbersThatAreNoneAndBytesThatAreNoTextComeBack) {
  const TempFolder folder;
  WriteText(folder / "m.csv", "nan\ninf\n-inf\nnan(0x7ff8000000000abc)\n-0\n1e-310\n0.1\n");
  WriteText(folder / "def.json",
            R"x({"Fsamp": "nan(0xfff8000000000001)", "TolUpperRat": "-inf",
                 "UnitAmpl": {"Codes": [2, 1, 99, 1], "Calcs": [1, 7, 2, 2], "Suffix": 4},
                 "Measure": {"MeasPath": {"Escaped": "%FF%00a%25"}, "Samples": "m.csv",
                             "DataEditLog": [{"Kind": 77, "Params": ["nan", 0.1], "Note": "gekürzt"}]}})x");
  ExpectRoundTrip(folder / "def.json", folder);
  const std::string shown = ReadText(folder / "shown.json");
  EXPECT_NE(shown.find("\"Escaped\": \"%FF%00a%25\""), std::string::npos) << shown;
  EXPECT_NE(shown.find("\"nan(0xfff8000000000001)\""), std::string::npos) << shown;
}

TEST(Show, WritesMeasuredSamplesWhereItIsTold) {
  const TempFolder folder;
  WriteText(folder / "m.csv", "1\n2\n3\n");
  WriteText(folder / "def.json", R"({"Fsamp": 10, "Measure": {"MeasPath": "m.csv"}})");
  ASSERT_EQ(RunCommand({"generate", folder / "def.json", "--record", folder / "r"}).code, 0);
  ASSERT_EQ(
      RunCommand({"show", folder / "r", "--samples", folder / "s.csv", "-o", folder / "o.json"})
          .code,
      0);
  EXPECT_EQ(ReadText(folder / "s.csv"), "value\n1\n2\n3\n");
  EXPECT_NE(ReadText(folder / "o.json").find("\"Samples\": \"s.csv\""), std::string::npos);
}

TEST(Show, AnIncompleteRecordIsOneLineAndExitTwo) {
  const TempFolder folder;
  const std::string definition = QARV_SOURCE_DIR "/examples/definitions/single.json";
  ASSERT_EQ(RunCommand({"generate", definition, "--record", folder / "r"}).code, 0);
  const std::string bytes = ReadText(folder / "r");
  const auto fails = [&](const std::string& text, const std::string& reason) {
    WriteText(folder / "bad", text);
    const auto result = RunCommand({"show", folder / "bad"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "qarv-wave: " + (folder / "bad") + ": " + reason + "\n");
  };
  fails("", "is not a whole record of a definition");
  fails(bytes.substr(0, 100), "is not a whole record of a definition");
  fails(bytes.substr(0, bytes.size() - 1), "is not a whole record of a definition");
  fails(bytes + "x", "goes on behind the record");
  EXPECT_EQ(RunCommand({"show", folder / "none"}).code, 2);
  EXPECT_EQ(RunCommand({"show", folder.GetPath().string()}).code, 2);
}

TEST(Show, NoTruncationOfARecordIsTaken) {
  const TempFolder folder;
  WriteText(folder / "def.json",
            R"({"Fsamp": 1000, "Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 5}})");
  CWaveDef def = command::LoadDefinition(folder / "def.json");
  command::WriteRecord(def, folder / "r");
  const std::string bytes = ReadText(folder / "r");
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    WriteText(folder / "cut", bytes.substr(0, n));
    EXPECT_THROW(command::ReadRecord(folder / "cut"), command::CommandError) << n;
  }
  EXPECT_EQ(command::ReadRecord(folder / "r"), def);
}

// ---- Definitions with arbitrary values in every field ------------------------------------------

/// Puts an arbitrary bit pattern, often a special one, into every double of a shown definition,
/// keeps the keys, and checks that reading and writing it again changes nothing.
TEST(DefinitionText, EveryDoubleSurvivesReadingAndWriting) {
  std::mt19937_64 random(20240611);
  const TempFolder folder;
  for (int round = 0; round < 300; ++round) {
    CWaveDef def;
    const auto number = [&] {
      switch (random() % 4) {
        case 0:
          return std::bit_cast<double>(random());
        case 1:
          return std::bit_cast<double>(random() | 0x7FF8000000000000U);  // a NaN
        case 2:
          return static_cast<double>(random() % 1000) / 10;
        default:
          return -0.0;
      }
    };
    wave_def::CWaveDefSingle set;
    set.SetPeriod(number());
    set.SetPeakLevel(number());
    set.SetWaveTime(number());
    set.SetEdgeTime(number());
    set.SetLengthType(static_cast<wave_def::CWaveDefSingle::LENGTH_TYPE>(random()));
    set.SetNsamp(1 + static_cast<unsigned int>(random() % 3));
    def.SetFsamp(1 + static_cast<double>(random() % 1000) / 7);
    def.SetMaxNsamp(random());
    def.SetTolUpperRat(number());
    def.SetTolLowerRat(number());
    ASSERT_TRUE(def.SetDefSingle(set));
    const std::string text = ToJson(definition::DefinitionOf(def));
    WriteText(folder / "def.json", text);
    CWaveDef again = command::LoadDefinition(folder / "def.json");
    EXPECT_EQ(ToJson(definition::DefinitionOf(again)), text);
    command::WriteRecord(def, folder / "a");
    command::WriteRecord(again, folder / "b");
    EXPECT_EQ(ReadText(folder / "a"), ReadText(folder / "b")) << text;
  }
}

}  // namespace
}  // namespace qarv::test
