// Levels, lengths and place of the compensation pulses of the types that are drawn.
//
//   tot, M     sum of the nominal wave and of i wave[i], over A
//   p          level of a pulse, pm the largest one that the limits allow [ratio to A]
//   a, b       area of a pulse and its first moment about its inner sample, outwards, at level 1
//   t          taper of a pulse [sample], f its flat part as a multiple of the taper
#include "compensation/preparation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "compensation/drawing.h"

namespace qarv::wave_def::compensation {

namespace {

struct Levels {
  double pre, post;
};

/// The largest levels that the bands allow.
///
/// The test scales the bands by CmpPre and CmpPost, so a level of CmpPre itself would lie below its
/// own limit; it is the scaled lower band, at least the least limit.
class LevelLimits {
 public:
  LevelLimits(const Pulse& pulse, const Settings& settings) : pulse_(pulse), settings_(settings) {
    const int64 N = pulse.N();
    // Shares of the lower band, the least from a sample on and up to it.
    fromHere_.resize(pulse.wave.size() + 1, HUGE_VAL);
    upToHere_.resize(pulse.wave.size() + 1, HUGE_VAL);
    for (int64 i = N - 1; i >= 0; --i)
      fromHere_[At(i)] = std::min(fromHere_[At(i + 1)], ShareAt(i));
    for (int64 i = 0; i < N; ++i) upToHere_[At(i + 1)] = std::min(upToHere_[At(i)], ShareAt(i));
  }

  /// The limits with everything `shift` samples later.
  Levels Shifted(int64 shift) const {
    const int64 N = pulse_.N();
    // Before: the samples 0 .. iPS - 1 of the shifted band, at least one.  Shifted down, the band
    // loses its first samples; shifted up, it repeats the first one.
    const int64 end = std::clamp<int64>(pulse_.at.iPS + shift, 1, N) - shift;
    double q = shift >= 0 ? upToHere_[At(std::clamp<int64>(end, 1, N))] : HUGE_VAL;
    for (int64 i = -shift; shift < 0 && i < std::min(end, N); ++i) q = std::min(q, ShareAt(i));
    const double pre = Level(settings_.pre, q);
    // After: from iPE + 1 on, at least the last sample.
    const int64 begin = std::clamp<int64>(pulse_.at.iPE + 1 + shift, 0, N - 1) - shift;
    q = shift <= 0 ? fromHere_[At(std::clamp<int64>(begin, 0, N - 1))] : HUGE_VAL;
    for (int64 i = begin; shift > 0 && i < N - shift; ++i) q = std::min(q, ShareAt(i));
    return {pre, Level(settings_.post, q)};
  }

 private:
  static std::size_t At(int64 i) { return static_cast<std::size_t>(i); }
  double ShareAt(int64 i) const {
    const double lower = pulse_.lower[At(i)];
    return lower == kNoLimit ? HUGE_VAL : std::max(0.0, -lower / pulse_.A);
  }
  static double Level(double scale, double share) {
    const double level = std::fabs(scale);
    if (level == 0.0 || share == HUGE_VAL) return level;
    return std::min(level, std::max(kLeastLimit, level * share));
  }

