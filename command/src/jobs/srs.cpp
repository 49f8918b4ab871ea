// qarv-wave srs: the shock response spectrum of a waveform.
#include "jobs/srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <vector>

#include "assess/motion.h"
#include "assess/requirement.h"
#include "assess/spectrum.h"
#include "assess/synthesis.h"
#include "assess/upsampling.h"
#include "assessment.h"
#include "command_error.h"
#include "definition/definition.h"
#include "diagnostics.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "jobs/spectra.h"
#include "pictures/gnuplot.h"
#include "pictures/spectrum_plot.h"
#include "progress.h"
#include "synthesis/comparison.h"

namespace qarv::command {

using assess::Spectrum;

namespace {

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

bool IsNear(double a, double b) { return std::fabs(a / b - 1.0) < 1e-9; }

/// The settings of each spectrum: one for each quality factor that is named.
std::vector<assess::SpectrumSettings> SettingsOf(const SrsOptions& options,
                                                 const assess::Requirement* requirement) {
  assess::SpectrumSettings usual = requirement ? SettingsOf(*requirement) : options.settings;
  if (options.tripartite) usual.response = "pseudo-velocity";
  if (options.q.empty()) return {usual};
  std::vector<assess::SpectrumSettings> settings;
  const auto isNamed = [&](double q) {
    return std::any_of(settings.begin(), settings.end(),
                       [&](const auto& other) { return IsNear(0.5 / *other.damping, q); });
  };
  for (const double q : NumbersOf(options.q, "--q")) {
    if (!(q > 0.5)) Fail("--q", "is not above 0.5");
    if (isNamed(q)) Fail("--q", fmt::format("names {:g} twice", q));
    settings.push_back(usual);
    settings.back().damping = 0.5 / q;
  }
  if (requirement != nullptr && !isNamed(0.5 / requirement->spectrum.zeta)) {
    Fail("--q", fmt::format("'{}' does not name the requirement's Q, {}", options.q,
                            QText(requirement->spectrum.zeta)));
  }
  return settings;
}

/// Brings the waveform into the unit of the requirement.
void ConvertTo(const std::string& unit, const std::string& input, InputWave* wave) {
  const std::string own = wave->unit;
  wave->unit = unit;
  if (own.empty() || own == unit) return;
  const assess::MotionUnits from = assess::MotionUnitsOf(own);
  const assess::MotionUnits to = assess::MotionUnitsOf(unit);
  if (!from.known || !to.known) {
    Fail(input, fmt::format("its unit {} does not go with the requirement's, {}", own, unit));
  }
  for (double& v : wave->samples) v *= from.velocity / to.velocity;
  wave->remarks.push_back(fmt::format("converted from {} to {}", own, unit));
}

/// Brings the waveform to so many samples that straight lines between them stand for it up to the
/// highest line.  A definition's too: what comes out of a converter is band-limited between the
/// samples, as a record of it is.
/// @return samples for one of the waveform
int Upsample(double highest, const std::string& input, InputWave* wave) {
  const auto [wanted, factor] =
      assess::UpsamplingFor(wave->samples.GetSize(), wave->fsamp, highest);
  const std::string enough =
      fmt::format("{:g} samples per cycle at {:g} Hz", assess::kSamplesPerCycle, highest);
  if (factor > 1) {
    const assess::OwnedRecord finer = Assessed(input, [&] {
      return assess::Upsampled(
          {definition::SpanOf(wave->samples), wave->fsamp, wave->unit, wave->begin}, factor);
    });
    wave->samples.SetData(finer.samples.size(), finer.samples.data(), false);
    wave->fsamp = finer.fsamp;
    wave->begin = finer.begin;
    wave->remarks.push_back(fmt::format("upsampled {} times to {:g} Hz{}", factor, finer.fsamp,
                                        factor == wanted ? ": " + enough : ""));
  }
  if (factor < wanted) {
    wave->remarks.push_back(fmt::format("{} times would give {}; a record of {} samples has {}",
                                        wanted, enough, assess::kMostUpsampled, factor));
  }
  return factor;
}

synthesis::SrsComparison Compare(const assess::Requirement& requirement, const InputWave& wave,
                                 const std::string& input) {
  const auto comparison =
      synthesis::CompareSrs(requirement.spectrum, definition::SpanOf(wave.samples), wave.fsamp);
  if (comparison.onGrid.lines == 0) {
    Fail(input, fmt::format("its sampling frequency of {:g} Hz is too low for {:g} Hz", wave.fsamp,
                            requirement.spectrum.points.back().frequency));
  }
  return comparison;
}

/// The spectra as a picture: of one all its parts, unless it stands beside a requirement.
void Draw(const SrsOptions& options, const assess::Requirement* requirement, const SpectraRun& run,
          const std::string& waveTitle, OutputFiles* files) {
  const PlotFormat format = PlotFormatOf(options.plot);
  const std::string name = std::filesystem::path(options.input).stem().string();
  const std::string title = waveTitle.empty() ? name : name + ": " + waveTitle;
  const Axes axes = options.tripartite ? Axes::FourWay : Axes::Plain;
  const bool one = run.spectra.size() == 1 && requirement == nullptr;
  SpectrumPicture picture =
      one ? PictureOf(run.spectra.front(), title, axes) : PictureOf(run.spectra, title, axes);
  if (requirement != nullptr) AddRequirement(requirement->spectrum, &picture);
  PlotCurves(picture, format, files->Reserve(options.plot));
}

}  // namespace

std::optional<Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name) {
  const InputWave wave = InputWaveOf(def);
  const auto isNumber = [](double v) { return std::isfinite(v); };
  if (!std::all_of(wave.samples.begin(), wave.samples.end(), isNumber)) return {};
  return SpectrumOf(name, wave, {});
}

