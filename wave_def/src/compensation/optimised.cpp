// The optimised compensation.
//
//   kappa   level of the pulses, a share of their limits
//   mu      how far the main pulse is lowered towards its lower limit
//   f       flat part of the pulses as a multiple of their taper
//   T       area of the lowered pulse, which the two compensation pulses cancel
//   n1, n2  their lengths [sample]
#include "compensation/optimised.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "compensation/drawing.h"
#include "compensation/half_cycle.h"
#include "compensation/moves.h"
#include "compensation/preparation.h"
#include "compensation/tolerance.h"

namespace qarv::wave_def::compensation {

namespace {

using Def = CWaveDefClassical;
using Std = CWaveDefTolSpecify;

std::size_t At(int64 i) { return static_cast<std::size_t>(i); }

/// How much of the tolerance a plan spends.
struct Spending {
  double f, kappa, mu;
  bool operator==(const Spending&) const = default;
};

/// Lowering of the main pulse with OptRatLevel 0: capped and narrow bands leave less.
double LeastLowering(const Settings& s) {
  const bool base23 = s.base == Std::BASE_STD_2 || s.base == Std::BASE_STD_3;
  switch (s.shape) {
    case wave_def_sub::HALF_SINE:
      if (s.kind == Def::TOL_FIXED_7 || s.kind == Def::TOL_FIXED_8 || s.kind == Def::TOL_FIXED_9 ||
          base23 || s.base == Std::BASE_STD_4) {
        return 0.3;
      }
      return s.kind == Def::TOL_FIXED_5 || s.base == Std::BASE_STD_5 ? 0.4 : 0.5;
    case wave_def_sub::TERMINAL_PEAK_SAWTOOTH:
      if (s.kind == Def::TOL_FIXED_5 || s.kind == Def::TOL_FIXED_7 || s.kind == Def::TOL_FIXED_8 ||
          base23 || s.base == Std::BASE_STD_5) {
        return 0.3;
      }
      return 0.4;
    case wave_def_sub::TRAPEZOID:
      return 0.2;
    case wave_def_sub::USER_TRAPEZOID:
      return 0.25;
    case wave_def_sub::TRIANGLE:
      return 0.5;
    case wave_def_sub::HAVERSINE:
      return 0.6;
  }
  return 0.0;
}

/// The spending that OptRatLevel asks for, between near nominal (0) and least stroke (1).
Spending SpendingOf(const Settings& s) {
  const double rho = s.optRatLevel >= 0.0 ? std::min(s.optRatLevel, 1.0) : 0.0;  // a NaN is 0
  const auto blend = [rho](double x0, double x1) { return x0 + (x1 - x0) * rho; };
  const bool steep = s.shape == wave_def_sub::TRAPEZOID || s.shape == wave_def_sub::USER_TRAPEZOID;
  return {blend(1.0, 4.0), blend(s.HasSideTest() || steep ? 0.9 : 0.75, 0.97),
          blend(LeastLowering(s), 0.96)};
}

/// The main pulse lowered towards its lower limit: its top stays, and it still rises to one peak
/// and falls.
Wave LoweredPulse(const Pulse& pulse, double mu) {
  const double* const first = pulse.wave.data() + pulse.at.iS;
  const double* const last = pulse.wave.data() + pulse.at.iE;
  const int64 peak = std::max_element(first, last + 1) - pulse.wave.data();
  // The lower band, no higher than the wave, with its notches filled towards the peak.
  Wave floor(pulse.wave.size());
  for (int64 i = pulse.at.iS; i <= pulse.at.iE; ++i) {
    const double lower = pulse.lower[At(i)];
    floor[At(i)] = lower == kNoLimit ? pulse.wave[At(i)] : std::min(lower, pulse.wave[At(i)]);
  }
  for (int64 i = pulse.at.iS + 1; i <= peak; ++i)
    floor[At(i)] = std::max(floor[At(i)], floor[At(i - 1)]);
  for (int64 i = pulse.at.iE - 1; i > peak; --i)
    floor[At(i)] = std::max(floor[At(i)], floor[At(i + 1)]);
  Wave m(pulse.wave);
  for (int64 i = pulse.at.iS; i <= pulse.at.iE; ++i) {
    const double x = std::clamp(pulse.wave[At(i)] / pulse.A, 0.0, 1.0);
    const double x2 = x * x;
    const double x4 = x2 * x2;
    const double x8 = x4 * x4;
    m[At(i)] -= mu * (1.0 - x8 * x8) * std::max(0.0, pulse.wave[At(i)] - floor[At(i)]);
  }
  return m;
}

/// The compensation pulse of one side, along the profile of its limits.
class Side {
 public:
  Side() = default;
  /// @param[in] profile  limits from the inner end outwards
  Side(Wave profile, double f) : profile_(std::move(profile)), f_(f), sums_(profile_.size() + 1) {
    for (std::size_t j = 0; j < profile_.size(); ++j) sums_[j + 1] = sums_[j] + profile_[j];
  }

