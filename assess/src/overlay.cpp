// A measured record laid over a definition.
//
//   ratio   sampling frequency of the record over that of the definition
//   start   place of the definition's first sample in the record [sample of the definition]
#include "overlay.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "analysis/judge.h"
#include "analysis/resample.h"
#include "assess/motion.h"
#include "common/numeric/index_conv.h"
#include "definition/definition.h"
#include "definition/main_pulse.h"

namespace qarv::assess {

using definition::IsClassical;
using definition::MainPulse;
using definition::MainPulseOf;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

constexpr double kSlack = 1e-6;  // [sample] lost to rounding

std::size_t Index(double v) { return static_cast<std::size_t>(common::TruncToIndex(v)); }

/// The samples first .. last of a definition.
struct Range {
  std::size_t first, last;
};

/// What a record is aligned by.
Range ReferenceOf(const CWaveDef& def) {
  const auto N = static_cast<std::size_t>(def.GetNsamp());
  if (!IsClassical(def)) return {0, N - 1};
  const MainPulse pulse = MainPulseOf(def);
  return {std::min(pulse.first, N - 1), std::min(pulse.last, N - 1)};
}

/// [sample] of the definition
double PulseWidth(const CWaveDef& def) {
  return def.GetDefClassical().GetMainWidth() * SampleRateOf(def);
}

/// What a record is recognised by: the pulse and a width to either side.  Slow noise looks like a
/// pulse while it lasts, but not before and behind it.
Range RecognisedBy(const CWaveDef& def) {
  const Range pulse = ReferenceOf(def);
  if (!IsClassical(def)) return pulse;
  const double width = std::round(PulseWidth(def));
  const double last = static_cast<double>(def.GetNsamp() - 1);
  return {Index(std::max(static_cast<double>(pulse.first) - width, 0.0)),
          Index(std::min(static_cast<double>(pulse.last) + width, last))};
}

/// What the record covers of a definition that starts there.
struct Covered {
  double first, last;
};

Covered CoveredBy(const GridRecord& record, const CWaveDef& def, double start) {
  const double last = static_cast<double>(def.GetNsamp() - 1);
  return {std::max(std::ceil(-start - kSlack), 0.0),
          std::min(std::floor(record.end - start + kSlack), last)};
}

/// Where the record shows the waveform, and how well.
struct Match {
  double start;
  analysis::Likeness likeness;
};

Match MatchOf(const CWaveDef& def, const GridRecord& record, std::span<const double> samples) {
  const Range reference = ReferenceOf(def);
  const auto wave = SpanOf(def.GetWave());
  const auto searched =
      samples.subspan(record.searchFirst, record.searchLast - record.searchFirst + 1);
  const double lag =
      analysis::Align(wave.subspan(reference.first, reference.last - reference.first + 1), searched)
          .lag;
  const double start =
      lag + static_cast<double>(record.searchFirst) - static_cast<double>(reference.first);
  const Range wide = RecognisedBy(def);
  const Covered covered = CoveredBy(record, def, start);
  const double first = std::max(static_cast<double>(wide.first), covered.first);
  const double last = std::min(static_cast<double>(wide.last), covered.last);
  if (!(first <= last)) return {start, {0.0, 0.0}};
  const std::size_t count = Index(last - first) + 1;
  return {start, analysis::LikenessOf(wave.subspan(Index(first), count),
                                      analysis::SampledAt(samples, start + first, 1.0, count))};
}

}  // namespace

double UnitFactor(const CWaveDef& def, const Record& measured) {
  const std::string unit = def.GetUnitAmpl().GetText();
  if (measured.unit.empty() || unit.empty() || measured.unit == unit) return 1.0;
  const MotionUnits from = MotionUnitsOf(measured.unit);
  const MotionUnits to = MotionUnitsOf(unit);
  if (!from.known || !to.known) {
    throw Error("", fmt::format("its unit is {}, not {}", measured.unit, unit));
  }
  return from.velocity / to.velocity;
}

