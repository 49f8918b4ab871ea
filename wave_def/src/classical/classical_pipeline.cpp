// The generation of a classical shock pulse.
//
//   N    length of the frame [sample]
//   dt   sample interval [s]
//   iC   centre of the pulse [sample]
//   iS   its first sample, before which there is no frame where it is negative [sample]
//   iE   its last sample;  iPS, iPE  the ends of the rests before and after it [sample]
#include "classical/classical_pipeline.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <utility>

#include "band/tol_kind.h"
#include "com_def/com_def_system_const.h"
#include "common/numeric/index_conv.h"
#include "compensation/tolerance.h"
#include "pulse/pulse_shape.h"
#include "pulse/pulse_span.h"

namespace qarv::wave_def {

using com_def::comdefsystemconst::ConvFmaxToFsampByVal;
using com_def::comdefsystemconst::ConvNsampToNlineByVal;
using common::FloorToIndex;
using common::int64;
using common::uint64;
using Def = CWaveDefClassical;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// Where the pulse is drawn.
struct Placement {
  double dt;               // [s]
  uint64 centre;           // [sample]
  compensation::Place at;  // of the pulse and its rests [sample]
};

/// The sample interval and the centre; nothing if the definition has no pulse in its frame.
std::optional<Placement> Place(const Def& params) {
  const uint64 N = params.GetNsamp();
  if (params.GetMainAmpl() == 0.0 || params.GetFmax() == 0.0 || N == 0) return std::nullopt;
  const double dt = 1.0 / ConvFmaxToFsampByVal(params.GetFmax());
  if (dt == 0.0 || ConvNsampToNlineByVal(N) == 0) return std::nullopt;
  const uint64 iC = CentreOf(params, dt);
  const uint64 h = PlacedHalfWidth(params, dt);
  const auto iS = static_cast<int64>(iC - h);
  if (iS < 0) return std::nullopt;
  const auto iE = static_cast<int64>(iC + h);
  const auto iPS =
      static_cast<int64>(static_cast<uint64>(iS) - FloorToIndex(params.GetRestPre() / dt));
  const auto iPE =
      static_cast<int64>(static_cast<uint64>(iE) + FloorToIndex(params.GetRestPost() / dt));
  return Placement{dt, iC, {iS, iE, iPS, iPE}};
}

bool BuildPulse(const Def& params, const Placement& at, const PulseArrays& out) {
  switch (params.GetWaveKind()) {
    case wave_def_sub::HALF_SINE:
      return BuildHalfSinePulse(params, at.centre, at.dt, out);
    case wave_def_sub::TERMINAL_PEAK_SAWTOOTH:
      return BuildSawtoothPulse(params, at.centre, at.dt, out);
    case wave_def_sub::TRAPEZOID:
      return BuildTrapezoidPulse(params, at.centre, at.dt, out);
    case wave_def_sub::TRIANGLE:
      return BuildTrianglePulse(params, at.centre, at.dt, out);
    case wave_def_sub::USER_TRAPEZOID:
      return BuildUserTrapezoidPulse(params, at.centre, at.dt, out);
    case wave_def_sub::HAVERSINE:
      return BuildHaversinePulse(params, at.centre, at.dt, out);
  }
  return false;
}

/// Draws into three empty arrays; on failure they are empty again.
bool DrawInto(const Def& params, const Placement& at, Samples* wave, Samples* tolU, Samples* tolL) {
  for (Samples* array : {wave, tolU, tolL}) array->Resize(params.GetNsamp());
  const auto samples = [](Samples* a) { return std::span(a->begin(), a->end()); };
  if (BuildPulse(params, at, {samples(wave), samples(tolU), samples(tolL)})) return true;
  for (Samples* array : {wave, tolU, tolL}) array->Clear();
  return false;
}

// ---- Compensation ------------------------------------------------------------------------------

using compensation::kNoLimit;
using compensation::Wave;

compensation::Settings SettingsOf(const Def& params, double fsamp, bool negative) {
  const bool standard = params.GetTolKind() == Def::TOL_SPECIFY;
  return {.type = params.GetCmpType(),
          .symmetric = !params.GetCmpNonSym(),
          .pre = params.GetCmpPre(),
          .post = params.GetCmpPost(),
          .shape = params.GetWaveKind(),
          .kind = params.GetTolKind(),
          .base = standard ? params.GetDefTolSpecify().GetBaseStandard()
                           : CWaveDefTolSpecify::BASE_STD_NONE,
          .optRatLevel = params.GetOptRatLevel(),
          .fsamp = fsamp,
          .negative = negative};
}

/// The samples, negated if asked for; what is no limit stays none.
Wave Turned(Wave samples, bool negate) {
  for (double& v : samples) v = negate && v != kNoLimit ? -v : v;
  return samples;
}

Wave Upright(const Samples& samples, bool negate) {
  return Turned(Wave(samples.begin(), samples.end()), negate);
}

void Store(Wave wave, bool negate, Samples* samples) {
  const Wave turned = Turned(std::move(wave), negate);
  samples->SetData(turned.size(), turned.data(), false);
}

/// Compensates the drawn pulse.  A failure leaves in the arrays what the stage has come to.
bool Compensate(Def& params, double fsamp, const Placement& place, Samples* wave, Samples* tolU,
                Samples* tolL, compensation::Refusal* refusal) {
  const double extreme = compensation::ExtremeOf(
      wave->GetData(), place.at.iS, std::min<int64>(place.at.iE, params.GetNsamp() - 1));
  const bool negative = extreme < 0.0;
  compensation::Pulse pulse{place.at, std::fabs(extreme), Upright(*wave, negative),
                            Upright(negative ? *tolL : *tolU, negative),
                            Upright(negative ? *tolU : *tolL, negative)};
  compensation::Results results;
  const bool done =
      compensation::Compensate(&pulse, SettingsOf(params, fsamp, negative), &results, refusal);
  Store(std::move(pulse.wave), negative, wave);
  Store(std::move(pulse.upper), negative, negative ? tolL : tolU);
  Store(std::move(pulse.lower), negative, negative ? tolU : tolL);
  if (!done) return false;
  params.SetCmpU1(results.drawn.levelPre);
  params.SetCmpU2(results.drawn.levelPost);
  params.SetCmpRgm1(results.drawn.sharePre);
  params.SetCmpRgm2(results.drawn.sharePost);
  params.SetCmpCparam(results.gain);
  params.SetWaveShift(results.waveShift);
  return true;
}

}  // namespace

