// The damped-sine synthesis.
//
//   dt         sample interval, 1 / fsamp [s]
//   omega      2 pi freq [rad/s]
//   x          omega t [rad]
//   V, D       velocity and displacement term of the sum at the end
//   Ac, dc     amplitude and delay of the compensating component
#include "family/damping.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "common/numeric/mat_basic.h"
#include "numeric/elementary/block.h"
#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

using common::InstructionSet;
using common::kTwoPi;
using common::SampleBlock;
using common::uint64;
using namespace common::elementary;

namespace {

/// The samples that a component covers.
struct Extent {
  uint64 first, count;
};

/// From the sample of `delay` on, at most `length` of them; none where that is outside.
Extent ExtentOf(uint64 nsamp, double delay, double dt, uint64 length) {
  const uint64 s = common::FloorToIndex(delay / dt);  // floor
  if (s >= nsamp) return {0, 0};
  return {s, std::min(length, nsamp - s)};
}

/// A decaying oscillation  v(x) gain,  v(x) = f(x) / e^(x zeta),  x = k dt omega.
///
/// Kind::Numerator fills f(x) for a block of x, Kind::Bound(x) is not below |f| from 0 to |x|.
template <class Kind>
struct Decay {
  Kind kind;
  double dt, omega, zeta, gain;

  double X(double k) const { return k * dt * omega; }
  bool Falls() const { return X(1.0) * zeta > 0.0 && std::isfinite(gain); }

  /// No sample from the k-th to the last is larger than this.
  double Bound(double k, double last) const {
    return kind.Bound(X(last)) * std::fabs(gain) / Exp(X(k) * zeta) * (1.0 + 1e-6);
  }
};

/// The numerator of a damped sine.
struct PlainSine {
  void Numerator(const SampleBlock& x, std::size_t n, SampleBlock& f, InstructionSet set) const {
    Sin({x.data(), n}, {f.data(), n}, set);
  }
  static double Bound(double) { return 1.0; }
};

/// The numerator of a damped sine that ends at rest.
struct ModifiedSine {
  double phi, scale;

  void Numerator(const SampleBlock& x, std::size_t n, SampleBlock& f, InstructionSet set) const {
    SampleBlock sine;
    Sin({x.data(), n}, {sine.data(), n}, set);
    for (std::size_t i = 0; i < n; ++i) f[i] = x[i] + phi;
    Cos({f.data(), n}, {f.data(), n}, set);
    for (std::size_t i = 0; i < n; ++i) f[i] = (f[i] * x[i] + sine[i]) * scale;
  }
  double Bound(double x) const { return (std::fabs(x) + 1.0) * std::fabs(scale); }
};

/// Whether every sample is so large that adding anything up to `bound` leaves it as it is: a sum
/// rounds to its larger part where the other one is below a quarter of its last place.
QARV_LANES_INLINE bool Swallows(const double* sample, std::size_t n, double bound) {
  const double largest = bound * 0x1p55 + 1e-290;  // subnormal ones are out of the question there
  if (!(std::fabs(sample[0]) > largest) && !std::isnan(sample[0])) return false;
  common::Running least;
  least.fill(std::numeric_limits<double>::infinity());
  common::ForSideBySide(n, [&](std::size_t lane, std::size_t i) QARV_LANES {
    const double size = std::fabs(sample[i]);
    least[lane] = size < least[lane] ? size : least[lane];  // a NaN stays one whatever is added
  });
  return *std::min_element(least.begin(), least.end()) > largest;
}

/// Adds the oscillation to the samples of its extent.
///
/// Two things end the work early and change no bit: where e^(x zeta) has become infinite, only
/// zeros follow, and a block that swallows the largest contribution left is passed over.
template <class Kind>
void AddDecay(double* buffer, Extent extent, const Decay<Kind>& decay, InstructionSet set) {
  SampleBlock x, e, v;
  double held = 0.0;
  bool over = false;
  const bool falls = decay.Falls() && std::isfinite(decay.X(static_cast<double>(extent.count)));
  common::ForBlocks(set, 0, extent.count, [&](uint64 k, std::size_t n) QARV_LANES {
    if (over) return;
    double* const out = buffer + extent.first + k;
    const auto first = static_cast<double>(k);
    if (falls && Swallows(out, n, decay.Bound(first, first + static_cast<double>(n - 1)))) return;
    common::FillBlock(x.data(), k, n, [&](double at) QARV_LANES { return decay.X(at); });
    for (std::size_t i = 0; i < n; ++i) e[i] = x[i] * decay.zeta;
    Exp({e.data(), n}, {e.data(), n}, set);
    over = falls && std::isinf(e[0]);
    if (over) return;
    decay.kind.Numerator(x, n, v, set);
    uint64 vanished = 0;
    for (std::size_t i = 0; i < n; ++i) {
      vanished |= ZeroIf(e[i] != 0.0);
      v[i] /= e[i];
    }
    // Deliberate: where e has become 0 (a negative damping) the value before it is held.  A NaN is
    // not 0.
    for (std::size_t i = 0; vanished != 0 && i < n; ++i) {
      if (e[i] == 0.0) v[i] = i == 0 ? held : v[i - 1];
    }
    held = v[n - 1];
    for (std::size_t i = 0; i < n; ++i) out[i] += v[i] * decay.gain;
  });
}

/// An odd number of half cycles, at least 3: only those windows leave no velocity behind.
// Deliberate: another number is no mistake to refuse but is drawn as the next odd one.
uint64 OddHalves(uint64 halves) {
  if (halves < 3) return 3;
  return halves % 2 == 0 ? halves + 1 : halves;
}

/// Adds  sin(t omega) ampl sin(t window),  t = k dt.
void AddWavelet(double* buffer, Extent extent, double dt, double omega, double window, double ampl,
                InstructionSet set) {
  SampleBlock carrier, envelope;
  common::ForBlocks(set, 0, extent.count, [&](uint64 k, std::size_t n) QARV_LANES {
    common::FillBlock(carrier.data(), k, n, [=](double at) QARV_LANES { return at * dt * omega; });
    common::FillBlock(envelope.data(), k, n,
                      [=](double at) QARV_LANES { return at * dt * window; });
    Sin({carrier.data(), n}, {carrier.data(), n}, set);
    Sin({envelope.data(), n}, {envelope.data(), n}, set);
    double* const out = buffer + extent.first + k;
    for (std::size_t i = 0; i < n; ++i) out[i] += carrier[i] * ampl * envelope[i];
  });
}

bool IsMethod(com_def::comdefconst::SYNC_WAVE_TYPE type) {
  using namespace com_def::comdefconst;
  return type == SYNC_WAVE_DAMPED_SINE || type == SYNC_WAVE_DAMPED_SINE_MODIFIED ||
         type == SYNC_WAVE_WAVELET;
}

}  // namespace

