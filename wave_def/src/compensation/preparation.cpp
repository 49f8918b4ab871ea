// Levels, lengths and place of the compensation pulses of the types that are drawn.
//
//   tot, M     sum of the nominal wave and of i wave[i], over A
//   p          level of a pulse, pm the largest one that the limits allow [ratio to A]
//   a, b       area of a pulse and its first moment about its inner sample, outwards, at level 1
//   t          taper of a pulse [sample], f its flat part as a multiple of the taper
#include "compensation/preparation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "compensation/drawing.h"
#include "numeric/elementary.h"

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
  LevelLimits(const Pulse& pulse, const Settings& settings)
      : pulse_(pulse), settings_(settings), least_(pulse.wave.size(), HUGE_VAL) {
    const int64 N = pulse.N();
    // Both regions have a sample at least: the frame's first and its last one.
    double least = HUGE_VAL;
    for (int64 i = std::clamp<int64>(pulse.at.iPS, 1, N) - 1; i >= 0; --i)
      least_[At(i)] = least = std::min(least, ShareAt(i));
    least = HUGE_VAL;
    for (int64 i = std::clamp<int64>(pulse.at.iPE + 1, 0, N - 1); i < N; ++i)
      least_[At(i)] = least = std::min(least, ShareAt(i));
  }

  /// The limits with everything `shift` samples later: a band that is moved loses the samples that
  /// leave the frame, and repeats its first or last one.  Either region keeps a sample.
  Levels Shifted(int64 shift) const {
    const int64 first = std::max<int64>(-shift, 0);
    const int64 last = pulse_.N() - 1 - std::max<int64>(shift, 0);
    return {Level(settings_.pre, least_[At(first)]), Level(settings_.post, least_[At(last)])};
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
  // The least share of the lower band between a sample and the rest, or between the rest and a
  // sample.
  Wave least_;
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

/// The share of its limit that the level of a ramp may take.
constexpr double kRampSpending = 0.98;

/// What ramps at the limits need of the frame, and what they have.
Shortage RampShortage(const Settings& settings, const Levels& limits, double area, int64 n1,
                      int64 n2) {
  const bool both = settings.pre != 0.0 && settings.post != 0.0;
  const auto needed = [&](double limit) {
    const double level = kRampSpending * limit;
    return level > 0.0 ? LengthOf(std::ceil(2.0 * (both ? area / 2.0 : area) / level + 1.0)) : 0;
  };
  return {limits.pre, limits.post, {needed(limits.pre), n1}, {needed(limits.post), n2}};
}

/// Levels at which ramps fit in a place.
class RampPlaces {
 public:
  RampPlaces(const Pulse& pulse, const Settings& settings)
      : pulse_(pulse), settings_(settings), wave_(MomentsOf(pulse)), limits_(pulse, settings) {}

  /// The least and the largest shift with a sample at least for either ramp.
  int64 First() const { return 1 - std::min(pulse_.at.iS, pulse_.at.iPS); }
  int64 Last() const { return pulse_.N() - 2 - std::max(pulse_.at.iE, pulse_.at.iPE); }

  int64 PreLength(int64 shift) const { return pulse_.at.iPS + shift; }
  int64 PostLength(int64 shift) const { return pulse_.N() - 1 - pulse_.at.iPE - shift; }

  /// The levels in a place, if they are within their limits.
  std::optional<Levels> LevelsAt(int64 shift) const {
    const Moments wave{wave_.tot, wave_.M + static_cast<double>(shift) * wave_.tot};
    const Levels p =
        RampLevels(settings_, PreLength(shift), PostLength(shift), pulse_.at.Shifted(shift), wave);
    const Levels limits = limits_.Shifted(shift);
    const auto accepted = [](double level, double limit, double scale) {
      return scale == 0.0 ? level == 0.0 : level >= 0.0 && level <= kRampSpending * limit;
    };
    const bool fit =
        accepted(p.pre, limits.pre, settings_.pre) && accepted(p.post, limits.post, settings_.post);
    return fit ? std::optional(p) : std::nullopt;
  }

  Shortage ShortageHere() const {
    return RampShortage(settings_, limits_.Shifted(0), wave_.tot, PreLength(0), PostLength(0));
  }

 private:
  const Pulse& pulse_;
  const Settings& settings_;
  Moments wave_;
  LevelLimits limits_;
};

/// The least shift at which ramps fit, and their levels.
struct RampPlan {
  int64 shift;
  Levels p;
};
std::optional<RampPlan> PlanRamps(const RampPlaces& places, const Settings& settings, Work* work) {
  const int64 first = places.First();
  const int64 last = places.Last();
  if (first > last) return std::nullopt;
  const auto levelsAt = [&](int64 shift) {
    ++work->attempts;
    return places.LevelsAt(shift);
  };
  // Equal levels are the same in every place, so that only the want of room moves the pulse; all
  // that further places could change is which part of the bands is still in the frame.
  const int64 nearest = std::clamp<int64>(0, first, last);
  if (settings.IsSymmetric()) {
    const auto p = levelsAt(nearest);
    return p ? std::optional(RampPlan{nearest, *p}) : std::nullopt;
  }
  for (int64 distance = std::abs(nearest); distance <= std::max(-first, last); ++distance) {
    for (const int64 shift : {distance, -distance}) {
      if (shift < first || shift > last) continue;
      if (const auto p = levelsAt(shift)) return RampPlan{shift, *p};
    }
  }
  return std::nullopt;
}

/// The ramps are as long as the frame lets them; where their levels are too high, the pulse moves.
std::optional<Attempt> PrepareRamps(Pulse* nominal, const Settings& settings, Shortage* shortage,
                                    Work* work) {
  const Pulse& pulse = *nominal;
  const RampPlaces places(pulse, settings);
  work->samples += 3 * pulse.wave.size();  // moments and limits
  if (shortage != nullptr) *shortage = places.ShortageHere();
  const auto plan = PlanRamps(places, settings, work);
  if (!plan) return std::nullopt;
  const auto& [shift, p] = *plan;
  const double areaPre = RampOf(places.PreLength(shift)).a;
  const double areaPost = RampOf(places.PostLength(shift)).a;
  Attempt attempt{ShiftedBy(std::move(*nominal), shift), {}, {p.pre, p.post, 0.0, 0.0}, shift};
  const double r = MainSum(attempt.pulse) / attempt.pulse.A;
  attempt.drawn.sharePre = p.pre * areaPre / r;
  attempt.drawn.sharePost = p.post * areaPost / r;
  Combine(settings, &attempt);
  return attempt;
}

// ---- Cosines -----------------------------------------------------------------------------------

/// The shares of their limits that the levels of cosines may take, the next where the first has no
/// room.
constexpr std::array kCosineSpending{0.95, 0.98};

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
    b += (F + static_cast<double>(k)) * (0.5 + 0.5 * common::elementary::Cos(phase));
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
                                      const Levels& P, const Moments& wave, Work* work) {
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
    ++work->attempts;
    work->samples += static_cast<uint64>(t1 + t2);
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

std::optional<Attempt> PrepareCosines(Pulse* nominal, const Settings& settings, double f,
                                      Shortage* shortage, Work* work) {
  const Pulse& pulse = *nominal;
  const int64 N = pulse.N();
  work->samples += 3 * pulse.wave.size();  // moments and limits
  const Moments wave = MomentsOf(pulse);
  const Levels pm = LevelLimits(pulse, settings).Shifted(0);
  const int64 room1 = pulse.at.iPS - 1;
  const int64 room2 = N - 2 - pulse.at.iPE;
  if (shortage != nullptr) {  // what the levels ask for, should there be no plan at all
    const bool both = settings.pre != 0.0 && settings.post != 0.0;
    const auto needed = [&](double level) -> int64 {
      if (level == 0.0) return 0;
      const int64 t =
          LeastTaper(f, both ? wave.tot / 2.0 : wave.tot, kCosineSpending.front() * level);
      return t + FlatOf(f, t);
    };
    *shortage = {pm.pre, pm.post, {needed(pm.pre), room1}, {needed(pm.post), room2}};
  }
  for (const double phi : kCosineSpending) {
    const Levels P{phi * pm.pre, phi * pm.post};
    const auto plan = PlanCosines(pulse, settings, f, P, wave, work);
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

    Attempt attempt{ShiftedBy(std::move(*nominal), shift), {}, {}, shift};
    const double r = MainSum(attempt.pulse) / attempt.pulse.A;
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

Pulse ShiftedBy(Pulse pulse, int64 shift) {
  pulse.at = pulse.at.Shifted(shift);
  for (Wave* array : {&pulse.wave, &pulse.upper, &pulse.lower})
    ShiftWithHold(array->data(), array->size(), shift);
  return pulse;
}

std::optional<Attempt> PrepareDrawn(Pulse* pulse, const Settings& settings, Shortage* shortage,
                                    Work* work) {
  switch (settings.type) {
    case CWaveDefClassical::CMP_RAMP:
      return PrepareRamps(pulse, settings, shortage, work);
    case CWaveDefClassical::CMP_COSINE:
      return PrepareCosines(pulse, settings, 0.0, shortage, work);
    case CWaveDefClassical::CMP_FLAT_COSINE:
      return PrepareCosines(pulse, settings, 1.0, shortage, work);
    default:
      return std::nullopt;
  }
}

}  // namespace qarv::wave_def::compensation