  int64 Longest() const { return static_cast<int64>(profile_.size()); }
  int64 TaperOf(int64 n) const {
    const int64 t = LengthOf(static_cast<double>(n) / (f_ + 1.0) + 0.5);  // rounded half up
    return std::min(n, std::max<int64>(1, t));
  }
  double AreaOf(int64 n) const {
    if (n <= 0) return 0.0;
    const int64 t = TaperOf(n);
    double area = sums_[At(n - t)];
    HalfCycle taper(static_cast<double>(t));
    for (int64 j = n - t; j < n; ++j, taper.Next()) {
      area += profile_[At(j)] * (0.5 + 0.5 * taper.Cos());
    }
    return area;
  }
  /// The least length with at least this area; one more than the longest, if there is none.
  int64 LengthFor(double area) const {
    int64 low = 0;
    int64 high = Longest() + 1;
    while (high - low > 1) {
      const int64 middle = low + (high - low) / 2;
      (AreaOf(middle) >= area ? high : low) = middle;
    }
    return high;
  }
  /// Calls f(j, value) for a pulse of n samples, from its inner end outwards, scaled by s.
  template <class F>
  void ForEachSample(int64 n, double s, F f) const {
    if (n <= 0) return;
    const int64 t = TaperOf(n);
    for (int64 j = 0; j < n - t; ++j) f(j, s * profile_[At(j)]);
    HalfCycle taper(static_cast<double>(t));
    for (int64 j = n - t; j < n; ++j, taper.Next())
      f(j, s * profile_[At(j)] * (0.5 + 0.5 * taper.Cos()));
  }
  /// The least value over the flat part; over the first sample, where there is no flat part.
  double LevelOf(int64 n) const {
    if (n <= 0) return 0.0;
    const auto flat = std::max<int64>(1, n - TaperOf(n));
    return *std::min_element(profile_.data(), profile_.data() + flat);
  }

 private:
  Wave profile_;
  double f_ = 0.0;
  Wave sums_;  // of the profile
};

/// Two pulses: lengths and scales.
struct Lengths {
  int64 n1, n2;
  double s1, s2;
};

/// Lengths that bring the table home, and the stroke that they take.
struct Trial {
  Lengths lengths;
  double stroke;
};

/// One plan that was built: the attempt and how good it is.
struct Plan {
  Attempt attempt;
  double stroke;  // largest |displacement|
  bool centred;
};

/// Finds the plan of one pulse in one place.
class Planner {
 public:
  Planner(const Pulse& pulse, const Settings& settings, const Spending& spending, Work* work)
      : pulse_(pulse),
        settings_(settings),
        work_(work),
        lowered_(LoweredPulse(pulse, spending.mu)),
        limits_(LimitsInForce(pulse, settings.pre, settings.post, kLeastLimit)) {
    for (const double v : lowered_) T_ += v;
    const auto profile = [&](int64 first, int64 step, int64 count) {
      Wave out;
      out.reserve(At(std::max<int64>(count, 0)));
      for (int64 j = 0; j < count; ++j) {
        // A side without limits has those of its scale.
        const double widest =
            pulse.A * std::max(std::fabs(step < 0 ? settings.pre : settings.post), kLeastLimit);
        out.push_back(spending.kappa * std::min(-limits_.lo[At(first + step * j)], widest));
      }
      return out;
    };
    // The frame's first and last sample stay free.
    Wave pre = profile(pulse.at.iPS - 1, -1, std::min(pulse.at.iPS, pulse.N()) - 1);
    Wave post = profile(pulse.at.iPE + 1, 1, pulse.N() - 2 - std::max<int64>(pulse.at.iPE, -1));
    if (settings.IsSymmetric()) {
      const std::size_t n = std::min(pre.size(), post.size());
      pre.resize(n);
      post.resize(n);
      for (std::size_t j = 0; j < n; ++j) pre[j] = post[j] = std::min(pre[j], post[j]);
    }
    limits_ = std::move(limits_).Scaled(0.985);
    pre_ = Side(std::move(pre), spending.f);
    post_ = Side(std::move(post), spending.f);
  }