GridRecord OnGridOf(const CWaveDef& def, const Record& measured,
                    const std::optional<Stretch>& search) {
  constexpr double kLongest = 1e9;  // [sample] that are worth an attempt
  const auto record = measured.samples;
  RequireNumbers(measured.samples);
  const double fsamp = SampleRateOf(def);
  const double ratio = measured.fsamp / fsamp;
  const double end = static_cast<double>(record.size() - 1) / ratio;
  if (!(ratio > 0.0 && std::isfinite(ratio) && end < kLongest)) {
    throw Error("", fmt::format("a sampling frequency of {:g} Hz does not go with {:g} Hz",
                                measured.fsamp, fsamp));
  }
  const bool sameRate = std::fabs(ratio - 1.0) < 1e-9;
  GridRecord out{{}, end, fsamp, measured.begin, 0, 0};
  out.samples = sameRate
                    ? std::vector<double>(record.begin(), record.end())
                    : analysis::SampledAt(record, 0.0, ratio, Index(std::ceil(end - kSlack)) + 1);
  const double factor = UnitFactor(def, measured);
  for (double& v : out.samples) v *= factor;
  const std::size_t last = out.samples.size() - 1;
  const auto onGrid = [&](std::size_t i) {
    return std::min(Index(std::floor(static_cast<double>(i) / ratio)), last);
  };
  out.searchFirst = search ? onGrid(search->first) : 0;
  out.searchLast = search ? std::max(onGrid(search->last), out.searchFirst) : last;
  return out;
}

Location Locate(const CWaveDef& def, const GridRecord& record) {
  // Noise stays below it, and what could pass lies above 0.9: the measurement is in decisions.md.
  constexpr double kLeastCorrelation = 0.7;
  constexpr double kClearly = 1.05;  // a sine turned over is itself half a period later
  const char* const what = IsClassical(def) ? "pulse" : "waveform";
  const Match upright = MatchOf(def, record, record.samples);
  std::vector<double> negated = record.samples;
  for (double& v : negated) v = -v;
  const Match turned = MatchOf(def, record, negated);
  if (turned.likeness.correlation >= kLeastCorrelation &&
      turned.likeness.gain > kClearly * upright.likeness.gain) {
    throw Error("", fmt::format("shows the {} upside down (correlation {:.3f})", what,
                                -turned.likeness.correlation));
  }
  if (!(upright.likeness.correlation >= kLeastCorrelation)) {
    throw Error("", fmt::format("does not show the {}: the correlation is {:.3f}, below {:g}", what,
                                upright.likeness.correlation, kLeastCorrelation));
  }
  const Range reference = ReferenceOf(def);
  const Covered covered = CoveredBy(record, def, upright.start);
  const bool whole = covered.first <= static_cast<double>(reference.first) &&
                     covered.last >= static_cast<double>(reference.last);
  if (!(covered.first <= covered.last) || (IsClassical(def) && !whole)) {
    throw Error("", "does not hold the whole pulse");
  }
  return {upright.start, upright.likeness.correlation, turned.likeness.correlation};
}

Overlay LayOver(const CWaveDef& def, const GridRecord& record, double start) {
  Overlay out;
  const auto N = static_cast<std::size_t>(def.GetNsamp());
  const std::vector<double> wave = analysis::SampledAt(record.samples, start, 1.0, N);
  out.wave.SetData(N, wave.data(), false);
  const Covered covered = CoveredBy(record, def, start);
  out.first = Index(covered.first);
  out.last = Index(covered.last);
  out.start = start;
  return out;
}

analysis::Places PlacesAround(const CWaveDef& def, const GridRecord& record, double start,
                              double share) {
  const Range pulse = ReferenceOf(def);
  const double reach = share * std::fabs(PulseWidth(def));
  return {start, std::min(start, std::max(start - reach, -static_cast<double>(pulse.first))),
          std::max(start, std::min(start + reach, record.end - static_cast<double>(pulse.last)))};
}

}  // namespace qarv::assess