bool AddDampedSine(double* buffer, uint64 nsamp, double fsamp, double freq, double ampl,
                   double zeta, double delay, InstructionSet set) {
  if (buffer == nullptr) return false;
  const double dt = 1.0 / fsamp;
  const Decay<PlainSine> decay{
      .kind = {}, .dt = dt, .omega = freq * kTwoPi, .zeta = zeta, .gain = ampl};
  AddDecay(buffer, ExtentOf(nsamp, delay, dt, nsamp), decay, set);
  return true;
}

bool AddModifiedDampedSine(double* buffer, uint64 nsamp, double fsamp, double freq, double ampl,
                           double zeta, double delay, InstructionSet set) {
  if (buffer == nullptr) return false;
  const double dt = 1.0 / fsamp;
  const double phi = Atan(zeta * -2.0 / (zeta * zeta - 1.0));
  const double scale = Exp(1.0) * (ampl * zeta);
  const Decay<ModifiedSine> decay{.kind = {.phi = phi, .scale = scale},
                                  .dt = dt,
                                  .omega = freq * kTwoPi,
                                  .zeta = zeta,
                                  .gain = 1.0};
  AddDecay(buffer, ExtentOf(nsamp, delay, dt, nsamp), decay, set);
  return true;
}

bool CalcDampedSineResidual(uint64 count, const double* freq, const double* ampl,
                            const double* zeta, const double* delay, double* velocity,
                            double* displacement) {
  if (velocity == nullptr || displacement == nullptr) return false;
  double V = 0.0;
  double D = 0.0;
  for (uint64 i = 0; i < count; ++i) {
    if (ampl[i] == 0.0) continue;
    const double omega = freq[i] * kTwoPi;
    const double m = omega * (zeta[i] * zeta[i] + 1.0);
    const double q = ampl[i] / m;
    V += q;
    D += zeta[i] * -2.0 * ampl[i] / (m * m) - q * delay[i];
  }
  *velocity = V;
  *displacement = D;
  return true;
}

CompensatingSine CalcCompensatingSine(double timeOrigin, uint64 count, const double* freq,
                                      const double* ampl, const double* zeta, const double* delay,
                                      double compFreq, double compZeta) {
  double V = 0.0;
  double D = 0.0;
  CalcDampedSineResidual(count, freq, ampl, zeta, delay, &V, &D);

  const double Z = compZeta;
  const double W = compFreq * kTwoPi;
  const double M = Z * Z + 1.0;
  const double Ac = -(W * V * M);
  const double dc = Ac != 0.0 ? W * D * M / Ac - (Z + Z) / (W * M) : 0.0;
  const double shift = -dc > timeOrigin ? -dc : timeOrigin;  // a NaN does not shift
  return {.ampl = Ac, .delay = dc, .shift = shift};
}

