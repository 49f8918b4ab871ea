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

TEST(CInterfaceAndCommand, ReportAlikeBesideAMachine) {
  const TempFolder folder;
  const std::string file = folder / "def.json";
  const std::string json = folder / "out.json";
  const std::string machine = folder / "m.json";
  WriteText(file, kPulse);
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const auto report = [&](const std::string& text, char* buffer, std::size_t capacity,
                          std::size_t* needed) {
    return qarv_wave_machine_report_json(handle.get(), text.data(), text.size(), buffer, capacity,
                                         needed);
  };
  const std::string good = R"({"Name": "V", "MaxAccel": 60, "MaxVelocity": "1 m/s", "Stroke": 51})";
  WriteText(machine, good);
  ASSERT_EQ(RunCommand({"report", file, "--machine", machine, "--json", json}).code, 0);
  const std::string said = TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return report(good, buffer, capacity, needed);
  });
  EXPECT_EQ(said, ReadText(json));
  EXPECT_EQ(Json(said)["machine_fits"]["value"], "no");

  const std::string bad = "{\"Name\": \"V\",\n \"MaxForce\": 60}";
  WriteText(machine, bad);
  std::size_t needed = 0;
  EXPECT_EQ(report(bad, nullptr, 0, &needed), QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error_key(handle.get()), "MaxForce");
  EXPECT_EQ(qarv_wave_error_line(handle.get()), 2U);
  EXPECT_EQ("qarv-wave: " + machine + ": " + qarv_wave_error(handle.get()) + "\n",
            RunCommand({"report", file, "--machine", machine}).err);
}

// ---- Synthesis ---------------------------------------------------------------------------------

constexpr const char* kRequired =
    R"({"Points": [[45, 20], [90, 40], [500, 40]], "TolUpper": 3, "TolLower": -1.5})";

std::int32_t Synthesize(const Handle& handle, const std::string& requirement,
                        const std::string& machine = "", const std::string& settings = "",
                        qarv_wave_progress progress = nullptr, void* context = nullptr) {
  return qarv_wave_synthesize(handle.get(), requirement.data(), requirement.size(), machine.data(),
                              machine.size(), settings.data(), settings.size(), progress, context);
}

std::string FiguresOf(const Handle& handle) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_synthesis_json(handle.get(), buffer, capacity, needed);
  });
}

TEST(CInterfaceAndCommand, SynthesizeTheSameBits) {
  const TempFolder folder;
  const std::string machine = R"({"Stroke": 51, "MaxAccel": 60})";
  WriteText(folder / "r.json", kRequired);
  WriteText(folder / "m.json", machine);
  const auto made = RunCommand({"synthesize", folder / "r.json", "--machine", folder / "m.json",
                                "--quick", "--shape", "sweep", "--seed", "7", "-o",
                                folder / "d.json", "--json", folder / "f.json"});
  ASSERT_EQ(made.code, 0) << made.err;
  const Handle handle = NewHandle();
  ASSERT_EQ(
      Synthesize(handle, kRequired, machine, R"({"quick": true, "shape": "sweep", "seed": 7})"),
      QARV_WAVE_OK)
      << qarv_wave_error(handle.get());
  EXPECT_EQ(FiguresOf(handle), ReadText(folder / "f.json"));
  const Handle read = NewHandle();
  ASSERT_EQ(Define(read, ReadText(folder / "d.json")), QARV_WAVE_OK);
  EXPECT_EQ(RecordOf(handle), RecordOf(read));
  EXPECT_EQ(DefinitionOf(handle), DefinitionOf(read));
}

TEST(CInterfaceAndCommand, SayTheSameOfWhatCannotBeSynthesized) {
  const TempFolder folder;
  const Handle handle = NewHandle();
  const auto same = [&](const std::string& text, std::int32_t status) {
    WriteText(folder / "r.json", text);
    const auto command = RunCommand({"synthesize", folder / "r.json", "--quick"});
    EXPECT_EQ(command.code, status) << text;
    EXPECT_EQ(Synthesize(handle, text, "", R"({"quick": true})"), status) << text;
    EXPECT_EQ("qarv-wave: " + (folder / "r.json") + ": " + qarv_wave_error(handle.get()) + "\n",
              command.err);
    ExpectNoWave(handle.get());
  };
  const std::string limited = R"({"Points": [[45, 20], [90, 40]])";
  same(limited + R"(, "MaxDisplacement": 0.01})", QARV_WAVE_REFUSED);
  same(limited + R"(, "Fsamp": 100})", QARV_WAVE_BAD_INPUT);
  same(limited + R"(, "Q": 5, "Q": 5})", QARV_WAVE_BAD_INPUT);
  same("{\n\"Points\": 1}", QARV_WAVE_BAD_INPUT);
  EXPECT_EQ(qarv_wave_error_line(handle.get()), 2U);
  EXPECT_EQ(Synthesize(handle, kRequired, "", R"({"shape": "round"})"), QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error_key(handle.get()), "shape");
  EXPECT_EQ(Synthesize(handle, kRequired, "", R"({"shap": "shock"})"), QARV_WAVE_BAD_INPUT);
  EXPECT_EQ(Synthesize(handle, kRequired, R"({"Stroke": 0})"), QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "Stroke: is not a number above 0");

  EXPECT_EQ(Synthesize(handle, limited + R"(, "MaxDisplacement": 0.01})", "",
                       R"({"quick": true, "force": true})"),
            QARV_WAVE_OK);
  EXPECT_GT(qarv_wave_size(handle.get()), 0U);
  const auto warnings = Json(FiguresOf(handle))["warnings"]["value"];
  ASSERT_GE(warnings.size(), 1U);
  EXPECT_TRUE(warnings[0].get<std::string>().starts_with("MaxDisplacement: ")) << warnings;
}

}  // namespace
}  // namespace qarv::test
