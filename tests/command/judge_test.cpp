// qarv-wave judge: what passes, what fails, and what cannot be judged.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "run_command.h"

namespace qarv::test {
namespace {

const std::string kDefinitions = QARV_SOURCE_DIR "/examples/definitions/";
const double kPi = std::acos(-1.0);

/// A half-sine of 11 ms about t = 0.
double HalfSine(double t, double peak) {
  return std::fabs(t) < 0.0055 ? peak * std::cos(kPi * t / 0.011) : 0.0;
}

class JudgeCommand : public ::testing::Test {
 protected:
  /// Writes a record of `seconds` at a sampling frequency.
  std::string Record(double fsamp, double seconds, const std::function<double(double)>& value,
                     bool times = true) const {
    std::ostringstream text;
    text.precision(17);
    for (int k = 0; k < static_cast<int>(seconds * fsamp); ++k) {
      const double t = k / fsamp;
      if (times) text << t << ",";
      text << value(t) << "\n";
    }
    WriteText(folder / "m.csv", text.str());
    return folder / "m.csv";
  }
  /// The waveform of a definition, as the command writes it.
  std::string OwnWave(const std::string& definition) const {
    EXPECT_EQ(RunCommand({"generate", definition, "--csv", folder / "w.csv"}).code, 0);
    return folder / "w.csv";
  }
  nlohmann::json Verdict(const std::vector<std::string>& arguments, int code) const {
    std::vector<std::string> all{"judge"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), {"--json", folder / "v.json"});
    const auto result = RunCommand(all);
    EXPECT_EQ(result.code, code) << result.out << result.err;
    EXPECT_EQ(result.err, "");
    return nlohmann::json::parse(ReadText(folder / "v.json"));
  }
  static double Number(const nlohmann::json& verdict, const std::string& key) {
    return verdict.at(key).at("value").get<double>();
  }
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& text) const {
    const auto before = folder.List();
    std::vector<std::string> all{"judge"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.insert(all.end(), {"--json", folder / "v.json", "--plot", folder / "v.png"});
    const auto result = RunCommand(all);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err << " lacks " << text;
    EXPECT_EQ(folder.List(), before);
  }

  const std::string shock = kDefinitions + "half_sine_fixed.json";  // 50 g, 11 ms, 512 at 12800 Hz
  TempFolder folder;
};

TEST_F(JudgeCommand, EveryExamplePassesItsOwnBands) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(kDefinitions)) {
    if (entry.path().extension() != ".json") continue;
    const std::string definition = entry.path().string();
    const auto verdict = Verdict({definition, OwnWave(definition)}, 0);
    EXPECT_EQ(verdict.at("verdict").at("value"), "pass") << definition;
    EXPECT_EQ(Number(verdict, "outside"), 0.0);
    EXPECT_EQ(Number(verdict, "start"), 0.0) << definition;
    EXPECT_NEAR(Number(verdict, "correlation"), 1.0, 1e-9);
    ++count;
  }
  EXPECT_GT(count, 30);
}

TEST_F(JudgeCommand, FindsThePulseWhereverItLiesAtWhateverRate) {
  for (const double fsamp : {12800.0, 51200.0, 44100.0, 9000.0}) {
    for (const double at : {0.03, 0.0311234, 0.05}) {
      const auto record = Record(fsamp, 0.1, [&](double t) { return HalfSine(t - at, 50); });
      const auto verdict = Verdict({shock, record}, 0);
      // The definition has its pulse at 0.02 s.
      EXPECT_NEAR(Number(verdict, "start"), at - 0.02, 2e-6) << fsamp;
      EXPECT_EQ(Number(verdict, "judged"), 512.0);
      EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 0.0, 0.2) << fsamp;
    }
  }
}

TEST_F(JudgeCommand, NoiseAndALittleTooMuchPass) {
  std::mt19937 engine(5);
  std::uniform_real_distribution<double> noise(-1, 1);
  const auto record =
      Record(25600, 0.1, [&](double t) { return HalfSine(t - 0.04, 52) + noise(engine); });
  const auto verdict = Verdict({shock, record}, 0);
  EXPECT_GT(Number(verdict, "correlation"), 0.99);
}