double SynthesizeDampedSines(double* buffer, uint64 nsamp, double fsamp, double timeOrigin,
                             uint64 count, const double* freq, const double* ampl,
                             const double* zeta, const double* delay, double compFreq,
                             double compZeta) {
  if (buffer == nullptr || freq == nullptr || ampl == nullptr) return 0.0;
  if (zeta == nullptr || delay == nullptr) return 0.0;
  const auto [Ac, dc, shift] =
      CalcCompensatingSine(timeOrigin, count, freq, ampl, zeta, delay, compFreq, compZeta);

  common::CMatBasic::ClrDouble(buffer, nsamp);
  for (uint64 i = 0; i < count; ++i) {
    if (ampl[i] == 0.0) continue;
    AddDampedSine(buffer, nsamp, fsamp, freq[i], ampl[i], zeta[i], delay[i] + shift);
  }
  AddDampedSine(buffer, nsamp, fsamp, compFreq, Ac, compZeta, dc + shift);
  return shift;
}

bool SynthesizeModifiedDampedSines(double* buffer, uint64 nsamp, double fsamp, double timeOrigin,
                                   uint64 count, const double* freq, const double* ampl,
                                   const double* zeta, const double* delay) {
  if (buffer == nullptr || freq == nullptr || ampl == nullptr) return false;
  if (zeta == nullptr || delay == nullptr) return false;
  common::CMatBasic::ClrDouble(buffer, nsamp);
  for (uint64 i = 0; i < count; ++i) {
    if (ampl[i] == 0.0) continue;
    AddModifiedDampedSine(buffer, nsamp, fsamp, freq[i], ampl[i], zeta[i], timeOrigin + delay[i]);
  }
  return true;
}

bool SynthesizeWavelets(double* buffer, uint64 nsamp, double fsamp, double timeOrigin, uint64 count,
                        const double* freq, const double* ampl, const uint64* halves,
                        const double* delay, InstructionSet set) {
  if (buffer == nullptr) return false;
  common::CMatBasic::ClrDouble(buffer, nsamp);
  const double dt = 1.0 / fsamp;
  for (uint64 i = 0; i < count; ++i) {
    if (ampl[i] == 0.0) continue;
    const auto N = static_cast<double>(OddHalves(halves[i]));
    const double omega = freq[i] * kTwoPi;
    const double window = omega / N;
    // Deliberate: the length multiplies by the rate, while the start divides by the interval.
    const uint64 length = common::TruncToIndex(N * 0.5 * fsamp / freq[i]);  // truncated
    AddWavelet(buffer, ExtentOf(nsamp, timeOrigin + delay[i], dt, length), dt, omega, window,
               ampl[i], set);
  }
  return true;
}

DampingComponents::DampingComponents(const std::list<CWaveDefDampingElm>& elms) {
  for (auto* array : {&freq, &ampl, &zeta, &delay}) array->reserve(elms.size());
  halves.reserve(elms.size());
  for (const CWaveDefDampingElm& elm : elms) {
    freq.push_back(elm.GetFreq());
    ampl.push_back(elm.GetAmpl());
    zeta.push_back(elm.GetZeta());
    delay.push_back(elm.GetDelay());
    halves.push_back(elm.GetNumHalf());
  }
}

bool DampingSynthesize(const CWaveDefDamping& def, double fsamp,
                       common::CDataArrayFloatT<double>* wave) {
  using namespace com_def::comdefconst;
  const uint64 n = def.GetNsamp();
  const uint64 count = def.GetElmNum();
  if (fsamp == 0.0 || wave == nullptr || n == 0 || count == 0) return false;
  if (!IsMethod(def.GetSyncWaveType())) return false;

  const DampingComponents c(def.GetDefDampingElmList());
  wave->ResizeToWrite(n);
  double* const x = wave->GetData();
  const double* const freq = c.freq.data();
  const double* const ampl = c.ampl.data();
  const double* const zeta = c.zeta.data();
  const double* const delay = c.delay.data();
  if (def.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE) {
    SynthesizeDampedSines(x, n, fsamp, 0.0, count, freq, ampl, zeta, delay, def.GetFreq(),
                          def.GetZeta());
  } else if (def.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE_MODIFIED) {
    SynthesizeModifiedDampedSines(x, n, fsamp, 0.0, count, freq, ampl, zeta, delay);
  } else {
    SynthesizeWavelets(x, n, fsamp, 0.0, count, freq, ampl, c.halves.data(), delay);
  }
  return true;
}

}  // namespace qarv::wave_def
