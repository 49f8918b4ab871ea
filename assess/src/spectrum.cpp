// The shock response spectrum of a waveform or a record.
#include "assess/spectrum.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "assess/motion.h"

namespace qarv::assess {

using analysis::SrsPoint;
using analysis::SrsResponse;

namespace {

/// A response by name.
struct Response {
  const char* name;
  SrsResponse response;
  const char* title;
};

constexpr std::array<Response, 5> kResponses{{
    {"acceleration", SrsResponse::AbsoluteAcceleration, "absolute acceleration"},
    {"displacement", SrsResponse::RelativeDisplacement, "relative displacement"},
    {"pseudo-velocity", SrsResponse::PseudoVelocity, "pseudo velocity"},
    {"relative-velocity", SrsResponse::RelativeVelocity, "relative velocity"},
    {"static-equivalent", SrsResponse::StaticEquivalent, "static equivalent acceleration"},
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

Task Prepare(const SpectrumSettings& options, double fsamp, const std::string& unit) {
  Task task{};
  Spectrum& spectrum = task.spectrum;
  for (const Response& response : kResponses) {
    if (options.response == response.name) task.response = &response;
  }
  if (task.response == nullptr) {
    throw Error("response", "is none of " + ResponseNames(", "));
  }
  if (!(options.q > 0.5)) throw Error("q", "is not above 0.5");
  spectrum.zeta = options.damping.value_or(0.5 / options.q);
  if (!(spectrum.zeta >= 0.0 && spectrum.zeta < 1.0))
    throw Error("damping", "is not within 0 to 1");

  const double highest = kHighestLine * fsamp;
  const double to = options.to.value_or(fsamp / kSamplesPerCycle);
  const double from = options.from.value_or(std::min(5.0, to / 10.0));
  if (!(from > 0.0 && from <= to)) throw Error("from, to", "are not 0 < from <= to");
  if (!(to <= highest)) {
    throw Error("to", fmt::format("{:g} Hz is not below half the sampling frequency of {:g} Hz", to,
                                  fsamp));
  }
  double perOctave = options.perOctave;
  if (options.points) {
    if (*options.points < 1 || *options.points > 100000)
      throw Error("points", "is not within 1 to 100000");
    perOctave =
        *options.points > 1 && to > from ? (*options.points - 1) / std::log2(to / from) : 1.0;
  }
  task.frequencies = options.points == 1 ? std::vector<double>{from}
                                         : analysis::SrsFrequencies(from, to, perOctave);
  if (task.frequencies.empty()) throw Error("per-octave", "gives no frequencies");

  spectrum.response = task.response->title;
  const MotionUnits units = MotionUnitsOf(unit);
  switch (task.response->response) {
    case SrsResponse::AbsoluteAcceleration:
    case SrsResponse::StaticEquivalent:
      spectrum.factor = 1.0;
      spectrum.unit = unit;
      break;
    case SrsResponse::RelativeDisplacement:
      spectrum.factor = units.displacement;
      spectrum.unit = units.displacementUnit;
      break;
    case SrsResponse::PseudoVelocity:
    case SrsResponse::RelativeVelocity:
      spectrum.factor = units.velocity;
      spectrum.unit = units.velocityUnit;
      break;
  }
  spectrum.known = units.known;
  return task;
}

/// The samples up to the last one that is not 0: behind it the response is residual.
std::span<const double> ShockOf(const Record& record) {
  std::span<const double> shock = record.samples;
  while (shock.size() > 1 && shock.back() == 0.0) shock = shock.first(shock.size() - 1);
  return shock;
}

/// The lines of the spectrum, in pieces between which it can be said how far it has come.
std::vector<SrsPoint> Calculate(const Task& task, const Record& record,
                                const SpectrumProgress& progress) {
  constexpr std::size_t kPiece = 64;  // [lines]
  const std::span<const double> frequencies(task.frequencies);
  std::vector<SrsPoint> points;
  for (std::size_t i = 0; i < frequencies.size(); i += kPiece) {
    if (progress) progress(i, frequencies.size());
    const auto piece = frequencies.subspan(i, std::min(kPiece, frequencies.size() - i));
    const auto more = analysis::CalcSrs(ShockOf(record), record.fsamp, piece, task.spectrum.zeta,
                                        task.response->response);
    points.insert(points.end(), more.begin(), more.end());
  }
  return points;
}

}  // namespace

Spectrum SpectrumOf(const Record& record, const SpectrumSettings& settings,
                    const SpectrumProgress& progress) {
  if (record.samples.empty()) throw Error("", "has no samples");
  RequireNumbers(record.samples);
  Task task = Prepare(settings, record.fsamp, record.unit);
  task.spectrum.points = Calculate(task, record, progress);
  if (task.spectrum.points.empty()) {
    throw Error("", "its sampling frequency is not a positive number");
  }
  return task.spectrum;
}

bool IsCoarse(const Spectrum& spectrum, double fsamp) {
  return spectrum.points.back().frequency * kSamplesPerCycle > fsamp * (1.0 + 1e-9);
}

std::string CoarseText(double fsamp) {
  return fmt::format(
      "fewer than {:g} samples per cycle above {:g} Hz: the spectrum is that of the straight lines "
      "between the samples",
      kSamplesPerCycle, fsamp / kSamplesPerCycle);
}

}  // namespace qarv::assess