  /// The lengths with the least stroke; nothing if the table cannot be brought home.
  /// @param[in] coarse  down to N / 64 samples only, to compare places
  std::optional<Trial> Search(bool coarse) const {
    if (settings_.IsSymmetric()) {
      const int64 n = pre_.LengthFor(T_ / 2.0);
      if (n > pre_.Longest()) return std::nullopt;
      const double s = T_ / 2.0 / pre_.AreaOf(n);
      return Try({n, n, s, s});
    }
    // From the shortest pre pulse that leaves the post side what it can take, to the one that takes
    // all.
    const double most = post_.AreaOf(post_.Longest());
    int64 low = most < T_ ? pre_.LengthFor(T_ - most) : 0;
    int64 high = std::min(pre_.LengthFor(T_), pre_.Longest());
    if (low > high) return std::nullopt;
    std::optional<Trial> best;
    const auto strokeOf = [&](int64 n1) {
      const auto trial = Try(LengthsFor(n1));
      if (trial && (!best || trial->stroke < best->stroke)) best = trial;
      return trial ? trial->stroke : HUGE_VAL;
    };
    const int64 finest = coarse ? std::max<int64>(4, pulse_.N() / 64) : 4;
    while (high - low > finest) {
      const int64 third = (high - low) / 3;
      if (strokeOf(low + third) <= strokeOf(high - third)) {
        high -= third;
      } else {
        low += third;
      }
    }
    for (const int64 n1 : {low, (low + high) / 2, high}) strokeOf(n1);
    return best;
  }

  /// The attempt of the lengths that Search has found, but for its pulse.
  Plan Finish(const Trial& trial) const {
    const Lengths& n = trial.lengths;
    Plan plan{{}, trial.stroke, false};
    WithPulses(n, &plan.attempt.comp);
    const MoveSet moves = MovesFor(n);
    const MovesFound found = BestMoves(plan.attempt.comp, limits_, moves, Rules(), &memory_);
    AddMoves(found, &plan.attempt.comp);
    const double S = SampleSum(pulse_.wave.data(), static_cast<uint64>(pulse_.at.iS),
                               static_cast<uint64>(pulse_.at.iE));
    plan.attempt.drawn = {n.s1 * pre_.LevelOf(n.n1) / pulse_.A,
                          n.s2 * post_.LevelOf(n.n2) / pulse_.A, n.s1 * pre_.AreaOf(n.n1) / S,
                          n.s2 * post_.AreaOf(n.n2) / S};
    plan.centred = found.stroke <= 0.53 * found.swing;
    return plan;
  }

 private:
  Lengths LengthsFor(int64 n1) const {
    const double area1 = pre_.AreaOf(n1);
    if (area1 > T_) return {n1, 0, T_ / area1, 0.0};
    const int64 n2 = post_.LengthFor(T_ - area1);
    return {n1, n2, 1.0, n2 != 0 && n2 <= post_.Longest() ? (T_ - area1) / post_.AreaOf(n2) : 0.0};
  }

  MoveRules Rules() const {
    return {.lead = settings_.HasSideTest() ? 1.02 : 1.0, .top = 2, .gentle = 0.0};
  }

  /// Moves that lie clear of the pulse of n samples, or reach under its taper.
  static std::vector<Move> MovesBeside(const Side& side, int64 n, int64 room) {
    const auto clear = static_cast<double>(room - n);
    const auto t = static_cast<double>(n > 0 ? side.TaperOf(n) : 0);
    const std::array lengths{clear, 0.7 * clear, clear + 0.35 * t, clear + 0.7 * t, clear + t};
    constexpr std::array kParts{0.5};
    return MakeMoves(lengths, kParts, room);
  }
  MoveSet MovesFor(const Lengths& n) const {
    return {MovesBeside(pre_, n.n1, pulse_.at.iPS - 1),
            MovesBeside(post_, n.n2, pulse_.N() - 2 - pulse_.at.iPE)};
  }

  /// The lowered pulse with its compensation.
  void WithPulses(const Lengths& n, Wave* comp) const {
    comp->assign(lowered_.begin(), lowered_.end());
    pre_.ForEachSample(n.n1, n.s1,
                       [&](int64 j, double v) { (*comp)[At(pulse_.at.iPS - 1 - j)] -= v; });
    post_.ForEachSample(n.n2, n.s2,
                        [&](int64 j, double v) { (*comp)[At(pulse_.at.iPE + 1 + j)] -= v; });
  }

