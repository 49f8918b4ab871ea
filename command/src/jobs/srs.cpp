// qarv-wave srs: the shock response spectrum of a waveform.
#include "jobs/srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <vector>

#include "assess/requirement.h"
#include "assess/spectrum.h"
#include "assess/synthesis.h"
#include "command_error.h"
#include "diagnostics.h"
#include "files/input_wave.h"
#include "files/output_files.h"
#include "files/requirement_file.h"
#include "jobs/envelope.h"
#include "jobs/spectra.h"
#include "jobs/spectrum_of.h"
#include "pictures/gnuplot.h"
#include "pictures/spectrum_plot.h"
#include "synthesis/comparison.h"

namespace qarv::command {

using assess::Spectrum;

namespace {

bool IsNear(double a, double b) { return std::fabs(a / b - 1.0) < 1e-9; }

/// The settings of each spectrum: one for each quality factor that is named.
std::vector<assess::SpectrumSettings> SettingsOf(const SrsOptions& options,
                                                 const assess::Requirement* requirement) {
  assess::SpectrumSettings usual = requirement ? RequiredSettings(*requirement) : options.settings;
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

/// The spectra as a picture: of one all its parts, unless it stands beside a requirement.
void Draw(const SrsOptions& options, const assess::Requirement* requirement, const SpectraRun& run,
          const std::string& waveTitle, OutputFiles* files) {
  const PlotFormat format = PlotFormatOf(options.plot);
  const std::string name = std::filesystem::path(options.inputs.front()).stem().string();
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
  if (options.envelope) return Envelope(options, settings);
  const std::string& input = options.inputs.front();
  if (options.inputs.size() > 1)
    Fail(options.inputs[1], "is a second record: several have an --envelope");
  std::vector<InputWave> waves = LoadInputWaves(input, options.choice);
  if (waves.size() > 1)
    Fail("--channel",
         "names several: a spectrum is that of one, of their --resultant or their --envelope");
  InputWave& wave = waves.front();
  TakeSteps(ConditioningOf(options.steps), input, &wave);
  if (requirement != nullptr) ConvertTo(requirement->unit, "the requirement's", input, &wave);
  // The lines are those of the waveform as it is.
  const double highest = settings.front().to.value_or(wave.fsamp / assess::kSamplesPerCycle);
  for (assess::SpectrumSettings& one : settings) one.to = highest;
  SpectraRun run;
  if (!options.noUpsample) run.upsampling = Upsample(highest, input, &wave);
  for (const assess::SpectrumSettings& one : settings) {
    run.spectra.push_back(SpectrumOf(input, wave, one));
  }
  run.remarks = wave.remarks;
  if (assess::IsCoarse(run.spectra.front(), wave.fsamp)) {
    run.warnings.push_back(assess::CoarseText(wave.fsamp));
  }
  bool meets = true;
  if (requirement != nullptr) {
    const synthesis::SrsComparison comparison = Compare(*requirement, wave, options.inputs.front());
    meets = comparison.Meets(requirement->spectrum);
    run.verdict = assess::VerdictEntries(*requirement, comparison);
  }
  OutputFiles files;
  if (!options.csv.empty()) WriteFile(files.Reserve(options.csv), CsvOf(run));
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), JsonOf(run));
  if (!options.plot.empty()) Draw(options, requirement, run, wave.title, &files);
  for (const std::string& warning : run.warnings) Warn(input, warning);
  files.Commit(TextOf(run));
  return meets ? kDone : kRefused;
}

}  // namespace qarv::command