ExitCode Srs(const SrsOptions& options) {
  std::optional<assess::Requirement> loaded;
  if (!options.requirement.empty()) loaded = LoadRequirement(options.requirement);
  const assess::Requirement* const requirement = loaded ? &*loaded : nullptr;
  std::vector<assess::SpectrumSettings> settings = SettingsOf(options, requirement);
  std::vector<InputWave> waves = LoadInputWaves(options.input, options.choice);
  if (waves.size() > 1)
    Fail("--channel", "names several: a spectrum is that of one, or of their --resultant");
  InputWave& wave = waves.front();
  TakeSteps(ConditioningOf(options.steps), options.input, &wave);
  if (requirement != nullptr) ConvertTo(requirement->unit, options.input, &wave);
  // The lines are those of the waveform as it is.
  const double highest = settings.front().to.value_or(wave.fsamp / assess::kSamplesPerCycle);
  for (assess::SpectrumSettings& one : settings) one.to = highest;
  SpectraRun run;
  if (!options.noUpsample) run.upsampling = Upsample(highest, options.input, &wave);
  for (const assess::SpectrumSettings& one : settings) {
    run.spectra.push_back(SpectrumOf(options.input, wave, one));
  }
  run.remarks = wave.remarks;
  if (assess::IsCoarse(run.spectra.front(), wave.fsamp)) {
    run.warnings.push_back(assess::CoarseText(wave.fsamp));
  }
  bool meets = true;
  if (requirement != nullptr) {
    const synthesis::SrsComparison comparison = Compare(*requirement, wave, options.input);
    meets = comparison.Meets(requirement->spectrum);
    run.verdict = assess::VerdictEntries(*requirement, comparison);
  }
  OutputFiles files;
  if (!options.csv.empty()) WriteFile(files.Reserve(options.csv), CsvOf(run));
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), JsonOf(run));
  if (!options.plot.empty()) Draw(options, requirement, run, wave.title, &files);
  for (const std::string& warning : run.warnings) Warn(options.input, warning);
  files.Commit(TextOf(run));
  return meets ? kDone : kRefused;
}

}  // namespace qarv::command
