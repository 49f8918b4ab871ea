// qarv-wave srs: the shock response spectrum of a waveform.
#include "srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <span>
#include <vector>

#include "analysis/srs.h"
#include "command_error.h"
#include "diagnostics.h"
#include "gnuplot.h"
#include "kinematics.h"
#include "output_files.h"
#include "progress.h"
#include "text/text.h"

namespace qarv::command {

using text::Plain;

using analysis::SrsPoint;
using analysis::SrsResponse;

namespace {

// Below it an oscillator feels that its input is made of straight lines between samples.
constexpr double kSamplesPerCycle = 10.0;

/// A response by name.
struct Response {
  const char* name;
  SrsResponse response;
  const char* title;
};

constexpr Response kPseudoVelocity{"pseudo-velocity", SrsResponse::PseudoVelocity,
                                   "pseudo velocity"};
constexpr std::array<Response, 3> kResponses{{
    {"acceleration", SrsResponse::AbsoluteAcceleration, "absolute acceleration"},
    {"displacement", SrsResponse::RelativeDisplacement, "relative displacement"},
    kPseudoVelocity,
}};

}  // namespace

std::string ResponseNames(const std::string& separator) {
  std::string names;
  for (const Response& response : kResponses) {
    if (!names.empty()) names += separator;
    names += response.name;
  }
  return names;
}

namespace {

/// What a run works with, checked.
struct Task {
  const Response* response;
  std::vector<double> frequencies;
  Spectrum spectrum;  // without its points
};

Task Prepare(const SrsOptions& options, const InputWave& wave) {
  Task task{};
  Spectrum& spectrum = task.spectrum;
  for (const Response& response : kResponses) {
    if (options.response == response.name) task.response = &response;
  }
  if (options.tripartite) task.response = &kPseudoVelocity;
  if (task.response == nullptr) {
    Fail("--response", "is none of " + ResponseNames(", "));
  }
  if (!(options.q > 0.5)) Fail("--q", "is not above 0.5");
  spectrum.zeta = options.damping.value_or(0.5 / options.q);
  if (!(spectrum.zeta >= 0.0 && spectrum.zeta < 1.0)) Fail("--damping", "is not within 0 to 1");

  const double highest = 0.499 * wave.fsamp;
  const double to = options.to.value_or(wave.fsamp / kSamplesPerCycle);
  const double from = options.from.value_or(std::min(5.0, to / 10.0));
  if (!(from > 0.0 && from <= to)) Fail("--from, --to", "are not 0 < from <= to");
  if (!(to <= highest)) {
    Fail("--to", fmt::format("{:g} Hz is not below half the sampling frequency of {:g} Hz", to,
                             wave.fsamp));
  }
  double perOctave = options.perOctave;
  if (options.points) {
    if (*options.points < 1 || *options.points > 100000)
      Fail("--points", "is not within 1 to 100000");
    perOctave =
        *options.points > 1 && to > from ? (*options.points - 1) / std::log2(to / from) : 1.0;
  }
  task.frequencies = options.points == 1 ? std::vector<double>{from}
                                         : analysis::SrsFrequencies(from, to, perOctave);
  if (task.frequencies.empty()) Fail("--per-octave", "gives no frequencies");

  spectrum.response = task.response->title;
  const MotionUnits units = MotionUnitsOf(wave.unit);
  switch (task.response->response) {
    case SrsResponse::AbsoluteAcceleration:
      spectrum.factor = 1.0;
      spectrum.unit = wave.unit;
      break;
    case SrsResponse::RelativeDisplacement:
      spectrum.factor = units.displacement;
      spectrum.unit = units.displacementUnit;
      break;
    case SrsResponse::PseudoVelocity:
      spectrum.factor = units.velocity;
      spectrum.unit = units.velocityUnit;
      break;
  }
  spectrum.known = units.known;
  return task;
}

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

/// The samples up to the last one that is not 0: behind it the response is residual.
std::span<const double> ShockOf(const InputWave& wave) {
  std::span<const double> shock(wave.samples.begin(), wave.samples.end());
  while (shock.size() > 1 && shock.back() == 0.0) shock = shock.first(shock.size() - 1);
  return shock;
}

/// The lines of the spectrum, in pieces between which it can be said how far it has come.
std::vector<SrsPoint> Calculate(const Task& task, const InputWave& wave) {
  constexpr std::size_t kPiece = 64;  // [lines]
  const std::span<const double> frequencies(task.frequencies);
  Progress progress(frequencies.size());
  std::vector<SrsPoint> points;
  for (std::size_t i = 0; i < frequencies.size(); i += kPiece) {
    progress.Show(i, "lines of the spectrum");
    const auto piece = frequencies.subspan(i, std::min(kPiece, frequencies.size() - i));
    const auto more = analysis::CalcSrs(ShockOf(wave), wave.fsamp, piece, task.spectrum.zeta,
                                        task.response->response);
    points.insert(points.end(), more.begin(), more.end());
  }
  return points;
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

}  // namespace

Spectrum SpectrumOf(const SrsOptions& options, const InputWave& wave) {
  if (wave.samples.GetSize() == 0) Fail(options.input, "has no samples");
  Task task = Prepare(options, wave);
  task.spectrum.points = Calculate(task, wave);
  if (task.spectrum.points.empty()) {
    Fail(options.input, "its sampling frequency is not a positive number");
  }
  return task.spectrum;
}

std::optional<Spectrum> SpectrumOf(const wave_def::CWaveDef& def, const std::string& name) {
  const InputWave wave = InputWaveOf(def);
  const auto isNumber = [](double v) { return std::isfinite(v); };
  if (!std::all_of(wave.samples.begin(), wave.samples.end(), isNumber)) return {};
  SrsOptions options;
  options.input = name;
  return SpectrumOf(options, wave);
}

void Srs(const SrsOptions& options) {
  const InputWave wave = LoadInputWave(options.input, options.fsamp);
  RequireNumbers(wave, options.input);
  OutputFiles files;
  const Spectrum spectrum = SpectrumOf(options, wave);
  if (!options.csv.empty()) WriteSpectrumCsv(spectrum, files.Reserve(options.csv));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string name = std::filesystem::path(options.input).stem().string();
    PlotSpectrum(spectrum, wave.title.empty() ? name : name + ": " + wave.title,
                 options.tripartite ? Axes::FourWay : Axes::Plain, format,
                 files.Reserve(options.plot));
  }
  if (spectrum.points.back().frequency * kSamplesPerCycle > wave.fsamp * (1.0 + 1e-9)) {
    Warn(options.input,
         fmt::format("fewer than {:g} samples per cycle above {:g} Hz: the spectrum is that of the "
                     "straight lines between the samples",
                     kSamplesPerCycle, wave.fsamp / kSamplesPerCycle));
  }
  files.Commit(Summary(spectrum));
}

}  // namespace qarv::command