  const Pulse& pulse_;
  const Settings& settings_;
  Wave fromHere_, upToHere_;
};

/// Area and first moment of the whole nominal wave, over its peak.
struct Moments {
  double tot, M;
};

Moments MomentsOf(const Pulse& pulse) {
  double sum = 0.0;
  double moment = 0.0;
  for (std::size_t i = 0; i < pulse.wave.size(); ++i) {
    sum += pulse.wave[i];
    moment += static_cast<double>(i) * pulse.wave[i];
  }
  return {sum / pulse.A, moment / pulse.A};
}

/// A pulse at level 1, as it is drawn.
struct UnitPulse {
  double a, b;
};

/// The levels at which two pulses cancel area and first moment of the wave exactly.
Levels PairLevels(const UnitPulse& pre, const UnitPulse& post, const Place& at,
                  const Moments& wave) {
  const double c = static_cast<double>(at.iPS + at.iPE) / 2.0;
  const double R = wave.M - c * wave.tot;
  const double A11 = pre.a;
  const double A12 = post.a;
  const double A21 = (static_cast<double>(at.iPS) - 1.0 - c) * pre.a - pre.b;
  const double A22 = (static_cast<double>(at.iPE) + 1.0 - c) * post.a + post.b;
  const double det = A11 * A22 - A12 * A21;
  return {(wave.tot * A22 - A12 * R) / det, (A11 * R - A21 * wave.tot) / det};
}

/// The sum of the main pulse's samples, its last one left out.
double MainSum(const Pulse& pulse) {
  return SampleSum(pulse.wave.data(), static_cast<uint64>(pulse.at.iS),
                   static_cast<uint64>(pulse.at.iE));
}

/// Draws the compensation of an attempt and adds it to the wave.
void Combine(const Settings& settings, Attempt* attempt) {
  const Pulse& pulse = attempt->pulse;
  Wave& comp = attempt->comp;
  comp.assign(pulse.wave.size(), 0.0);
  DrawCompensation(comp.data(), comp.size(), pulse.A, MainSum(pulse), settings.type, pulse.at,
                   attempt->drawn);
  for (std::size_t i = 0; i < comp.size(); ++i) comp[i] += pulse.wave[i];
}

// ---- Ramps -------------------------------------------------------------------------------------

UnitPulse RampOf(int64 n) {
  const auto length = static_cast<double>(n);
  return {(length - 1.0) / 2.0, (length - 1.0) * (length - 2.0) / 6.0};
}

Levels RampLevels(const Settings& settings, int64 n1, int64 n2, const Place& at,
                  const Moments& wave) {
  if (settings.IsOneSided()) {
    if (settings.pre != 0.0) return {2.0 * wave.tot / static_cast<double>(n1 - 1), 0.0};
    return {0.0, 2.0 * wave.tot / static_cast<double>(n2 - 1)};
  }
  if (!settings.IsSymmetric()) return PairLevels(RampOf(n1), RampOf(n2), at, wave);
  const double p = wave.tot / (RampOf(n1).a + RampOf(n2).a);
  return {p, p};
}

/// The ramps are as long as the frame lets them; where their levels are too high, the pulse moves.
std::optional<Attempt> PrepareRamps(const Pulse& pulse, const Settings& settings,
                                    Shortage* shortage) {
  const int64 N = pulse.N();
  const Moments unshifted = MomentsOf(pulse);
  const LevelLimits limits(pulse, settings);
  const auto tryShift = [&](int64 shift) -> std::optional<Attempt> {
    const Place at = pulse.at.Shifted(shift);
    const int64 n1 = at.iPS;
    const int64 n2 = N - 1 - at.iPE;
    if (at.iS < 1 || at.iE > N - 2 || n1 < 1 || n2 < 1) return std::nullopt;
    const Moments wave{unshifted.tot, unshifted.M + static_cast<double>(shift) * unshifted.tot};
    const Levels p = RampLevels(settings, n1, n2, at, wave);
    const Levels pm = limits.Shifted(shift);
    if (shortage != nullptr && shift == 0) {
      const auto length = [](double area, double level) {  // that a ramp of this level takes
        return level > 0.0 ? LengthOf(2.0 * area / level + 1.0) : 0;
      };
      const bool both = settings.pre != 0.0 && settings.post != 0.0;
      const double area = both ? wave.tot / 2.0 : wave.tot;
      *shortage = {pm.pre, pm.post, {length(area, pm.pre), n1}, {length(area, pm.post), n2}};
    }
    const auto accepted = [](double level, double limit, double scale) {
      return scale == 0.0 ? level == 0.0 : level >= 0.0 && level <= 0.98 * limit;
    };
    if (!accepted(p.pre, pm.pre, settings.pre) || !accepted(p.post, pm.post, settings.post))
      return std::nullopt;
    Attempt attempt{ShiftedBy(pulse, shift), {}, {p.pre, p.post, 0.0, 0.0}, shift};
    const double r = MainSum(attempt.pulse) / pulse.A;
    attempt.drawn.sharePre = p.pre * RampOf(n1).a / r;
    attempt.drawn.sharePost = p.post * RampOf(n2).a / r;
    Combine(settings, &attempt);
    return attempt;
  };
  for (int64 distance = 0; distance < N; ++distance) {
    if (auto attempt = tryShift(distance)) return attempt;
    if (distance == 0) continue;
    if (auto attempt = tryShift(-distance)) return attempt;
  }
  return std::nullopt;
}

// ---- Cosines -----------------------------------------------------------------------------------

int64 FlatOf(double f, int64 t) {
  return LengthOf(static_cast<double>(t) * f + 0.5);  // rounded half up
}

/// The pulse of a taper t as it is drawn; the taper's samples sum up to t / 2 + 1 / 2.
UnitPulse CosineOf(double f, int64 t) {
  const int64 flat = FlatOf(f, t);
  const auto F = static_cast<double>(flat);
  const auto T = static_cast<double>(t);
  double b = F * (F - 1.0) / 2.0;
  for (int64 k = 0; k < t; ++k) {
    const auto phase = static_cast<double>(k) * common::kPi / T;
    b += (F + static_cast<double>(k)) * (0.5 + 0.5 * std::cos(phase));
  }
  return {F + T / 2.0 + 0.5, b};
}

/// The least taper with which a pulse of level P has the area x.
int64 LeastTaper(double f, double x, double P) {
  const double t = std::ceil((x / P - 0.5) / (f + 0.5));
  return t < 1.0 ? 1 : LengthOf(t);
}

struct CosinePlan {
  int64 t1, t2;  // tapers; 0 where there is no pulse
  Levels p;
};

/// Tapers and levels below the given limits; nothing if they grow beyond all frames.
std::optional<CosinePlan> PlanCosines(const Pulse& pulse, const Settings& settings, double f,
                                      const Levels& P, const Moments& wave) {
  const auto levelOf = [&](double area, int64 t) { return area / CosineOf(f, t).a; };
  const int64 longest = 4 * pulse.N();
  if (settings.IsOneSided()) {
    const int64 t = LeastTaper(f, wave.tot, settings.pre != 0.0 ? P.pre : P.post);
    if (t >= longest) return std::nullopt;
    const double p = levelOf(wave.tot, t);
    return settings.pre != 0.0 ? CosinePlan{t, 0, {p, 0.0}} : CosinePlan{0, t, {0.0, p}};
  }
  if (settings.IsSymmetric()) {
    const int64 t = LeastTaper(f, wave.tot / 2.0, std::min(P.pre, P.post));
    if (t >= longest) return std::nullopt;
    const double p = levelOf(wave.tot / 2.0, t);
    return CosinePlan{t, t, {p, p}};
  }
  const double share = std::sqrt(P.pre) / (std::sqrt(P.pre) + std::sqrt(P.post));  // of least swing
  int64 t1 = LeastTaper(f, wave.tot * share, P.pre);
  int64 t2 = LeastTaper(f, wave.tot * (1.0 - share), P.post);
  while (t1 + t2 < longest) {
    const Levels p = PairLevels(CosineOf(f, t1), CosineOf(f, t2), pulse.at, wave);
    const bool fits1 = p.pre <= P.pre;
    const bool fits2 = p.post <= P.post;
    if (fits1 && fits2) {
      if (!(p.pre >= 0.0 && p.post >= 0.0)) return std::nullopt;
      return CosinePlan{t1, t2, p};
    }
    const auto longer = [](int64 t, double ratio) {
      return std::max(t + 1, LengthOf(static_cast<double>(t) * std::sqrt(ratio)));
    };
    if (!fits1) t1 = longer(t1, p.pre / P.pre);
    if (!fits2) t2 = longer(t2, p.post / P.post);
  }
  return std::nullopt;
}

std::optional<Attempt> PrepareCosines(const Pulse& pulse, const Settings& settings, double f,
                                      Shortage* shortage) {
  const int64 N = pulse.N();
  const Moments wave = MomentsOf(pulse);
  const Levels pm = LevelLimits(pulse, settings).Shifted(0);
  const int64 room1 = pulse.at.iPS - 1;
  const int64 room2 = N - 2 - pulse.at.iPE;
  if (shortage != nullptr) {  // what the levels ask for, should there be no plan at all
    const bool both = settings.pre != 0.0 && settings.post != 0.0;
    const auto needed = [&](double level) -> int64 {
      if (level == 0.0) return 0;
      const int64 t = LeastTaper(f, both ? wave.tot / 2.0 : wave.tot, 0.95 * level);
      return t + FlatOf(f, t);
    };
    *shortage = {pm.pre, pm.post, {needed(pm.pre), room1}, {needed(pm.post), room2}};
  }
  for (const double phi : {0.95, 0.98}) {
    const Levels P{phi * pm.pre, phi * pm.post};
    const auto plan = PlanCosines(pulse, settings, f, P, wave);
    if (!plan) continue;
    const int64 need1 = plan->t1 + FlatOf(f, plan->t1);
    const int64 need2 = plan->t2 + FlatOf(f, plan->t2);
    if (shortage != nullptr) {
      shortage->pre.needed = need1;
      shortage->post.needed = need2;
    }
    // Where a side is too short, the pulse moves by just the deficit; a side without a pulse needs
    // no room.
    const int64 deficit1 = need1 != 0 ? std::max<int64>(0, need1 - room1) : 0;
    const int64 deficit2 = need2 != 0 ? std::max<int64>(0, need2 - room2) : 0;
    if (deficit1 != 0 && deficit2 != 0) continue;
    const int64 shift = deficit1 - deficit2;
    const Place at = pulse.at.Shifted(shift);
    const bool fits1 = need1 == 0 || need1 <= room1 + shift;
    const bool fits2 = need2 == 0 || need2 <= room2 - shift;
    if (!fits1 || !fits2 || at.iS < 1 || at.iE > N - 2) continue;

    Attempt attempt{ShiftedBy(pulse, shift), {}, {}, shift};
    const double r = MainSum(attempt.pulse) / pulse.A;
    // With this share the drawing comes to exactly the taper that was planned.
    const auto share = [&](int64 t, double p) {
      return static_cast<double>(t) * (f + 0.5) * p / r;
    };
    attempt.drawn = {plan->p.pre, plan->p.post, share(plan->t1, plan->p.pre),
                     share(plan->t2, plan->p.post)};
    Combine(settings, &attempt);
    return attempt;
  }
  return std::nullopt;
}

}  // namespace

Pulse ShiftedBy(const Pulse& pulse, int64 shift) {
  Pulse shifted(pulse);
  shifted.at = pulse.at.Shifted(shift);
  for (Wave* array : {&shifted.wave, &shifted.upper, &shifted.lower})
    ShiftWithHold(array->data(), array->size(), shift);
  return shifted;
}

std::optional<Attempt> PrepareDrawn(const Pulse& pulse, const Settings& settings,
                                    Shortage* shortage) {
  switch (settings.type) {
    case CWaveDefClassical::CMP_RAMP:
      return PrepareRamps(pulse, settings, shortage);
    case CWaveDefClassical::CMP_COSINE:
      return PrepareCosines(pulse, settings, 0.0, shortage);
    case CWaveDefClassical::CMP_FLAT_COSINE:
      return PrepareCosines(pulse, settings, 1.0, shortage);
    default:
      return std::nullopt;
  }
}

}  // namespace qarv::wave_def::compensation
