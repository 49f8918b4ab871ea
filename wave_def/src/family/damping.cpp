// The damped-sine synthesis.
//
//   dt         sample interval, 1 / fsamp [s]
//   omega      2 pi freq [rad/s]
//   x          omega t [rad]
//   V, D       velocity and displacement term of the sum at the end
//   Ac, dc     amplitude and delay of the compensating component
#include "family/damping.h"

#include <cmath>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "common/numeric/mat_basic.h"

namespace qarv::wave_def {

using common::kTwoPi;
using common::uint64;

namespace {

/// Adds value(k), k = 0, 1, ... to the samples from the one at `delay` on, at most `length` of
/// them.
template <class Value>
void AddFrom(double* buffer, uint64 nsamp, double delay, double dt, uint64 length, Value value) {
  const uint64 s = common::FloorToIndex(delay / dt);  // floor
  if (s >= nsamp) return;
  const uint64 count = length < nsamp - s ? length : nsamp - s;
  for (uint64 k = 0; k < count; ++k) buffer[s + k] += value(k);
}

/// An odd number of half cycles, at least 3: only those windows leave no velocity behind.
uint64 OddHalves(uint64 halves) {
  if (halves < 3) return 3;
  return halves % 2 == 0 ? halves + 1 : halves;
}

bool IsMethod(com_def::comdefconst::SYNC_WAVE_TYPE type) {
  using namespace com_def::comdefconst;
  return type == SYNC_WAVE_DAMPED_SINE || type == SYNC_WAVE_DAMPED_SINE_MODIFIED ||
         type == SYNC_WAVE_WAVELET;
}

}  // namespace

bool AddDampedSine(double* buffer, uint64 nsamp, double fsamp, double freq, double ampl,
                   double zeta, double delay) {
  if (buffer == nullptr) return false;
  const double dt = 1.0 / fsamp;
  const double omega = freq * kTwoPi;
  double v = 0.0;
  AddFrom(buffer, nsamp, delay, dt, nsamp, [&](uint64 k) {
    const double x = static_cast<double>(k) * dt * omega;
    const double e = std::exp(x * zeta);
    // Deliberate: where e has become 0 (a negative damping) the value before it is held.  A NaN is
    // not 0.
    if (e != 0.0) v = std::sin(x) / e;
    return v * ampl;
  });
  return true;
}

bool AddModifiedDampedSine(double* buffer, uint64 nsamp, double fsamp, double freq, double ampl,
                           double zeta, double delay) {
  if (buffer == nullptr) return false;
  const double dt = 1.0 / fsamp;
  const double omega = freq * kTwoPi;
  const double phi = std::atan(zeta * -2.0 / (zeta * zeta - 1.0));
  const double scale = std::exp(1.0) * (ampl * zeta);
  double v = 0.0;
  AddFrom(buffer, nsamp, delay, dt, nsamp, [&](uint64 k) {
    const double x = static_cast<double>(k) * dt * omega;
    const double e = std::exp(x * zeta);
    // Deliberate: held where e is 0, as in a damped sine.
    if (e != 0.0) v = (std::cos(x + phi) * x + std::sin(x)) * scale / e;
    return v;
  });
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
                        const double* delay) {
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
    AddFrom(buffer, nsamp, timeOrigin + delay[i], dt, length, [&](uint64 k) {
      const double t = static_cast<double>(k) * dt;
      return std::sin(t * omega) * ampl[i] * std::sin(t * window);
    });
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
  wave->Resize(n);
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
