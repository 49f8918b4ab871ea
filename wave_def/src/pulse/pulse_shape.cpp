// The classical shock pulses.
//
//   h, n   half width, as a quotient and in whole samples [sample]
//   S, L   width [sample]: as a quotient, and as twice n
//   r, f   fractions of the width that rise and fall take [width]
#include "pulse/pulse_shape.h"

#include <algorithm>
#include <vector>

#include "band/half_sine_band.h"
#include "band/haversine_band.h"
#include "band/sawtooth_band.h"
#include "band/trapezoid_band.h"
#include "band/user_band.h"
#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/sample_blocks.h"
#include "pulse/pulse_corners.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using common::FloorToIndex;
using common::InstructionSet;
using common::uint64;
using Def = CWaveDefClassical;
using Std = CWaveDefTolSpecify;

namespace {

/// Draws a pulse that is symmetric about its centre:  value(cos(k step(h)))  at k samples to either
/// side, h being the half width.
template <class Step, class Value>
bool DrawSymmetric(uint64 centre, double width, double dt, double peak, SampleSpan wave, Step step,
                   Value value) {
  const uint64 N = wave.size();
  const auto half = CalcPulseHalfWidth(width, dt, N);
  if (peak == 0.0 || !half || centre >= N) return false;
  double* const x = wave.data();
  x[centre] = peak;
  const double s = step(half->h);
  const uint64 left = std::min(half->n, centre);
  const uint64 right = std::min(half->n, N - 1 - centre);
  common::SampleBlock y;
  const InstructionSet set = common::BestInstructionSet();
  common::ForBlocks(set, 1, std::max(left, right) + 1, [&](uint64 k, std::size_t n) QARV_LANES {
    common::FillBlock(y.data(), k, n, [=](double at) QARV_LANES { return at * s; });
    common::elementary::Cos({y.data(), n}, {y.data(), n}, set);
    for (std::size_t i = 0; i < n; ++i) y[i] = value(y[i]);
    for (std::size_t i = 0; i < n && k + i <= left; ++i) x[centre - k - i] = y[i];
    for (std::size_t i = 0; i < n && k + i <= right; ++i) x[centre + k + i] = y[i];
  });
  return true;
}

/// Builds the upper band, then the lower.
template <class Build>
bool BuildBands(const Def& def, uint64 centre, double dt, const PulseArrays& out, Build build) {
  return build(BandTask{def, true, centre, dt, out.wave, out.tolU}) &&
         build(BandTask{def, false, centre, dt, out.wave, out.tolL});
}

/// The fractions of the width that rise and fall of a sawtooth take.
std::optional<TrapezoidFractions> SawtoothFractions(const Def& def) {
  constexpr TrapezoidFractions kInstant{1.0, 0.0};
  constexpr TrapezoidFractions kShort{0.9, 0.1};
  switch (def.GetTolKind()) {
    case Def::TOL_FIXED_1:
    case Def::TOL_FIXED_4:
    case Def::TOL_FIXED_6:
    case Def::TOL_FIXED_9:
      return kInstant;
    case Def::TOL_FIXED_5:
    case Def::TOL_FIXED_7:
    case Def::TOL_FIXED_8:
    case Def::TOL_USER_DEF:
      return kShort;
    case Def::TOL_SPECIFY:
      break;
    case Def::TOL_FIXED_2:
    case Def::TOL_FIXED_3:
    case Def::TOL_NONE:
      return std::nullopt;
  }
  const double f = def.GetDefTolSpecify().GetPulseAfterWidth();
  switch (def.GetDefTolSpecify().GetBaseStandard()) {
    case Std::BASE_STD_1:
    case Std::BASE_STD_4:
      return kInstant;
    case Std::BASE_STD_2:
    case Std::BASE_STD_3:
    case Std::BASE_STD_5:
      return TrapezoidFractions{1 - f, f};
    case Std::BASE_STD_NONE:
      break;
  }
  return std::nullopt;
}

/// A trapezoid as a pulse, with the bands of `build`.
template <class Build>
bool BuildTrapezoid(const Def& def, uint64 centre, double dt, const PulseArrays& out, Build build) {
  const auto part = FractionsOf(def);
  return part &&
         DrawTrapezoid(def, true, centre, dt, part->rise, part->fall, 0.0, def.GetMainAmpl(), 0.0,
                       out.wave) &&
         BuildBands(def, centre, dt, out, build);
}

}  // namespace

bool DrawHalfSine(uint64 centre, double width, double dt, double peak, SampleSpan wave) {
  return DrawSymmetric(
      centre, width, dt, peak, wave, [](double h) { return common::kPi / h * 0.5; },
      [peak](double c) QARV_LANES { return c * peak; });
}

bool DrawHaversine(uint64 centre, double width, double dt, double peak, SampleSpan wave) {
  return DrawSymmetric(
      centre, width, dt, peak, wave, [](double h) { return common::kPi / h; },
      [peak](double c) QARV_LANES { return (c * 0.5 + 0.5) * peak; });
}

