// qarv-wave synthesize and srs --requirement: files, exit codes, what is said.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "run_command.h"

namespace qarv::test {
namespace {

constexpr const char* kRequired =
    R"({"Name": "small shock", "Points": [[45, 20], [90, 40], [500, 40]], "TolUpper": 3, "TolLower": -1.5)";

std::string Required(const TempFolder& folder, const std::string& more = "") {
  const std::string file = folder / "required.json";
  WriteText(file, kRequired + more + "}");
  return file;
}

TEST(SynthesizeCommand, WritesADefinitionWhoseSpectrumIsInside) {
  const TempFolder folder;
  const std::string required = Required(folder);
  const auto made =
      RunCommand({"synthesize", required, "-o", folder / "shock.json", "--plot", folder / "p.png",
                  "--csv", folder / "w.csv", "--json", folder / "f.json"});
  ASSERT_EQ(made.code, 0) << made.err;
  EXPECT_EQ(made.err, "");
  EXPECT_NE(made.out.find("small shock"), std::string::npos);
  EXPECT_TRUE(ReadText(folder / "p.png").starts_with("\x89PNG"));
  const auto definition = nlohmann::json::parse(ReadText(folder / "shock.json"));
  EXPECT_EQ(definition["UnitAmpl"], "g");
  EXPECT_EQ(definition["Fsamp"], 10240.0);
  EXPECT_EQ(definition["Damping"]["Nsamp"], 1365);
  EXPECT_EQ(definition["Damping"]["SyncWaveType"], "SYNC_WAVE_WAVELET");
  const auto figures = nlohmann::json::parse(ReadText(folder / "f.json"));
  EXPECT_LT(std::abs(figures["betweenWorst"]["value"].get<double>()), 0.8);
  EXPECT_EQ(figures["betweenInside"]["value"], 100.0);
  EXPECT_EQ(figures["displacement"]["unit"], "mm");

  const auto judged = RunCommand({"srs", folder / "shock.json", "--requirement", required});
  EXPECT_EQ(judged.code, 0) << judged.err;
  EXPECT_NE(judged.out.find("inside\n"), std::string::npos);
  // The samples alone are the same shock.
  const auto samples = RunCommand({"srs", folder / "w.csv", "--requirement", required});
  EXPECT_EQ(samples.code, 0) << samples.err << samples.out;
  const auto checked = RunCommand({"check", folder / "shock.json"});
  EXPECT_EQ(checked.code, 0) << checked.err;
}

TEST(SynthesizeCommand, JudgesASpectrumThatIsOutsideWithOne) {
  const TempFolder folder;
  const std::string required = Required(folder);
  const auto judged =
      RunCommand({"srs", QARV_SOURCE_DIR "/examples/definitions/half_sine_fixed.json",
                  "--requirement", required});
  EXPECT_EQ(judged.code, 1) << judged.err;
  EXPECT_NE(judged.out.find("outside\n"), std::string::npos);
  EXPECT_EQ(RunCommand({"srs", "x.json", "--requirement", required, "--q", "5"}).code, 2);
}

TEST(SynthesizeCommand, ConvertsTheUnitOfARecordToThatOfTheRequirement) {
  const TempFolder folder;
  const std::string required = Required(folder);
  ASSERT_EQ(RunCommand({"synthesize", required, "-o", folder / "shock.json"}).code, 0);
  auto definition = nlohmann::json::parse(ReadText(folder / "shock.json"));
  definition["UnitAmpl"] = "m/s^2";
  for (auto& element : definition["Damping"]["Elements"]) {
    element["Ampl"] = element["Ampl"].get<double>() * 9.80665;
  }
  WriteText(folder / "si.json", definition.dump());
  EXPECT_EQ(RunCommand({"srs", folder / "si.json", "--requirement", required}).code, 0);
  definition["UnitAmpl"] = "V";
  WriteText(folder / "volt.json", definition.dump());
  const auto volt = RunCommand({"srs", folder / "volt.json", "--requirement", required});
  EXPECT_EQ(volt.code, 2);
  EXPECT_NE(volt.err.find("does not go with"), std::string::npos) << volt.err;
}

TEST(SynthesizeCommand, WritesNothingThatIsNotMetUnlessForced) {
  const TempFolder folder;
  const std::string required = Required(folder, R"(, "MaxDisplacement": 0.01)");
  const auto refused = RunCommand({"synthesize", required, "--quick", "-o", folder / "shock.json"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("MaxDisplacement: "), std::string::npos) << refused.err;
  EXPECT_NE(refused.err.find("limit is 0.01 mm"), std::string::npos) << refused.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "shock.json"));
  const auto forced =
      RunCommand({"synthesize", required, "--quick", "--force", "-o", folder / "shock.json"});
  EXPECT_EQ(forced.code, 1);
  EXPECT_NE(forced.err.find("MaxDisplacement: "), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(folder / "shock.json"));
}

TEST(SynthesizeCommand, WarnsOfACoarseSampling) {
  const TempFolder folder;
  const std::string required = Required(folder, R"(, "Fsamp": 6000)");
  const auto warned = RunCommand({"synthesize", required, "-o", folder / "shock.json"});
  EXPECT_EQ(warned.code, 3) << warned.err;
  EXPECT_NE(warned.err.find("10000 Hz"), std::string::npos) << warned.err;
  EXPECT_TRUE(std::filesystem::exists(folder / "shock.json"));
}

TEST(SynthesizeCommand, SaysThatTheLeastMotionIsNoShock) {
  const TempFolder folder;
  const auto least =
      RunCommand({"synthesize", Required(folder), "--quick", "--minimize", "displacement"});
  EXPECT_EQ(least.code, 3) << least.err;
  EXPECT_NE(least.err.find("do not start together"), std::string::npos) << least.err;
  const auto sweep = RunCommand({"synthesize", Required(folder), "--quick", "--shape", "sweep",
                                 "--minimize", "displacement"});
  EXPECT_EQ(sweep.code, 0) << sweep.err;
}

TEST(SynthesizeCommand, RefusesWhatIsNoRequirementWithItsKey) {
  struct Case {
    const char *text, *says;
  };
  const Case cases[] = {
      {"[", "not JSON: "},
      {"[]", "is not an object"},
      {"{}", "Points: missing"},
      {R"({"Points": 1})", "Points: is not a list"},
      {R"({"Points": [[1, 1]]})", "Points: are fewer than 2"},
      {R"({"Points": [[1, 1], [2]]})", "Points[1]: is neither"},
      {R"({"Points": [[1, 1], [2, "a"]]})", "Points[1]: is not a number"},
      {R"({"Points": [[2, 1], [1, 1]]})", "Points[1]: its frequency"},
      {R"({"Points": [[1, 0], [2, 1]]})", "Points[0]: its level"},
      {R"({"Points": [[1, 1, 3, 6], [2, 1]]})", "Points[0]: its tolerance"},
      {R"({"Points": [[1, 1], [2, 1]], "Qq": 1})", "Qq: unknown key"},
      {R"({"Points": [[1, 1], [2, 1]], "Q": 5, "Q": 10})", "Q: stands twice"},
      {R"({"Points": [[1, 1], [2, 1]], "Q": 0})", "Q: is not above 0"},
      {R"({"Points": [[1, 1], [2, 1]], "Q": 10, "Damping": 0.05})", "Damping: stands beside Q"},
      {R"({"Points": [[1, 1], [2, 1]], "Damping": 0.9})", "Damping: is not within"},
      {R"({"Points": [[1, 1], [2, 1]], "UnitAmpl": "furlong"})", "UnitAmpl: is not a known unit"},
      {R"({"Points": [[1, 1], [2, 1]], "UnitAmpl": "V", "MaxVelocity": 1})", "MaxVelocity: needs"},
      {R"({"Points": [[1, 1], [2, 1]], "Polarity": "left"})", "Polarity: is none of"},
      {R"({"Points": [[1, 1], [2, 1]], "MaxAccel": -1})", "MaxAccel: is below 0"},
      {R"({"Points": [[1, 1], [2, 1]], "Nsamp": 1.5})", "Nsamp: is not a whole number"},
      {R"({"Points": [[1, 1], [2, 1]], "Fsamp": 15})", "Fsamp: 15 Hz is too low for 2 Hz: 20 Hz"},
      {R"({"Points": [[1, 1], [2, 1]], "Fsamp": 40, "Nsamp": 50})", "Nsamp: 50 samples"},
  };
  const TempFolder folder;
  for (const Case& c : cases) {
    WriteText(folder / "r.json", c.text);
    const auto result = RunCommand({"synthesize", folder / "r.json", "-o", folder / "shock.json"});
    EXPECT_EQ(result.code, 2) << c.text;
    EXPECT_NE(result.err.find(c.says), std::string::npos) << c.text << "\n" << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "shock.json")) << c.text;
  }
  const std::string required = Required(folder);
  EXPECT_EQ(RunCommand({"synthesize", required, "--shape", "round"}).code, 2);
  EXPECT_EQ(RunCommand({"synthesize", required, "--method", "magic"}).code, 2);
  EXPECT_EQ(RunCommand({"synthesize", required, "--minimize", "effort"}).code, 2);
  EXPECT_EQ(RunCommand({"synthesize", required, "--within", "-1"}).code, 2);
}