TEST_F(JudgeCommand, NamesTheWorstViolation) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 65); });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(verdict.at("verdict").at("value"), "fail");
  EXPECT_GT(Number(verdict, "outside"), 20);
  EXPECT_EQ(Number(verdict, "worst_time"), 0.02);
  EXPECT_NEAR(Number(verdict, "worst_value"), 65, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_limit"), 57.5, 1e-9);
  EXPECT_NEAR(Number(verdict, "worst_excess"), 15, 1e-9);
  EXPECT_EQ(verdict.at("worst_value").at("unit"), "g");
  EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 30, 0.1);
}

TEST_F(JudgeCommand, ASinglePeakOutsideFails) {
  const auto record = Record(12800, 0.1, [](double t) {
    return HalfSine(t - 0.04, 50) + (std::fabs(t - 0.055) < 1e-5 ? 20.0 : 0.0);
  });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(Number(verdict, "outside"), 1.0);
  EXPECT_NEAR(Number(verdict, "worst_time"), 0.035, 1e-9);
}

TEST_F(JudgeCommand, TheVelocityChangeHasATolerance) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 56); });
  const auto verdict = Verdict({shock, record}, 1);
  EXPECT_EQ(Number(verdict, "outside"), 0.0);
  EXPECT_NEAR(Number(verdict, "velocity_change_deviation"), 12, 0.1);
  EXPECT_EQ(Number(verdict, "velocity_change_tolerance"), 10.0);
  EXPECT_EQ(Verdict({shock, record, "--dv-tol", "15"}, 0).at("verdict").at("value"), "pass");
  ExpectRefused({shock, record, "--dv-tol", "-1"}, "--dv-tol");
}

TEST_F(JudgeCommand, TakesARecordForTheDefinition) {
  const auto measured = OwnWave(shock);
  ASSERT_EQ(RunCommand({"generate", shock, "--record", folder / "d.rec"}).code, 0);
  EXPECT_EQ(Verdict({shock, measured}, 0), Verdict({folder / "d.rec", measured}, 0));
}

TEST_F(JudgeCommand, SamplesWithoutTimesNeedTheirFrequency) {
  const auto record = Record(
      12800, 0.1, [](double t) { return HalfSine(t - 0.04, 50); }, false);
  ExpectRefused({shock, record}, "--fsamp is needed");
  ExpectRefused({shock, record, "--fsamp", "0"}, "--fsamp");
  EXPECT_NEAR(Number(Verdict({shock, record, "--fsamp", "12800"}, 0), "start"), 0.02, 1e-9);
}

TEST_F(JudgeCommand, WarnsWhereTheRecordDoesNotCoverTheFrame) {
  const auto record = Record(12800, 0.03, [](double t) { return HalfSine(t - 0.01, 50); });
  const auto result = RunCommand({"judge", shock, record});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.err.find("covers 384 of the 512 samples of the frame"), std::string::npos)
      << result.err;
  EXPECT_NE(result.out.find("samples judged                     384\n"), std::string::npos);
}

TEST_F(JudgeCommand, RefusesWhatCannotBeJudged) {
  ExpectRefused({shock, Record(12800, 0.1, [](double) { return 0.0; })}, "does not show");
  ExpectRefused({shock, Record(12800, 0.012, [](double t) { return HalfSine(t - 0.003, 50); })},
                "does not hold the whole pulse");
  ExpectRefused({shock, Record(12800, 0.1, [](double t) { return t > 0.05 ? NAN : 1.0; })},
                "no numbers");
  ExpectRefused({shock, folder / "none.csv"}, "none.csv");
  ExpectRefused({folder / "none.json", OwnWave(shock)}, "none.json");
}

TEST_F(JudgeCommand, MarksTheViolationsInThePlot) {
  const auto record = Record(12800, 0.1, [](double t) { return HalfSine(t - 0.04, 65); });
  const auto result = RunCommand({"judge", shock, record, "--plot", folder / "v.svg"});
  EXPECT_EQ(result.code, 1);
  const std::string svg = ReadText(folder / "v.svg");
  for (const char* const text : {"m: fail", "upper band", "measured", "outside"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
  // The points of the violations, by the mark that they are drawn with.
  std::size_t points = 0;
  for (auto i = svg.find("#gpPt6"); i != std::string::npos; i = svg.find("#gpPt6", i + 1)) ++points;
  EXPECT_GT(points, 20U);
}

}  // namespace
}  // namespace qarv::test
