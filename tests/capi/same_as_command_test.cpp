// What the C interface says is what the command says: the texts of errors, reports and verdicts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../command/run_command.h"
#include "interface.h"

namespace qarv::test {
namespace {

TEST(CInterfaceAndCommand, SayTheSameOfBadDefinitions) {
  const std::string head =
      R"({"Fsamp": 1000, "Single": {"Period": 0.01, "PeakLevel": 2, "Nsamp": )";
  const std::vector<std::string> texts{
      head + "0}}",
      head + "\"many\"}}",
      head + "4294967296}}",
      head + "100, \"Edge\\nTime\": 1}}",
      head + "100}, \"Gradual\": {}}",
      head + "100}",
      R"({"Single": {"Period": 1}})",
      R"({"UnitAmpl": "furlong", "Fsamp": 1, "Single": {}})",
      R"({"Fsamp": 1, "Fsamp": 1})",
      "[]",
      "",
      "{\"a\": \"\xff\"}",
  };
  const TempFolder folder;
  const std::string file = folder / "def.json";
  const Handle handle = NewHandle();
  for (const std::string& text : texts) {
    WriteText(file, text);
    const CommandResult command = RunCommand({"generate", file});
    EXPECT_EQ(Define(handle, text), command.code) << text;
    EXPECT_EQ("qarv-wave: " + file + ": " + qarv_wave_error(handle.get()) + "\n", command.err);
  }
}

TEST(CInterfaceAndCommand, SayTheSameOfBadRecords) {
  const TempFolder folder;
  const std::string file = folder / "def.rec";
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kMeasured), QARV_WAVE_OK);
  const std::vector<std::uint8_t> record = RecordOf(handle);
  const std::string whole(record.begin(), record.end());
  for (const std::string& bytes : {whole.substr(0, whole.size() / 2), whole + "x"}) {
    WriteText(file, bytes);
    const std::vector<std::uint8_t> damaged(bytes.begin(), bytes.end());
    EXPECT_EQ(qarv_wave_load_record(handle.get(), damaged.data(), damaged.size()),
              QARV_WAVE_BAD_INPUT);
    EXPECT_EQ("qarv-wave: " + file + ": " + qarv_wave_error(handle.get()) + "\n",
              RunCommand({"show", file}).err);
  }
}

TEST(CInterfaceAndCommand, ReportAndJudgeAlike) {
  const TempFolder folder;
  const std::string file = folder / "def.json";
  const std::string json = folder / "out.json";
  const std::string csv = folder / "measured.csv";
  WriteText(file, kPulse);
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  qarv_wave* const h = handle.get();
  ASSERT_EQ(RunCommand({"report", file, "--json", json}).code, 0);
  EXPECT_EQ(TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
              return qarv_wave_report_json(h, buffer, capacity, needed);
            }),
            ReadText(json));

  std::vector<double> record(qarv_wave_samples(h), qarv_wave_samples(h) + qarv_wave_size(h) - 9);
  record[256] *= 1.5;
  std::string lines;
  for (const double v : record) lines += nlohmann::json(v).dump() + "\n";
  WriteText(csv, lines);
  ASSERT_EQ(
      RunCommand({"judge", file, csv, "--fsamp", "2560", "--dv-tol", "3", "--json", json}).code, 1);
  const std::string settings = R"({"dv-tol": 3})";
  const auto judge = [&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_judge_json(h, record.data(), record.size(), 2560, settings.data(),
                                settings.size(), buffer, capacity, needed);
  };
  const std::string verdict = TextOf(judge);
  auto printed = Json(ReadText(json));
  printed.erase("unit");  // what the file says of its unit
  EXPECT_EQ(Json(verdict), printed);
  EXPECT_EQ(Json(verdict)["warnings"]["value"].size(), 1U) << "a part of the frame is missing";

  std::size_t needed = 0;
  EXPECT_EQ(
      qarv_wave_judge_json(h, record.data(), record.size(), 2000, nullptr, 0, nullptr, 0, &needed),
      QARV_WAVE_BAD_INPUT);
  EXPECT_EQ("qarv-wave: " + csv + ": " + qarv_wave_error(h) + "\n",
            RunCommand({"judge", file, csv, "--fsamp", "2000"}).err);
}

}  // namespace
}  // namespace qarv::test
