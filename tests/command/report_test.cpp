// qarv-wave report: its numbers, its files, and what it refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "run_command.h"
#include "text_search.h"
#include "wave_def/wave_def.h"

namespace qarv::test {
namespace {

nlohmann::json ReportOf(const std::string& input, const TempFolder& folder) {
  const auto result = RunCommand({"report", input, "--json", folder / "r.json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  return nlohmann::json::parse(ReadText(folder / "r.json"));
}

double Value(const nlohmann::json& report, const std::string& key) {
  return report.at(key).at("value").get<double>();
}

TEST(ReportCommand, HasTheVelocityChangeOfEveryShape) {
  // 50 g, 11 ms: the share of peak times width that the area is.
  const double base = 50 * 9.80665 * 0.011;
  const double pi = std::acos(-1.0);
  const std::pair<const char*, double> shapes[] = {
      {"half_sine_fixed", 2 / pi}, {"haversine_fixed", 0.5}, {"sawtooth_fixed", 0.5},
      {"triangle_user", 0.5},      {"trapezoid_fixed", 0.9}, {"trapezoid_standard", 0.825},
      {"user_trapezoid_user", 0.7}};
  const TempFolder folder;
  for (const auto& [name, share] : shapes) {
    const auto report = ReportOf(kExamples + name + ".json", folder);
    EXPECT_NEAR(Value(report, "velocity_change_nominal"), base * share, 1e-9) << name;
    // Within what 141 samples of a pulse leave.
    EXPECT_NEAR(Value(report, "velocity_change_deviation"), 0.0, 1.5) << name;
    EXPECT_EQ(report.at("velocity_change").at("unit"), "m/s");
    EXPECT_EQ(Value(report, "peak"), 50.0);
    EXPECT_EQ(Value(report, "level_outside"), 0.0) << name;
  }
}

TEST(ReportCommand, MeasuresPulseAndMargins) {
  const TempFolder folder;
  const auto report = ReportOf(kExamples + "half_sine_fixed.json", folder);
  EXPECT_NEAR(Value(report, "pulse_width"), 0.011 * (1 - 2 * std::asin(0.1) / std::acos(-1.0)),
              1e-4);
  EXPECT_EQ(Value(report, "peak_time"), 0.02);
  EXPECT_NEAR(Value(report, "upper_margin"), 5.0, 1e-9) << "the left level";
  EXPECT_NEAR(Value(report, "lower_margin"), 5.0, 1e-9);
  EXPECT_NEAR(Value(report, "residual_velocity"), Value(report, "velocity_change"), 1e-9);
}

TEST(ReportCommand, OfACompensatedPulseEndsAtRest) {
  const TempFolder folder;
  const auto report = ReportOf(kExamples + "compensated_cosine.json", folder);
  EXPECT_LT(std::fabs(Value(report, "residual_velocity")), 1e-9);
  EXPECT_LT(std::fabs(Value(report, "residual_displacement")), 1e-9);
  EXPECT_NEAR(Value(report, "peak_to_peak_displacement"), 2 * Value(report, "peak_displacement"),
              0.1 * Value(report, "peak_displacement"))
      << "centred";
  EXPECT_NEAR(Value(report, "compensation_level_pre"), 0.0475, 0.0005);
  EXPECT_GE(Value(report, "lower_margin"), 0.0);
}

TEST(ReportCommand, ReportsEveryFamily) {
  for (const char* const name :
       {"single", "gradual", "sine_beat", "symmetry_half_sine", "damped_sine", "measured"}) {
    const TempFolder folder;
    const auto report = ReportOf(kExamples + name + ".json", folder);
    EXPECT_GT(Value(report, "peak_velocity"), 0.0);
    EXPECT_FALSE(report.contains("velocity_change"));
  }
}

TEST(ReportCommand, OfARecordIsThatOfItsDefinition) {
  const TempFolder folder;
  const std::string definition = kExamples + "sawtooth_fixed.json";
  ASSERT_EQ(RunCommand({"generate", definition, "--record", folder / "r.rec"}).code, 0);
  EXPECT_EQ(RunCommand({"report", definition}).out, RunCommand({"report", folder / "r.rec"}).out);
}

TEST(ReportCommand, KeepsOtherUnitsAsTheyAre) {
  const TempFolder folder;
  WriteText(
      folder / "d.json",
      R"({"Fsamp": 100, "UnitAmpl": "V", "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 100}})");
  const auto report = ReportOf(folder / "d.json", folder);
  EXPECT_EQ(report.at("peak_velocity").at("unit"), "V s");
  EXPECT_NEAR(Value(report, "peak_velocity"), 2 / std::acos(-1.0), 0.01);
}

TEST(ReportCommand, WritesOnePageThatNeedsNothingElse) {
  const TempFolder folder;
  const auto result =
      RunCommand({"report", kExamples + "compensated_cosine.json", "--html", folder / "r.html"});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::string html = ReadText(folder / "r.html");
  EXPECT_TRUE(html.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(html.ends_with("</html>\n"));
  for (const char* const text : {"<svg", "Velocity [m/s]", "Displacement [mm]", "peak displacement",
                                 "compensation level before"}) {
    EXPECT_NE(html.find(text), std::string::npos) << text;
  }
  for (const char* const text : {"src=", "<script", "<link", "@import", "url(http"}) {
    EXPECT_EQ(html.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(folder.List(), std::vector<std::string>{"r.html"});
}

TEST(ReportCommand, ThePageHasTheSpectrumAndStatesItsHeadingOnce) {
  const TempFolder folder;
  const auto result =
      RunCommand({"report", kExamples + "half_sine_fixed.json", "--html", folder / "r.html"});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::string html = ReadText(folder / "r.html");
  const auto count = [&](const std::string& text) {
    std::size_t n = 0;
    for (auto i = html.find(text); i != std::string::npos; i = html.find(text, i + 1)) ++n;
    return n;
  };
  EXPECT_EQ(count("<svg"), 2U);
  for (const char* const text : {"maximax", "primary", "Natural frequency [Hz]",
                                 "<h2>Shock response spectrum, damping 0.05 (Q 10)</h2>"}) {
    EXPECT_EQ(count(text), 1U) << text;
  }
  EXPECT_EQ(count("half_sine_fixed: half-sine 50 g, 11 ms"), 2U) << "the page's title and heading";
  EXPECT_EQ(count("<title>"), 1U);
}

TEST(ReportCommand, ThePageKeepsThePartsOfANumberBelowIt) {
  const TempFolder folder;
  ASSERT_EQ(
      RunCommand({"report", kExamples + "half_sine_fixed.json", "--html", folder / "r.html"}).code,
      0);
  const std::string html = ReadText(folder / "r.html");
  for (const char* const text : {"<th class=\"part\">at</th>", "<th class=\"part\">nominal</th>",
                                 "<th class=\"part\">deviation</th>", "<th>peak</th>"}) {
    EXPECT_NE(html.find(text), std::string::npos) << text;
  }
}

TEST(ReportCommand, ThePageNamesNoPartOfAPictureTwice) {
  const TempFolder folder;
  ASSERT_EQ(
      RunCommand({"report", kExamples + "compensated_cosine.json", "--html", folder / "r.html"})
          .code,
      0);
  const std::string html = ReadText(folder / "r.html");
  std::set<std::string> ids;
  for (const char* const mark : {" id=\"", " id='"}) {
    for (const std::string& id : TextsAfter(html, mark, "\"'")) {
      EXPECT_TRUE(ids.insert(id).second) << id;
    }
  }
  EXPECT_EQ(TextsAfter(html, "<svg", ">").size(), 2U) << "each of which gnuplot numbers alike";
  for (const char* const mark : {"href=\"#", "href='#", "url(#", "url('#", "url(\"#"}) {
    for (const std::string& id : TextsAfter(html, mark, "\"')"))
      EXPECT_TRUE(ids.contains(id)) << id;
  }
}

TEST(ReportCommand, ThePageOfSamplesThatAreNoNumbersHasNoSpectrum) {
  const TempFolder folder;
  WriteText(folder / "d.json",
            R"({"Fsamp": 100, "Single": {"Period": 1, "PeakLevel": "inf", "Nsamp": 100}})");
  ASSERT_EQ(RunCommand({"report", folder / "d.json", "--html", folder / "r.html"}).code, 0);
  EXPECT_EQ(ReadText(folder / "r.html").find("spectrum"), std::string::npos);
}

TEST(ReportCommand, NamesCannotReachThePage) {
  const TempFolder folder;
  const std::string name = folder / "a<b>&c.json";
  WriteText(name, R"({"Fsamp": 100, "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 10}})");
  ASSERT_EQ(RunCommand({"report", name, "--html", folder / "r.html"}).code, 0);
  EXPECT_NE(ReadText(folder / "r.html").find("<h1>a&lt;b&gt;&amp;c: sine 2, 1 Hz</h1>"),
            std::string::npos);
}

TEST(ReportCommand, RefusesARecordWithABandShorterThanItsWave) {
  wave_def::CWaveDef def;
  def.SetFsamp(100);
  ASSERT_TRUE(def.SetDefMeasure({}, {1.0, -2.0, 3.0}));
  common::CSerialData whole;
  ASSERT_TRUE(def.Serialize(&whole));
  const auto recordOf = [](const common::CDataArrayFloatT<double>& array) {
    common::CSerialData stream;
    EXPECT_TRUE(common::CDataArrayFloatT<double>(array).Serialize(&stream));
    return std::string(stream.GetData(), stream.GetData() + stream.GetSize());
  };
  std::string bytes(whole.GetData(), whole.GetData() + whole.GetSize());
  const std::string lower = recordOf(def.GetTolL());
  ASSERT_TRUE(bytes.ends_with(lower)) << "the lower band is the last item";
  bytes.replace(bytes.size() - lower.size(), lower.size(), recordOf({1.0}));
  const TempFolder folder;
  WriteText(folder / "short.rec", bytes);
  EXPECT_EQ(RunCommand({"show", folder / "short.rec"}).code, 0) << "it loads";
  const auto result = RunCommand({"report", folder / "short.rec", "--json", folder / "r.json"});
  EXPECT_EQ(result.code, 2);
  EXPECT_NE(result.err.find("has no samples with bands"), std::string::npos) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "r.json"));
}

TEST(ReportCommand, RefusesWithNothingWritten) {
  const TempFolder folder;
  EXPECT_EQ(RunCommand({"report", folder / "none.json", "--json", folder / "r.json"}).code, 2);
  EXPECT_EQ(RunCommand({"report", kExamples + "single.json", "--json", folder / "r.json", "--html",
                        folder / "no/r.html"})
                .code,
            2);
  WriteText(folder / "m.csv", "1\n");
  EXPECT_EQ(RunCommand({"report", folder / "m.csv"}).code, 2);
  EXPECT_EQ(folder.List(), std::vector<std::string>{"m.csv"});
}

// ---- A machine beside it -----------------------------------------------------------------------

/// The half-sine of the examples, 50 g and 11 ms, compensated.
const std::string kCompensated = kExamples + "compensated_cosine.json";

TEST(ReportCommand, PutsTheLimitsOfAMachineBesideItsNumbers) {
  const TempFolder folder;
  WriteText(
      folder / "m.json",
      R"({"Name": "V-9", "MaxAccel": 100, "MaxVelocity": "1 m/s", "Stroke": 200, "MaxJerk": 1e6})");
  const auto result = RunCommand(
      {"report", kCompensated, "--machine", folder / "m.json", "--json", folder / "r.json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const auto report = nlohmann::json::parse(ReadText(folder / "r.json"));
  EXPECT_EQ(report.at("machine").at("value"), "V-9");
  EXPECT_EQ(Value(report, "machine_acceleration"), std::fabs(Value(report, "peak")));
  EXPECT_NEAR(Value(report, "machine_acceleration_limit"), 100.0, 1e-12);
  EXPECT_NEAR(Value(report, "machine_acceleration_margin"), 50.0, 1e-9);
  EXPECT_EQ(Value(report, "machine_velocity"), Value(report, "peak_velocity"));
  EXPECT_NEAR(Value(report, "machine_velocity_margin"),
              100.0 - 100.0 * Value(report, "peak_velocity"), 1e-9);
  EXPECT_EQ(report.at("machine_velocity_margin").at("unit"), "% of the limit");
  EXPECT_NEAR(Value(report, "machine_up") + Value(report, "machine_down"),
              Value(report, "peak_to_peak_displacement"), 1e-9);
  EXPECT_EQ(Value(report, "machine_up_limit"), 100.0);
  EXPECT_GT(Value(report, "machine_jerk"), 0.0);
  EXPECT_FALSE(report.contains("machine_lowest_frequency")) << "a pulse has none";
  EXPECT_EQ(report.at("machine_fits").at("value"), "no") << "it is faster";
  for (const char* const line :
       {"machine: velocity ", "  limit  ", "  margin  ", "fits the machine", "V-9"}) {
    EXPECT_NE(result.out.find(line), std::string::npos) << line;
  }
}

TEST(ReportCommand, ThePageDrawsTheLimitsOfTheMachine) {
  const TempFolder folder;
  const auto page = [&](const std::string& machine) {
    WriteText(folder / "m.json", machine);
    const auto result = RunCommand(
        {"report", kCompensated, "--machine", folder / "m.json", "--html", folder / "r.html"});
    EXPECT_EQ(result.code, 0) << result.err;
    return ReadText(folder / "r.html");
  };
  const auto lines = [](const std::string& html) {
    std::size_t n = 0;
    const std::string colour = "125,  60, 152";
    for (auto i = html.find(colour); i != std::string::npos; i = html.find(colour, i + 1)) ++n;
    return n;
  };
  const std::string all = page(R"({"MaxAccel": 60, "MaxVelocity": 2, "Stroke": 100})");
  EXPECT_NE(all.find("limit of the machine"), std::string::npos);
  EXPECT_NE(all.find("machine: acceleration"), std::string::npos);
  const std::string one = page(R"({"MaxVelocity": 2})");
  EXPECT_GT(lines(one), 0U);
  EXPECT_GT(lines(all), lines(one));
  EXPECT_EQ(lines(page(R"({"LowestFrequency": 2})")), 0U);
}

TEST(ReportCommand, RefusesWhatIsNoMachine) {
  const TempFolder folder;
  const auto expect = [&](const std::string& input, const std::string& machine,
                          const std::string& says) {
    WriteText(folder / "m.json", machine);
    for (const char* const job : {"report", "check"}) {
      const auto result = RunCommand({job, input, "--machine", folder / "m.json"});
      EXPECT_EQ(result.code, 2) << machine;
      EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
      EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
  };
  expect(kCompensated, R"({"MaxForce": 5})", "m.json: MaxForce: needs MovingMass");
  expect(kCompensated, "", "m.json: not JSON");
  WriteText(
      folder / "v.json",
      R"({"Fsamp": 100, "UnitAmpl": "V", "Single": {"Period": 1, "PeakLevel": 2, "Nsamp": 100}})");
  expect(folder / "v.json", R"({"MaxAccel": 5})", "--machine: its limits are for accelerations");
  EXPECT_EQ(RunCommand({"report", kCompensated, "--machine", folder / "none.json"}).code, 2);
}

}  // namespace
}  // namespace qarv::test
