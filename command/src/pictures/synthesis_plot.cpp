// The picture of a synthesis, drawn by gnuplot.
#include "pictures/synthesis_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <vector>

#include "analysis/srs.h"
#include "assess/motion.h"
#include "definition/definition.h"

namespace qarv::command {

namespace {

/// The required spectrum, its tolerance and the achieved one, line by line.
std::string SpectrumBlock(const assess::Requirement& requirement, const wave_def::CWaveDef& def) {
  constexpr double kDrawn = 48.0;  // lines per octave
  const auto lines = synthesis::RequiredLines(requirement.spectrum,
                                              std::max(kDrawn, requirement.spectrum.perOctave));
  std::vector<double> frequencies;
  for (const synthesis::SrsLine& line : lines) frequencies.push_back(line.frequency);
  const auto points = analysis::CalcSrs(
      definition::SpanOf(def.GetWave()), definition::SampleRateOf(def), frequencies,
      requirement.spectrum.zeta, analysis::SrsResponse::AbsoluteAcceleration);
  std::string block = "$srs << EOD\n";
  for (std::size_t i = 0; i < points.size(); ++i) {
    const synthesis::SrsLine& line = lines[i];
    block += fmt::format("{} {} {} {} {}\n", line.frequency, line.level,
                         line.level * synthesis::RatioOf(line.lower),
                         line.level * synthesis::RatioOf(line.upper), points[i].Total().Maximax());
  }
  return block + "EOD\n";
}

/// One diagram over time, below the ones before.
struct MotionPanel {
  const char* block;
  std::string label;
  std::span<const double> samples;
  double limit;  // 0 for none
};

void AppendBlock(const MotionPanel& panel, double fsamp, std::string* script) {
  constexpr std::size_t kMost = 4000;  // stretches that a picture can show
  const std::size_t stretch = std::max<std::size_t>(1, panel.samples.size() / kMost);
  *script += fmt::format("{} << EOD\n", panel.block);
  for (std::size_t i = 0; i < panel.samples.size(); i += stretch) {
    const auto part = panel.samples.subspan(i, std::min(stretch, panel.samples.size() - i));
    const auto [low, high] = std::minmax_element(part.begin(), part.end());
    const double t = static_cast<double>(i) / fsamp;
    *script += fmt::format("{} {}\n", t, *low);
    if (stretch > 1) *script += fmt::format("{} {}\n", t, *high);
  }
  *script += "EOD\n";
}

/// 1, 2 or 5 times a power of ten, so that three to five of them cover the range.
double TickStep(std::span<const double> samples) {
  if (samples.empty()) return 1.0;
  const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
  const double step = (*high - *low) / 3.0;
  if (!(step > 0.0 && std::isfinite(step))) return 1.0;
  const double power = std::pow(10.0, std::floor(std::log10(step)));
  const double digit = step / power;
  return power * (digit >= 5.0 ? 5.0 : digit >= 2.0 ? 2.0 : 1.0);
}

std::string PanelScript(const MotionPanel& panel, std::size_t index, bool last) {
  const double top = 0.50 - 0.145 * static_cast<double>(index);
  std::string out =
      fmt::format("set tmargin at screen {}\nset bmargin at screen {}\n", top - 0.02, top - 0.135);
  out += fmt::format("set ylabel {}\nset xlabel {}\n", Quoted(panel.label),
                     Quoted(last ? "Time [s]" : ""));
  out +=
      fmt::format("set ytics {}\nset format x \"{}\"\n", TickStep(panel.samples), last ? "%g" : "");
  out += fmt::format("plot {} with lines linecolor rgb \"#1f3f7c\" notitle", panel.block);
  if (panel.limit != 0.0) {
    for (const double limit : {panel.limit, -panel.limit}) {
      out += fmt::format(", {} with lines linecolor rgb \"#c0392b\" dashtype (9,5) notitle", limit);
    }
  }
  return out + "\n";
}

}  // namespace

void PlotSynthesis(const assess::Requirement& requirement, const synthesis::MotionLimits& limits,
                   const wave_def::CWaveDef& def, const std::string& title, PlotFormat format,
                   const std::string& file) {
  const assess::Kinematics k = assess::KinematicsOf(def);
  const assess::MotionUnits units = assess::MotionUnitsOf(requirement.unit);
  const double fsamp = definition::SampleRateOf(def);
  const std::vector<MotionPanel> panels{
      {"$wave", fmt::format("[{}]", requirement.unit), definition::SpanOf(def.GetWave()),
       limits.acceleration},
      {"$velocity", fmt::format("[{}]", k.velocityUnit), definition::SpanOf(k.velocity),
       limits.velocity * units.velocity},
      {"$displacement", fmt::format("[{}]", k.displacementUnit), definition::SpanOf(k.displacement),
       limits.displacement * units.displacement}};
  std::string script = Terminal(format, 1000, 1100, file) + SpectrumBlock(requirement, def);
  for (const MotionPanel& panel : panels) AppendBlock(panel, fsamp, &script);
  const auto& points = requirement.spectrum.points;
  script += fmt::format(
      "set multiplot\nset lmargin at screen 0.1\nset rmargin at screen 0.97\nset title {}\n"
      "set tmargin at screen 0.94\nset bmargin at screen 0.59\nset logscale xy\n"
      "set xrange [{}:{}]\nset xlabel \"Natural frequency [Hz]\"\nset ylabel {}\n"
      "set format \"%g\"\nset grid xtics ytics mxtics mytics linecolor rgb \"#d0d0d0\"\n"
      "set key bottom right\n",
      Quoted(title), points.front().frequency, points.back().frequency,
      Quoted(fmt::format("Spectrum, Q {:.4g} [{}]", 0.5 / requirement.spectrum.zeta,
                         requirement.unit)));
  script +=
      "plot $srs using 1:5 with lines linecolor rgb \"#8fb4e6\" linewidth 5 title \"achieved\","
      " $srs using 1:2 with lines linecolor rgb \"#202020\" title \"required\","
      " $srs using 1:3 with lines linecolor rgb \"#c0392b\" dashtype (9,5) title \"tolerance\","
      " $srs using 1:4 with lines linecolor rgb \"#c0392b\" dashtype (9,5) notitle\n"
      "unset title\nunset logscale\nunset key\nset autoscale\n";
  const double duration = static_cast<double>(def.GetNsamp()) / fsamp;
  script += fmt::format("set xrange [0:{}]\n", duration);
  for (std::size_t i = 0; i < panels.size(); ++i) {
    script += PanelScript(panels[i], i, i + 1 == panels.size());
  }
  RunGnuplot(script, file);
}

}  // namespace qarv::command