std::optional<TrapezoidCorners> CornersOf(const Def& def, uint64 centre, double dt, double rise,
                                          double fall) {
  const auto p = SpanOf(def, centre, dt);
  if (!p) return std::nullopt;
  const double S = p->W / dt;
  const uint64 riseN = FloorToIndex(S * rise + 0.01);  // floor, with a guard
  const uint64 fallN = FloorToIndex(S * fall + 0.01);
  return TrapezoidCorners{.start = p->start,
                          .riseEnd = p->start + riseN,
                          .fallStart = p->end - fallN,
                          .end = p->end,
                          .flat = rise + fall != 1.0};
}

bool DrawTrapezoid(const Def& def, bool upper, uint64 centre, double dt, double rise, double fall,
                   double a, double p, double e, SampleSpan out) {
  const auto c = CornersOf(def, centre, dt, rise, fall);
  if (!c) return false;
  const BandPen pen(out, upper);
  return pen.LineToward({c->start, a}, {c->riseEnd, p}) &&                    // rise
         (!c->flat || pen.LineToward({c->riseEnd, p}, {c->fallStart, p})) &&  // flat top
         pen.Fall({c->fallStart, p}, {c->end, e});                            // fall
}

std::optional<TrapezoidFractions> FractionsOf(const Def& def) {
  if (def.GetWaveKind() == wave_def_sub::TRIANGLE) return TrapezoidFractions{0.5, 0.5};
  if (def.GetWaveKind() == wave_def_sub::USER_TRAPEZOID) {
    return TrapezoidFractions{def.GetMainRise(), def.GetMainFall()};
  }
  if (def.GetWaveKind() != wave_def_sub::TRAPEZOID) return std::nullopt;
  if (def.GetTolKind() != Def::TOL_SPECIFY) return TrapezoidFractions{0.1, 0.1};
  const Std& tol = def.GetDefTolSpecify();
  if (tol.GetBaseStandard() < Std::BASE_STD_1 || tol.GetBaseStandard() > Std::BASE_STD_5) {
    return std::nullopt;
  }
  return TrapezoidFractions{tol.GetPulseRiseWidth(), tol.GetPulseFallWidth()};
}

std::optional<SawtoothCorners> SawtoothCornersOf(const Def& def, uint64 centre, double dt) {
  const auto half = CalcPulseHalfWidth(def.GetMainWidth(), dt, def.GetNsamp());
  const auto part = SawtoothFractions(def);
  if (!half || !part) return std::nullopt;
  const double L = static_cast<double>(2 * half->n);
  const uint64 start = centre - half->n;
  return SawtoothCorners{
      .start = start,
      .peak = start + FloorToIndex(L * part->rise + 0.5),                 // rounded half up
      .end = start + FloorToIndex((part->fall + part->rise) * L + 0.5)};  // rounded half up
}

bool DrawSawtooth(const SawtoothCorners& c, double peak, SampleSpan wave) {
  const BandPen pen(wave, true);
  return pen.Line({c.start, 0.0}, {c.peak, peak}) &&  // rise
         pen.Fall({c.peak, peak}, {c.end, 0.0});      // fall
}

bool HasPositiveSample(const Def& def, const PulseSpan& p) {
  std::vector<double> wave(static_cast<std::size_t>(p.N));
  bool drawn = false;
  if (def.GetWaveKind() == wave_def_sub::TERMINAL_PEAK_SAWTOOTH) {
    const auto corners = SawtoothCornersOf(def, p.centre, p.dt);
    drawn = corners && DrawSawtooth(*corners, p.A, wave);
  } else if (const auto part = FractionsOf(def)) {
    drawn = DrawTrapezoid(def, true, p.centre, p.dt, part->rise, part->fall, 0.0, p.A, 0.0, wave);
  }
  const double* const x = wave.data();
  return drawn && std::any_of(x + p.start, x + p.end + 1, [](double v) { return v > 0.0; });
}

bool BuildHalfSinePulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  return DrawHalfSine(centre, def.GetMainWidth(), dt, def.GetMainAmpl(), out.wave) &&
         BuildBands(def, centre, dt, out, BuildHalfSineStdBand);
}

bool BuildHaversinePulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  return DrawHaversine(centre, def.GetMainWidth(), dt, def.GetMainAmpl(), out.wave) &&
         BuildBands(def, centre, dt, out, BuildHaversineBand);
}

bool BuildSawtoothPulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  const auto corners = SawtoothCornersOf(def, centre, dt);
  return corners && DrawSawtooth(*corners, def.GetMainAmpl(), out.wave) &&
         BuildBands(def, centre, dt, out, [&corners](const BandTask& task) {
           return BuildSawtoothBand(task, corners->peak);
         });
}

bool BuildTrapezoidPulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  return BuildTrapezoid(def, centre, dt, out, BuildTrapezoidBand);
}

bool BuildTrianglePulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  return BuildTrapezoid(def, centre, dt, out, BuildUserTolBand);
}

bool BuildUserTrapezoidPulse(const Def& def, uint64 centre, double dt, const PulseArrays& out) {
  return BuildTrapezoid(def, centre, dt, out, BuildUserTolBand);
}

}  // namespace qarv::wave_def