TEST(SynthesizeCommand, TakesTheExampleOfARequirement) {
  const TempFolder folder;
  const std::string required = QARV_SOURCE_DIR "/examples/requirements/functional_shock.json";
  const auto made = RunCommand({"synthesize", required, "--quick", "-o", folder / "shock.json"});
  EXPECT_EQ(made.code, 0) << made.err;
}

TEST(SynthesizeCommand, KeepsTheLimitsOfTheMachineToo) {
  const TempFolder folder;
  const std::string required = Required(folder);
  const auto figures = [&](const std::string& machine, int code) {
    std::vector<std::string> arguments{"synthesize", required, "--json", folder / "f.json"};
    if (!machine.empty()) {
      WriteText(folder / "m.json", machine);
      arguments.insert(arguments.end(), {"--machine", folder / "m.json"});
    }
    const auto made = RunCommand(arguments);
    EXPECT_EQ(made.code, code) << machine << made.err;
    return nlohmann::json::parse(ReadText(folder / "f.json"));
  };
  const auto value = [](const nlohmann::json& from, const char* key) {
    return from.at(key).at("value").get<double>();
  };
  const auto free = figures("", 0);
  EXPECT_FALSE(free.contains("machine_fits"));
  // A tenth less way than it takes, to the nearer end of a stroke that is far longer.
  const double way = 0.9 * value(free, "displacement");
  const auto kept =
      figures(R"({"Stroke": )" + std::to_string(10 * way) + R"(, "StartPosition": 0.1})", 0);
  EXPECT_LE(value(kept, "displacement"), way);
  EXPECT_NEAR(value(kept, "MaxDisplacement"), way, 1e-5);
  EXPECT_EQ(kept.at("machine_fits").at("value"), "yes");
  EXPECT_GE(value(kept, "machine_down_margin"), 0.0);
  // Of what the synthesis does not steer it warns.
  const auto rough = figures(R"({"MaxJerk": 1})", 3);
  EXPECT_EQ(rough.at("machine_fits").at("value"), "no");
  EXPECT_EQ(rough.at("warnings").at("value").size(), 1U);
}