  std::optional<Trial> Try(const Lengths& n) const {
    if (n.n1 > pre_.Longest() || n.n2 > post_.Longest()) return std::nullopt;
    ++work_->attempts;
    work_->samples += lowered_.size();
    WithPulses(n, &comp_);
    const MoveSet moves = MovesFor(n);
    const MovesFound found = BestMoves(comp_, limits_, moves, Rules(), &memory_);
    if (!found.home) return std::nullopt;
    return Trial{n, found.stroke};
  }

  const Pulse& pulse_;
  const Settings& settings_;
  Work* work_;
  Wave lowered_;
  Limits limits_;
  double T_ = 0.0;
  Side pre_, post_;
  mutable Wave comp_;  // what the trials share
  mutable MoveMemory memory_;
};

/// The places that may be asked for: shifts first .. last.  [sample]
struct Places {
  int64 first, last;
  bool Has(int64 shift) const { return first <= shift && shift <= last; }
  /// Than the pulse's own.
  bool HasOthers() const { return first <= last && !(first == 0 && last == 0); }
};

/// Those with a sample at least before and after the pulse and its rests.
Places PlacesInFrame(const Pulse& pulse) {
  const Place& at = pulse.at;
  return {1 - std::min(at.iS, at.iPS), pulse.N() - 2 - std::max(at.iE, at.iPE)};
}

/// The samples of a side that a compensation can make use of: a pulse that takes all of the area at
/// the least level there, and as much again for moves that centre it.
int64 UsefulRoom(const Limits& limits, double area, int64 first, int64 last) {
  constexpr double kPulseAndMoves = 4.0;  // 4 / 3 with the longest taper, and moves of 5 / 4
  double least = HUGE_VAL;
  for (int64 i = first; i <= last; ++i) least = std::min(least, -limits.lo[At(i)]);
  return LengthOf(kPulseAndMoves * area / least);
}

/// Whether the pulse lies in the middle of its frame with the same scales on both sides, so that
/// equal pulses have nothing to gain elsewhere.
bool IsCentred(const Pulse& pulse, const Settings& settings) {
  const int64 pre = pulse.at.iPS;
  const int64 post = pulse.N() - 1 - pulse.at.iPE;
  return std::abs(pre - post) <= 1 && std::fabs(settings.pre) == std::fabs(settings.post);
}

/// The places that the want of room can ask for: a longer frame asks for less, and one with room on
/// both sides for none but the pulse's own.
Places PlacesFor(const Pulse& pulse, const Settings& settings, const Spending& spending) {
  const Place& at = pulse.at;
  const int64 N = pulse.N();
  const Places inFrame = PlacesInFrame(pulse);
  if (settings.IsSymmetric() && IsCentred(pulse, settings))
    return {std::max<int64>(inFrame.first, 0), std::min<int64>(inFrame.last, 0)};
  const Limits limits =
      LimitsInForce(pulse, settings.pre, settings.post, kLeastLimit).Scaled(spending.kappa);
  double area = 0.0;
  for (const double v : pulse.wave) area += v;
  const int64 pre = UsefulRoom(limits, area, 0, std::min(at.iPS, N) - 1);
  const int64 post = UsefulRoom(limits, area, std::max<int64>(at.iPE + 1, 0), N - 1);
  return {std::max(inFrame.first, std::min<int64>(N - 2 - at.iPE - post, 0)),
          std::min(inFrame.last, std::max<int64>(pre - (at.iPS - 1), 0))};
}

/// The plan in one place.
std::optional<Plan> PlanAt(const Pulse& pulse, const Settings& settings, const Spending& spending,
                           int64 shift, Work* work) {
  Pulse placed = ShiftedBy(pulse, shift);
  const Planner planner(placed, settings, spending, work);
  const auto trial = planner.Search(false);
  if (!trial) return std::nullopt;
  Plan plan = planner.Finish(*trial);
  plan.attempt.pulse = std::move(placed);
  plan.attempt.shift = shift;
  return plan;
}

/// The stroke that a place gives, roughly; infinite where there is no plan.
double StrokeAt(const Pulse& pulse, const Settings& settings, const Spending& spending, int64 shift,
                Work* work) {
  const Pulse placed = ShiftedBy(pulse, shift);
  const auto trial = Planner(placed, settings, spending, work).Search(true);
  return trial ? trial->stroke : HUGE_VAL;
}

/// The plan in the place of least stroke; of nearly equal ones the least shift.
std::optional<Plan> PlanAnywhere(const Pulse& pulse, const Settings& settings,
                                 const Spending& spending, const Places& places, Work* work) {
  const int64 N = pulse.N();
  std::vector<std::pair<int64, double>> tried;
  const auto strokeAt = [&](int64 shift) {
    for (const auto& [known, stroke] : tried) {
      if (known == shift) return stroke;
    }
    const double stroke =
        places.Has(shift) ? StrokeAt(pulse, settings, spending, shift, work) : HUGE_VAL;
    tried.emplace_back(shift, stroke);
    return stroke;
  };
  int64 step = std::max<int64>(1, N / 16);
  int64 best = std::clamp<int64>(0, places.first, places.last);
  for (int64 k = -7; k <= 7; ++k) {
    const int64 shift = std::clamp(k * step, places.first, places.last);
    if (strokeAt(shift) < strokeAt(best)) best = shift;
  }
  if (strokeAt(best) == HUGE_VAL) return std::nullopt;
  while (step > std::max<int64>(1, N / 256)) {
    step /= 2;
    for (const int64 shift : {best - step, best + step}) {
      if (strokeAt(shift) < strokeAt(best)) best = shift;
    }
  }
  const double nearly = 1.03 * strokeAt(best);
  for (const auto& [shift, stroke] : tried) {
    if (stroke <= nearly && std::abs(shift) < std::abs(best)) best = shift;
  }
  return PlanAt(pulse, settings, spending, best, work);
}

}  // namespace

void TryOptimised(const Pulse& pulse, const Settings& settings,
                  const std::function<bool(Attempt)>& accept, Work* work) {
  const Spending asked = SpendingOf(settings);
  const double kappa = asked.kappa;
  const double mu = asked.mu;
  const Spending most{12.0, 0.97, 0.96};
  struct Rung {
    Spending spending;
    bool anywhere;
  };
  const std::array<Rung, 12> ladder{{
      {asked, false},
      {{4.0, kappa, mu}, false},
      {{4.0, 0.97, mu}, false},
      {{12.0, 0.97, mu}, false},
      {asked, true},
      {{4.0, kappa, mu}, true},
      {{4.0, 0.97, mu}, true},
      {{12.0, 0.97, mu}, true},
      {{4.0, 0.97, 0.96}, false},
      {most, false},
      {{4.0, 0.97, 0.96}, true},
      {most, true},
  }};
  const Places inFrame = PlacesInFrame(pulse);
  if (inFrame.first > inFrame.last) return;
  std::optional<Places> wanted;
  const auto places = [&]() -> const Places& {
    if (!wanted) wanted = PlacesFor(pulse, settings, asked);
    return *wanted;
  };
  // Where not even the plan that spends most comes home, none does.  Asked only once a plan has
  // failed.
  std::optional<bool> canComeHome[2];
  const auto isVain = [&](bool anywhere) {
    auto& can = canComeHome[anywhere];
    if (!can) {
      can = anywhere ? PlanAnywhere(pulse, settings, most, places(), work).has_value()
                     : PlanAt(pulse, settings, most, 0, work).has_value();
    }
    return !*can;
  };
  std::vector<Plan> aside;  // plans that are not centred
  bool failed[2] = {false, false};
  for (std::size_t i = 0; i < ladder.size(); ++i) {
    const Spending& spending = ladder[i].spending;
    const bool anywhere = ladder[i].anywhere;
    const auto same = [&](const Rung& r) {
      return r.spending == spending && r.anywhere == anywhere;
    };
    if (std::any_of(ladder.begin(), ladder.begin() + static_cast<std::ptrdiff_t>(i), same))
      continue;
    if (anywhere ? !places().HasOthers() : !inFrame.Has(0)) continue;
    if (failed[anywhere] && isVain(anywhere)) continue;
    auto plan = anywhere ? PlanAnywhere(pulse, settings, spending, places(), work)
                         : PlanAt(pulse, settings, spending, 0, work);
    failed[anywhere] = !plan;
    if (!plan) continue;
    if (!plan->centred) {
      aside.push_back(std::move(*plan));
    } else if (accept(std::move(plan->attempt))) {
      return;
    }
  }
  std::stable_sort(aside.begin(), aside.end(),
                   [](const Plan& a, const Plan& b) { return a.stroke < b.stroke; });
  for (Plan& plan : aside) {
    if (accept(std::move(plan.attempt))) return;
  }
}

}  // namespace qarv::wave_def::compensation
