// qarv-wave srs: several quality factors in one run.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

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

}  // namespace
}  // namespace qarv::test
