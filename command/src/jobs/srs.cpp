// qarv-wave srs: the shock response spectrum of a waveform.
#include "jobs/srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <optional>
#include <vector>

#include "analysis/srs.h"
#include "assess/motion.h"
#include "assess/requirement.h"
#include "assess/spectrum.h"
#include "assess/synthesis.h"
#include "assessment.h"
#include "command_error.h"
#include "definition/definition.h"
#include "diagnostics.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "pictures/gnuplot.h"
#include "pictures/spectrum_plot.h"
#include "progress.h"
#include "synthesis/comparison.h"
#include "text/text.h"

namespace qarv::command {

using assess::Spectrum;
using text::Plain;

using analysis::SrsPoint;

namespace {

void WriteSpectrumCsv(const Spectrum& spectrum, const std::string& file) {
  const double factor = spectrum.factor;
  fmt::memory_buffer text;
  const auto out = std::back_inserter(text);
  fmt::format_to(out,
                 "frequency,maximax,positive,negative,primary_positive,primary_negative,"
                 "residual_positive,residual_negative\n");
  for (const SrsPoint& p : spectrum.points) {
    const analysis::SrsExtremes total = p.Total();
    fmt::format_to(out, "{}", p.frequency);
    for (const double v : {total.Maximax(), total.positive, total.negative, p.primary.positive,
                           p.primary.negative, p.residual.positive, p.residual.negative}) {
      fmt::format_to(out, ",{}", Plain(factor * v));
    }
    text.push_back('\n');
  }
  WriteFile(file, {text.data(), text.size()});
}

/// What is said of a spectrum.
std::string Summary(const Spectrum& spectrum) {
  const auto& points = spectrum.points;
  const auto largest =
      std::max_element(points.begin(), points.end(), [](const SrsPoint& a, const SrsPoint& b) {
        return a.Total().Maximax() < b.Total().Maximax();
      });
  const std::string unit = spectrum.unit.empty() ? "" : " " + spectrum.unit;
  std::string text = fmt::format("response:  {}\n", spectrum.response);
  text += fmt::format("damping:   {:.4g} (Q {:.4g})\n", spectrum.zeta, 0.5 / spectrum.zeta);
  text += fmt::format("lines:     {} from {:.6g} to {:.6g} Hz\n", points.size(),
                      points.front().frequency, points.back().frequency);
  text +=
      fmt::format("largest:   {:.6g}{} at {:.6g} Hz\n",
                  Plain(spectrum.factor * largest->Total().Maximax()), unit, largest->frequency);
  return text;
}

/// @param[in] input  that the waveform stands for
Spectrum SpectrumOf(const std::string& input, const InputWave& wave,
                    const assess::SpectrumSettings& settings) {
  std::optional<Progress> progress;
  return Assessed(input, [&] {
    return assess::SpectrumOf({definition::SpanOf(wave.samples), wave.fsamp, wave.unit, wave.begin},
                              settings, [&](std::size_t done, std::size_t all) {
                                if (!progress) progress.emplace(all);
                                progress->Show(done, "lines of the spectrum");
                              });
  });
}

/// The settings of a requirement's lines.
assess::SpectrumSettings SettingsOf(const assess::Requirement& requirement) {
  const synthesis::SrsRequirement& required = requirement.spectrum;
  assess::SpectrumSettings settings;
  settings.damping = required.zeta;
  settings.from = required.points.front().frequency;
  settings.to = required.points.back().frequency;
  settings.perOctave = required.perOctave;
  return settings;
}

/// The waveform in the unit of the requirement.
std::vector<double> SamplesIn(const std::string& unit, const InputWave& wave,
                              const std::string& input) {
  std::vector<double> samples(wave.samples.begin(), wave.samples.end());
  if (wave.unit.empty() || wave.unit == unit) return samples;
  const assess::MotionUnits from = assess::MotionUnitsOf(wave.unit);
  const assess::MotionUnits to = assess::MotionUnitsOf(unit);
  if (!from.known || !to.known) {
    Fail(input, fmt::format("its unit {} does not go with the requirement's, {}", wave.unit, unit));
  }
  for (double& v : samples) v *= from.velocity / to.velocity;
  return samples;
}

synthesis::SrsComparison Compare(const assess::Requirement& requirement, const InputWave& wave,
                                 const std::string& input) {
  const auto comparison = synthesis::CompareSrs(
      requirement.spectrum, SamplesIn(requirement.unit, wave, input), wave.fsamp);
  if (comparison.onGrid.lines == 0) {
    Fail(input, fmt::format("its sampling frequency of {:g} Hz is too low for {:g} Hz", wave.fsamp,
                            requirement.spectrum.points.back().frequency));
  }
  return comparison;
}

}  // namespace

std::optional<Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name) {
  const InputWave wave = InputWaveOf(def);
  const auto isNumber = [](double v) { return std::isfinite(v); };
  if (!std::all_of(wave.samples.begin(), wave.samples.end(), isNumber)) return {};
  return SpectrumOf(name, wave, {});
}

ExitCode Srs(const SrsOptions& options) {
  std::optional<assess::Requirement> requirement;
  if (!options.requirement.empty()) requirement = LoadRequirement(options.requirement);
  std::vector<InputWave> waves = LoadInputWaves(options.input, options.choice);
  if (waves.size() > 1)
    Fail("--channel", "names several: a spectrum is that of one, or of their --resultant");
  InputWave& wave = waves.front();
  TakeSteps(ConditioningOf(options.steps), options.input, &wave);
  assess::SpectrumSettings settings = requirement ? SettingsOf(*requirement) : options.settings;
  if (options.tripartite) settings.response = "pseudo-velocity";
  const Spectrum spectrum = SpectrumOf(options.input, wave, settings);
  OutputFiles files;
  if (!options.csv.empty()) WriteSpectrumCsv(spectrum, files.Reserve(options.csv));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string name = std::filesystem::path(options.input).stem().string();
    PlotSpectrum(spectrum, wave.title.empty() ? name : name + ": " + wave.title,
                 options.tripartite ? Axes::FourWay : Axes::Plain, format,
                 files.Reserve(options.plot));
  }
  if (assess::IsCoarse(spectrum, wave.fsamp)) {
    Warn(options.input, assess::CoarseText(wave.fsamp));
  }
  std::string text = Summary(spectrum);
  for (const std::string& remark : wave.remarks) text += fmt::format("record:    {}\n", remark);
  bool meets = true;
  if (requirement) {
    const synthesis::SrsComparison comparison = Compare(*requirement, wave, options.input);
    meets = comparison.Meets(requirement->spectrum);
    text += assess::AsText(assess::VerdictEntries(*requirement, comparison));
  }
  files.Commit(text);
  return meets ? kDone : kRefused;
}

}  // namespace qarv::command
