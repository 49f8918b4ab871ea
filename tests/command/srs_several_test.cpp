// qarv-wave srs: several quality factors in one run, and the envelope of several records.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "assess/ensemble.h"
#include "run_command.h"

namespace qarv::test {
namespace {

using Json = nlohmann::json;

const std::string kHalfSine = kExamples + "half_sine_fixed.json";

/// A refusal is one line, and nothing is written.
void ExpectRefused(const TempFolder& folder, std::vector<std::string> arguments,
                   const std::string& text) {
  const auto before = folder.List();
  arguments.insert(arguments.begin(), "srs");
  arguments.insert(arguments.end(), {"--csv", folder / "refused.csv"});
  const auto result = RunCommand(arguments);
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  EXPECT_EQ(folder.List(), before);
}

TEST(SrsOfSeveralQ, HasTheColumnsOfEachThatItHasAlone) {
  const TempFolder folder;
  const auto run = [&](const std::string& q, const std::string& name) {
    const auto result = RunCommand({"srs", kHalfSine, "--q", q, "--points", "9", "--csv",
                                    folder / (name + ".csv"), "--json", folder / (name + ".json")});
    EXPECT_EQ(result.code, 0) << result.err;
    return result.out;
  };
  const std::string out = run("5,10, 50", "all");
  EXPECT_NE(out.find("       5         0.1"), std::string::npos) << out;
  EXPECT_NE(out.find("      50        0.01"), std::string::npos) << out;
  const Json all = Json::parse(ReadText(folder / "all.json"));
  EXPECT_EQ(all["response"], "absolute acceleration");
  EXPECT_EQ(all["unit"], "g");
  ASSERT_EQ(all["spectra"].size(), 3U);
  std::istringstream csv(ReadText(folder / "all.csv"));
  std::string line;
  std::getline(csv, line);
  EXPECT_TRUE(line.starts_with("frequency,maximax_q5,positive_q5,")) << line;
  EXPECT_NE(line.find(",residual_negative_q5,maximax_q10,"), std::string::npos) << line;
  EXPECT_TRUE(line.ends_with(",residual_negative_q50")) << line;
  std::vector<std::istringstream> alone;
  for (std::size_t k = 0; k < 3; ++k) {
    const std::string q = std::vector<std::string>{"5", "10", "50"}[k];
    run(q, q);
    alone.emplace_back(ReadText(folder / (q + ".csv")));
    std::getline(alone.back(), line);
    const Json one = Json::parse(ReadText(folder / (q + ".json")));
    EXPECT_EQ(one["spectra"][0], all["spectra"][k]);
    EXPECT_EQ(one["frequency"], all["frequency"]);
    EXPECT_EQ(one["spectra"][0]["q"], std::stod(q));
    EXPECT_EQ(one["spectra"][0]["maximax"].size(), 9U);
  }
  // Each line is the one of each put together, the frequency but once.
  while (std::getline(csv, line)) {
    std::string expected;
    for (std::istringstream& one : alone) {
      std::string part;
      ASSERT_TRUE(std::getline(one, part));
      expected += expected.empty() ? part : part.substr(part.find(','));
    }
    EXPECT_EQ(line, expected);
  }
}

TEST(SrsOfSeveralQ, AreDrawnTogetherWithTheirNames) {
  const TempFolder folder;
  ASSERT_EQ(RunCommand({"srs", kHalfSine, "--q", "5,10,25,50", "--plot", folder / "s.svg"}).code,
            0);
  const std::string svg = ReadText(folder / "s.svg");
  for (const char* const name : {">Q 5<", ">Q 10<", ">Q 25<", ">Q 50<"}) {
    EXPECT_NE(svg.find(name), std::string::npos) << name;
  }
  EXPECT_EQ(svg.find(">residual<"), std::string::npos);
}

TEST(SrsOfSeveralQ, AreRefusedWhereTheyAreNone) {
  const TempFolder folder;
  ExpectRefused(folder, {kHalfSine, "--q", "5,x"}, "--q: '5,x' has no number where one belongs");
  ExpectRefused(folder, {kHalfSine, "--q", "5,,10"}, "--q");
  ExpectRefused(folder, {kHalfSine, "--q", "5,0.5"}, "--q: is not above 0.5");
  ExpectRefused(folder, {kHalfSine, "--q", "5,nan"}, "--q: ");
  ExpectRefused(folder, {kHalfSine, "--q", "5,10,5.0"}, "--q: names 5 twice");
}

TEST(SrsOfSeveralQ, AreComparedWithARequirementWhoseOwnIsAmongThem) {
  const TempFolder folder;
  const std::string required = folder / "required.json";
  // About what the half-sine has with Q 10.
  WriteText(required, R"({"Points": [[20, 38.8], [40, 70], [80, 82.4]],
                          "TolUpper": 3, "TolLower": -3})");
  const auto alone = RunCommand({"srs", kHalfSine, "--requirement", required});
  ASSERT_EQ(alone.code, 0) << alone.err << alone.out;
  const auto several = RunCommand({"srs", kHalfSine, "--requirement", required, "--q", "5,10,50",
                                   "--json", folder / "s.json", "--plot", folder / "s.svg"});
  EXPECT_EQ(several.code, 0) << several.err;
  const Json json = Json::parse(ReadText(folder / "s.json"));
  EXPECT_EQ(json["spectra"].size(), 3U);
  EXPECT_EQ(json["requirement"]["verdict"]["value"], "inside");
  // The verdict is that of its own Q: of the others one is far outside.
  const auto verdictOf = [](const std::string& out) { return out.substr(out.find("worst")); };
  EXPECT_EQ(verdictOf(several.out), verdictOf(alone.out));
  const std::string svg = ReadText(folder / "s.svg");
  for (const char* const name : {">Q 5<", ">Q 50<", ">required<", ">tolerance<"}) {
    EXPECT_NE(svg.find(name), std::string::npos) << name;
  }
  ExpectRefused(folder, {kHalfSine, "--requirement", required, "--q", "5,50"},
                "--q: '5,50' does not name the requirement's Q, 10");
}

// ---- Several records

/// Three half-sines of 40, 50 and 70 g, the second in m/s^2 and at another rate.
std::vector<std::string> Shocks(const TempFolder& folder) {
  struct Record {
    double peak, rate;
    const char* unit;
  };
  std::vector<std::string> files;
  for (const Record& r :
       {Record{40, 10000, "g"}, Record{50 * 9.80665, 20000, "m/s^2"}, Record{70, 10000, "g"}}) {
    std::ostringstream text;
    text.precision(15);
    text << "t [s],a [" << r.unit << "]\n";
    for (int i = 0; i < static_cast<int>(0.1 * r.rate); ++i) {
      const double t = i / r.rate;
      const bool inside = t > 0.02 && t < 0.031;
      text << t << "," << (inside ? r.peak * std::sin(std::acos(-1.0) * (t - 0.02) / 0.011) : 0.0)
           << "\n";
    }
    files.push_back(folder / (std::to_string(files.size()) + ".csv"));
    WriteText(files.back(), text.str());
  }
  return files;
}

std::vector<std::string> With(std::vector<std::string> arguments,
                              const std::vector<std::string>& more) {
  arguments.insert(arguments.begin(), "srs");
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST(SrsEnvelope, HasTheLargestTheMeanAndTheToleranceLimitOfTheRecords) {
  const TempFolder folder;
  const auto result =
      RunCommand(With(Shocks(folder), {"--envelope", "--to", "2000", "--csv", folder / "e.csv",
                                       "--json", folder / "e.json", "--plot", folder / "e.svg"}));
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_NE(result.out.find("records:   3\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("1.csv: converted from m/s^2 to g\n"), std::string::npos);
  EXPECT_NE(result.out.find("0.csv: upsampled 2 times to 20000 Hz"), std::string::npos);
  const Json json = Json::parse(ReadText(folder / "e.json"));
  EXPECT_EQ(json["unit"], "g");
  ASSERT_EQ(json["records"].size(), 3U);
  EXPECT_EQ(json["records"][0]["upsampling"], 2);
  EXPECT_EQ(json["records"][1]["upsampling"], 1);
  ASSERT_EQ(json["spectra"].size(), 1U);
  const Json& spectrum = json["spectra"][0];
  std::istringstream csv(ReadText(folder / "e.csv"));
  std::string line;
  std::getline(csv, line);
  EXPECT_EQ(line, "frequency,envelope,mean,p95_50,maximax_1,maximax_2,maximax_3");
  const std::size_t n = json["frequency"].size();
  EXPECT_EQ(n, 104U);  // 12 in each octave from 5 to 2000 Hz
  for (std::size_t i = 0; i < n; ++i) {
    // The factor is that of tables of normal tolerance limits.
    constexpr double k = 1.9384162734038637;
    double m = 0;
    double sum = 0;
    double largest = 0;
    for (const char* const name : {"maximax_1", "maximax_2", "maximax_3"}) {
      const double v = spectrum[name][i];
      m += std::log(v) / 3;
      sum += v;
      largest = std::max(largest, v);
    }
    double variance = 0;
    for (const char* const name : {"maximax_1", "maximax_2", "maximax_3"}) {
      variance += std::pow(std::log(spectrum[name][i].get<double>()) - m, 2) / 2;
    }
    EXPECT_EQ(spectrum["envelope"][i], largest);
    EXPECT_NEAR(spectrum["mean"][i], sum / 3, 1e-12 * sum);
    const double limit = std::exp(m + k * std::sqrt(variance));
    EXPECT_NEAR(spectrum["p95_50"][i], limit, 1e-6 * limit);
    // The shocks differ by their heights, up to where their samples differ too.
    if (json["frequency"][i] > 500.0) continue;
    EXPECT_NEAR(spectrum["maximax_3"][i].get<double>() / spectrum["maximax_1"][i].get<double>(),
                70.0 / 40.0, 1e-9);
    EXPECT_NEAR(spectrum["maximax_2"][i].get<double>() / spectrum["maximax_1"][i].get<double>(),
                50.0 / 40.0, 0.01);
  }
  const std::string svg = ReadText(folder / "e.svg");
  for (const char* const name : {">records<", ">envelope<", ">mean<", ">P95/50<"}) {
    EXPECT_NE(svg.find(name), std::string::npos) << name;
  }
}

TEST(SrsEnvelope, OfTwoRecordsHasNoToleranceLimitAndSaysWhy) {
  const TempFolder folder;
  std::vector<std::string> two = Shocks(folder);
  two.pop_back();
  const auto result =
      RunCommand(With(two, {"--envelope", "--q", "5,10", "--csv", folder / "e.csv", "--json",
                            folder / "e.json", "--plot", folder / "e.svg"}));
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_NE(result.out.find("\nP95/50 takes at least 3 records, not 2\n"), std::string::npos)
      << result.out;
  EXPECT_TRUE(ReadText(folder / "e.csv")
                  .starts_with("frequency,envelope_q5,mean_q5,maximax_1_q5,maximax_2_q5,"
                               "envelope_q10,mean_q10,maximax_1_q10,maximax_2_q10\n"));
  const Json json = Json::parse(ReadText(folder / "e.json"));
  ASSERT_EQ(json["spectra"].size(), 2U);
  EXPECT_EQ(json["spectra"][1]["reason"], "P95/50 takes at least 3 records, not 2");
  // Up to a tenth of the lower sampling frequency.
  EXPECT_NEAR(json["frequency"].back(), 5 * std::exp2(std::floor(std::log2(200) * 12) / 12), 1e-9);
  const std::string svg = ReadText(folder / "e.svg");
  EXPECT_NE(svg.find(">Q 5<"), std::string::npos);
  EXPECT_EQ(svg.find(">P95/50<"), std::string::npos);
}

TEST(SrsEnvelope, TakesTheChannelsOfAFileForRecords) {
  const TempFolder folder;
  std::ostringstream text;
  text << "t [s],x [g],y [g],z [g]\n";
  for (int i = 0; i < 500; ++i) {
    const double v = i > 100 && i < 120 ? 1.0 : 0.0;
    text << i / 1000.0 << "," << v << "," << 3 * v << "," << 2 * v << "\n";
  }
  WriteText(folder / "m.csv", text.str());
  const auto result = RunCommand(
      {"srs", folder / "m.csv", "--channel", "x,y,z", "--envelope", "--json", folder / "e.json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const Json json = Json::parse(ReadText(folder / "e.json"));
  EXPECT_EQ(json["records"][2]["channel"], "z");
  EXPECT_EQ(json["spectra"][0]["envelope"], json["spectra"][0]["maximax_2"]);
}

TEST(SrsEnvelope, IsRefusedWhereTheRecordsDoNotGoTogether) {
  const TempFolder folder;
  std::vector<std::string> files = Shocks(folder);
  ExpectRefused(folder, files, "1.csv: is a second record: several have an --envelope");
  std::string text = ReadText(files[2]);
  WriteText(files[2], text.replace(text.find("[g]"), 3, "[V]"));
  files.push_back("--envelope");
  ExpectRefused(folder, files, "2.csv: its unit V does not go with that of the others, g");
  files.push_back("--requirement");
  files.push_back("r.json");
  ExpectRefused(folder, files, "--envelope");
}

TEST(ToleranceFactor, IsThatOfTheNoncentralTDistribution) {
  // By scipy.stats.nct.ppf(confidence, n - 1, norm.ppf(share) sqrt(n)) / sqrt(n).
  struct Known {
    std::size_t n;
    double p95c50, p95c95, p99c90;
  };
  for (const Known& known :
       {Known{3, 1.9384162734038637, 7.655900133153338, 7.340439039067818},
        Known{5, 1.7792827160894054, 4.202680741256176, 4.6659821960835535},
        Known{10, 1.7016317627944255, 2.9109634130781665, 3.5316587507606014},
        Known{30, 1.661974042962, 2.2198375320350565, 2.883724685463042},
        Known{100, 1.6498224653636864, 1.9265388505123142, 2.600902813117179}}) {
    EXPECT_NEAR(assess::ToleranceFactor(known.n, 0.95, 0.5), known.p95c50, 1e-6) << known.n;
    EXPECT_NEAR(assess::ToleranceFactor(known.n, 0.95, 0.95), known.p95c95, 1e-6) << known.n;
    EXPECT_NEAR(assess::ToleranceFactor(known.n, 0.99, 0.9), known.p99c90, 1e-6) << known.n;
  }
  EXPECT_NEAR(assess::ToleranceFactor(2, 0.95, 0.5), 2.3387267457785166, 1e-6);
  EXPECT_NEAR(assess::ToleranceFactor(1000, 0.95, 0.5), 1.6453443298836044, 1e-6);
  EXPECT_TRUE(std::isnan(assess::ToleranceFactor(1, 0.95, 0.5)));
  EXPECT_TRUE(std::isnan(assess::ToleranceFactor(3, 1.0, 0.5)));
  EXPECT_TRUE(std::isnan(assess::ToleranceFactor(3, 0.95, 0.0)));
}

TEST(Ensemble, OfASilentRecordHasNoToleranceLimit) {
  const auto spectrum = [](double level) {
    return assess::Spectrum{
        {{10.0, {level, 0.0}, {}}}, "absolute acceleration", 0.05, 2.0, "g", true};
  };
  const auto of = assess::EnsembleOf({spectrum(1.0), spectrum(0.0), spectrum(3.0)});
  EXPECT_EQ(of.envelope, std::vector<double>{6.0});
  EXPECT_DOUBLE_EQ(of.mean.at(0), 8.0 / 3.0);
  EXPECT_TRUE(of.p9550.empty());
  EXPECT_EQ(of.reason, "P95/50 is of logarithms, and record 2 has a response of 0 at 10 Hz");
}

}  // namespace
}  // namespace qarv::test