TEST(SynthesizeCommand, OfTheLimitsOfRequirementAndMachineTheTighterOneHolds) {
  const TempFolder folder;
  const auto refused = [&](const char* limit, const char* machine) {
    const std::string required = Required(folder, limit);
    WriteText(folder / "m.json", machine);
    const auto result = RunCommand({"synthesize", required, "--quick", "--machine",
                                    folder / "m.json", "-o", folder / "shock.json"});
    EXPECT_EQ(result.code, 1) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "shock.json"));
    return result.err;
  };
  EXPECT_NE(refused("", R"({"Stroke": 0.02})").find("the machine's limit is 0.01 mm"),
            std::string::npos);
  EXPECT_NE(refused(R"(, "MaxDisplacement": 0.03)", R"({"Stroke": 0.02})")
                .find("the machine's limit is 0.01 mm"),
            std::string::npos);
  EXPECT_NE(
      refused(R"(, "MaxDisplacement": 0.01)", R"({"Stroke": 0.1})").find("the limit is 0.01 mm"),
      std::string::npos);
}

TEST(SynthesizeCommand, RefusesAMachineThatNoWaveformCanUse) {
  const TempFolder folder;
  const auto expect = [&](const std::string& required, const char* machine, const char* says) {
    WriteText(folder / "m.json", machine);
    const auto result = RunCommand({"synthesize", required, "--machine", folder / "m.json"});
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
  };
  expect(Required(folder), R"({"Stroke": 9, "StartPosition": 0})", "--machine: its StartPosition");
  expect(Required(folder), R"({"Stroke": 9, "Stroke": 8})", "m.json: Stroke: stands twice");
  expect(Required(folder, R"(, "UnitAmpl": "V")"), R"({"Stroke": 9})", "--machine: its limits are");
}

}  // namespace
}  // namespace qarv::test
