// Draws the table of docs/synthesis.md: what a synthesis reaches for required spectra.
//
//   synthesis_table [--shape sweep|shock|random] [--method N] [--quick] [--minimize ...]
//   REQ.json...
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "assess/motion.h"
#include "assess/requirement.h"
#include "assess/synthesis.h"

namespace {

using namespace qarv;

struct Row {
  double onGrid, between, seconds;
};

double Quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0.0;
  std::sort(values.begin(), values.end());
  const auto at = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5);
  return values[at];
}

std::string TextOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Row Draw(const std::string& file, const synthesis::SrsSettings& chosen, bool timed, bool both) {
  assess::Requirement requirement = assess::RequirementFromJson(TextOf(file));
  if (both) requirement.spectrum.bothPolarities = true;
  synthesis::SrsSettings settings = assess::SettingsFor(requirement);
  settings.method = chosen.method;
  settings.shape = chosen.shape;
  settings.aim = chosen.aim;
  settings.within = chosen.within;
  settings.quick = chosen.quick;
  settings.seed = chosen.seed;
  if (settings.method != com_def::comdefconst::SYNC_WAVE_WAVELET) settings.limits = {};
  const std::clock_t start = std::clock();
  const synthesis::SrsResult r = synthesis::SynthesizeSrs(requirement.spectrum, settings);
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  const synthesis::SrsComparison& c = r.comparison;
  const assess::MotionUnits units = assess::MotionUnitsOf(requirement.unit);
  std::string verdict = assess::FailureText(requirement, settings, r);
  if (verdict.empty()) verdict = r.sweeps ? "met, sweep-like" : "met";
  fmt::print(
      "| {} | {:.2f} / {:.2f} ({:.2f}) | {:.1f} | {:.2f} | {:.2f} | {} | {:.1f} / {:.1f} | {:.1f} "
      "/ {:.1f} |",
      std::filesystem::path(file).stem().string(), std::fabs(c.onGrid.worst),
      std::fabs(c.between.worst), c.between.rms, r.peak, r.motion.peakVelocity * units.velocity,
      r.motion.peakDisplacement * units.displacement, r.definition.GetElmNum(), c.polarity,
      c.polarityMedian, 1e3 * c.durations.Te, 1e3 * c.durations.TE);
  if (timed) fmt::print(" {:.2f} |", seconds);
  fmt::print(" {} |\n", verdict);
  std::fflush(stdout);
  return {std::fabs(c.onGrid.worst), std::fabs(c.between.worst), seconds};
}

}  // namespace

int main(int argc, char** argv) {
  using enum synthesis::SrsAim;
  const std::map<std::string, synthesis::SrsShape> shapes{{"sweep", synthesis::SrsShape::Sweep},
                                                          {"shock", synthesis::SrsShape::Shock},
                                                          {"random", synthesis::SrsShape::Random}};
  const std::map<std::string, synthesis::SrsAim> aims{{"acceleration", LeastAcceleration},
                                                      {"velocity", LeastVelocity},
                                                      {"displacement", LeastDisplacement}};
  synthesis::SrsSettings settings;
  std::string shape = "shock";
  bool timed = false;
  bool both = false;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto next = [&] { return std::string(i + 1 < argc ? argv[++i] : ""); };
    if (argument == "--shape") {
      shape = next();
      settings.shape = shapes.at(shape);
    } else if (argument == "--minimize") {
      settings.aim = aims.at(next());
    } else if (argument == "--within") {
      settings.within = std::stod(next());
    } else if (argument == "--seed") {
      settings.seed = std::stoull(next());
    } else if (argument == "--method") {
      settings.method = static_cast<com_def::comdefconst::SYNC_WAVE_TYPE>(std::stoi(next()));
    } else if (argument == "--quick") {
      settings.quick = true;
    } else if (argument == "--both") {
      both = true;
    } else if (argument == "--times") {
      timed = true;
    } else {
      files.push_back(argument);
    }
  }
  fmt::print(
      "| requirement, {} | on / between (rms) dB | peak g | m/s | mm | n | sides worst / median dB "
      "| "
      "Te / TE ms |{} result |\n",
      shape, timed ? " CPU s |" : "");
  fmt::print("|---|---|---|---|---|---|---|---|{}---|\n", timed ? "---|" : "");
  std::vector<double> onGrid, between, seconds;
  for (const std::string& file : files) {
    const Row row = Draw(file, settings, timed, both);
    onGrid.push_back(row.onGrid);
    between.push_back(row.between);
    seconds.push_back(row.seconds);
  }
  fmt::print(
      "\nMedian / 90 % / worst: on the lines {:.2f} / {:.2f} / {:.2f} dB, between {:.2f} / {:.2f} "
      "/ {:.2f} dB",
      Quantile(onGrid, 0.5), Quantile(onGrid, 0.9), Quantile(onGrid, 1.0), Quantile(between, 0.5),
      Quantile(between, 0.9), Quantile(between, 1.0));
  if (timed) {
    fmt::print(", CPU {:.2f} / {:.2f} / {:.2f} s", Quantile(seconds, 0.5), Quantile(seconds, 0.9),
               Quantile(seconds, 1.0));
  }
  fmt::print(".\n");
}