bool HasCompensationType(const Def& params) {
  return params.GetCmpType() >= Def::CMP_RAMP && params.GetCmpType() <= Def::CMP_OPTIMIZED;
}

bool GenerateClassical(Def& params, double fsamp, Samples* wave, Samples* tolU, Samples* tolL,
                       bool /*autoFsamp*/, compensation::Refusal* refusal) {
  if (wave == nullptr || tolU == nullptr || tolL == nullptr) return false;
  if (!IsTolKind(params.GetTolKind())) return false;
  const auto at = Place(params);
  if (!at || (params.GetAddCmp() && !HasCompensationType(params))) return false;

  // Empty arrays, as a definition hands them over, are drawn in place: their storage is kept and
  // nothing is copied.  Others stay as they are until the pulse has succeeded.
  if (wave->GetSize() == 0 && tolU->GetSize() == 0 && tolL->GetSize() == 0) {
    if (!DrawInto(params, *at, wave, tolU, tolL)) return false;
  } else {
    Samples newWave;
    Samples newU;
    Samples newL;
    if (!DrawInto(params, *at, &newWave, &newU, &newL)) return false;
    *wave = std::move(newWave);
    *tolU = std::move(newU);
    *tolL = std::move(newL);
  }
  if (!params.GetAddCmp()) return true;
  compensation::Refusal ignored;
  // Deliberate: a compensation that fails leaves its waveform in the arrays all the same.
  return Compensate(params, fsamp, *at, wave, tolU, tolL, refusal != nullptr ? refusal : &ignored);
}

compensation::Refusal compensation::WhyNotCompensated(const CWaveDefClassical& def, double fsamp) {
  CWaveDefClassical tried = def;
  common::CDataArrayFloatT<double> wave;
  common::CDataArrayFloatT<double> tolU;
  common::CDataArrayFloatT<double> tolL;
  Refusal refusal;
  const bool done = GenerateClassical(tried, fsamp, &wave, &tolU, &tolL, false, &refusal);
  return done ? Refusal{} : refusal;
}

}  // namespace qarv::wave_def
