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

#include "common/numeric/constants.h"
#include "compensation/drawing.h"
#include "compensation/half_cycle.h"
#include "compensation/moves.h"
#include "compensation/preparation.h"
#include "compensation/tolerance.h"

namespace qarv::wave_def::compensation {

namespace {

std::size_t At(int64 i) { return static_cast<std::size_t>(i); }

/// How much of the tolerance a plan spends.
struct Spending {
  double f, kappa, mu;
  bool under = false;  // whether moves may reach under all of the pulses
  bool operator==(const Spending&) const = default;
};

// What chose each number is in docs/compensation.md, "Its numbers".

// The level of the pulses with OptRatLevel 0 and 1, and how far the main pulse is lowered with 1.
constexpr double kNominalLevel = 0.9;
constexpr double kHighestLevel = 0.97;
constexpr double kDeepestLowering = 0.96;
// The flat part of the pulses, and that of the shortest ones.  [taper]
constexpr double kFlat = 4.0;
constexpr double kLongestFlat = 12.0;
/// The share of the limits that pulses and moves may take together: the rest is for the reshaping.
constexpr double kPlanned = 0.985;
/// The largest stroke of a plan that counts as centred.  [swing]
constexpr double kCentred = 0.53;
/// How much more the side of the displacement that is not asked for counts.
constexpr double kWrongSide = 1.02;
/// The moves of each side that are paired.
constexpr int kPairedMoves = 2;
/// How far moves reach under the taper of a pulse.  [taper]
constexpr std::array kReaches{0.0, 0.35, 0.7, 1.0};
/// The share of their length in which moves accelerate.
constexpr std::array kMoveParts{0.5};
/// The intervals of lengths at which the search ends: samples, and parts of the frame to compare
/// places.
constexpr int64 kFinest = 4;
constexpr int64 kCoarsest = 64;
/// The steps in which a frame is searched for a place.
constexpr int64 kPlaces = 16;
/// How much of the way to where both sides lack as much a pulse goes for each share of its need
/// that it lacks.
constexpr double kWayForLack = 2.0;

/// The spending that OptRatLevel asks for, straight between the two ends.
Spending SpendingOf(const Settings& s) {
  const double rho = s.optRatLevel >= 0.0 ? std::min(s.optRatLevel, 1.0) : 0.0;  // a NaN is 0
  const auto blend = [rho](double x0, double x1) { return x0 + (x1 - x0) * rho; };
  return {kFlat, blend(kNominalLevel, kHighestLevel), blend(0.0, kDeepestLowering)};
}

/// The shortest pulses for as much of the main pulse as is asked for.
Spending ShortestOf(const Spending& asked) {
  return {kLongestFlat, kHighestLevel, asked.mu, asked.under};
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

/// Lengths, how far from home they leave the table, and the stroke that they take.
struct Trial {
  Lengths lengths;
  double miss;  // 0: home
  double stroke;
  bool IsBetterThan(const Trial& other) const {
    return std::pair(miss, stroke) < std::pair(other.miss, other.stroke);
  }
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
        under_(spending.under),
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
    limits_ = std::move(limits_).Scaled(kPlanned);
    pre_ = Side(std::move(pre), spending.f);
    post_ = Side(std::move(post), spending.f);
  }

  /// The lengths with the least stroke; nothing if the table cannot be brought home.
  /// @param[in] coarse  down to 1 / 64 of the frame only, to compare places
  std::optional<Trial> Search(bool coarse) const {
    if (settings_.IsSymmetric()) {
      const int64 n = pre_.LengthFor(T_ / 2.0);
      if (n > pre_.Longest()) return std::nullopt;
      const double s = T_ / 2.0 / pre_.AreaOf(n);
      return IfHome(Try({n, n, s, s}));
    }
    // From the shortest pre pulse that leaves the post side what it can take, to the one that takes
    // all.
    const double most = post_.AreaOf(post_.Longest());
    int64 low = most < T_ ? pre_.LengthFor(T_ - most) : 0;
    int64 high = std::min(pre_.LengthFor(T_), pre_.Longest());
    if (low > high) return std::nullopt;
    Trial best{{}, HUGE_VAL, HUGE_VAL};
    const auto trial = [&](int64 n1) {
      const Trial tried = Try(LengthsFor(n1));
      if (tried.IsBetterThan(best)) best = tried;
      return tried;
    };
    const int64 finest = coarse ? std::max(kFinest, pulse_.N() / kCoarsest) : kFinest;
    while (high - low > finest) {
      const int64 third = (high - low) / 3;
      const Trial shorter = trial(low + third);
      if (trial(high - third).IsBetterThan(shorter)) {
        low += third;
      } else {
        high -= third;
      }
    }
    for (const int64 n1 : {low, (low + high) / 2, high}) trial(n1);
    return IfHome(best);
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
    plan.centred = found.stroke <= kCentred * found.swing;
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
    return {.lead = settings_.HasSideTest() ? kWrongSide : 1.0, .top = kPairedMoves, .gentle = 0.0};
  }

  /// Moves that lie clear of the pulse of n samples, or reach under its taper or all of it.
  std::vector<Move> MovesBeside(const Side& side, int64 n, int64 room) const {
    const auto clear = static_cast<double>(room - n);
    const auto t = static_cast<double>(n > 0 ? side.TaperOf(n) : 0);
    std::array<double, kReaches.size() + 1> lengths{};
    for (std::size_t k = 0; k < kReaches.size(); ++k) lengths[k] = clear + kReaches[k] * t;
    if (under_) lengths.back() = static_cast<double>(room);
    return MakeMoves(lengths, kMoveParts, room);
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

  Trial Try(const Lengths& n) const {
    if (n.n1 > pre_.Longest() || n.n2 > post_.Longest()) return {n, HUGE_VAL, HUGE_VAL};
    ++work_->attempts;
    work_->samples += lowered_.size();
    WithPulses(n, &comp_);
    const MoveSet moves = MovesFor(n);
    const MovesFound found = BestMoves(comp_, limits_, moves, Rules(), &memory_);
    return {n, found.home ? 0.0 : found.miss, found.stroke};
  }
  static std::optional<Trial> IfHome(const Trial& trial) {
    return trial.miss == 0.0 ? std::optional(trial) : std::nullopt;
  }

  const Pulse& pulse_;
  const Settings& settings_;
  Work* work_;
  bool under_;
  Wave lowered_;
  Limits limits_;
  double T_ = 0.0;
  Side pre_, post_;
  mutable Wave comp_;  // what the trials share
  mutable MoveMemory memory_;
};

/// Whether the pulse lies in the middle of its frame with the same scales on both sides, so that
/// equal pulses have nothing to gain elsewhere.
bool IsCentred(const Pulse& pulse, const Settings& settings) {
  const int64 pre = pulse.at.iPS;
  const int64 post = pulse.N() - 1 - pulse.at.iPE;
  return std::abs(pre - post) <= 1 && std::fabs(settings.pre) == std::fabs(settings.post);
}

/// The places that may be asked for: shifts first .. last.  [sample]
struct Places {
  int64 first, last;
  bool Has(int64 shift) const { return first <= shift && shift <= last; }
};

/// Those with a sample at least before and after the pulse and its rests.
Places PlacesInFrame(const Pulse& pulse) {
  const Place& at = pulse.at;
  return {1 - std::min(at.iS, at.iPS), pulse.N() - 2 - std::max(at.iE, at.iPE)};
}

/// The least |limits| of one side.
struct SideLimits {
  double lo, both;  // of the lower limits; of either
};
SideLimits LeastLimits(const Limits& limits, int64 first, int64 last) {
  SideLimits least{HUGE_VAL, HUGE_VAL};
  for (int64 i = first; i <= last; ++i) {
    least.lo = std::min(least.lo, -limits.lo[At(i)]);
    least.both = std::min({least.both, -limits.lo[At(i)], limits.hi[At(i)]});
  }
  return least;
}

/// The room that a side asks for.  [sample]
struct Rooms {
  int64 pre, post;
};

/// What the shortest equal pulses, and the moves that centre them, take of either side: the same in
/// every frame.
///
///   V, L   half the area of the lowered pulse, and the mean level of the pulses that cancel it
///   d      displacement from where the pre pulse begins; each pulse adds V^2 / 2 L to it
///   h      what a move has to travel, over sqrt(2 pi h / limit) samples
Rooms RoomsOfEqualPulses(const Pulse& pulse, const Settings& settings, const Spending& asked) {
  const int64 N = pulse.N();
  const int64 first = std::clamp<int64>(pulse.at.iPS, 0, N);
  const int64 last = std::clamp<int64>(pulse.at.iPE, -1, N - 1);
  const Limits limits = LimitsInForce(pulse, settings.pre, settings.post, kLeastLimit);
  const SideLimits pre = LeastLimits(limits, 0, first - 1);
  const SideLimits post = LeastLimits(limits, last + 1, N - 1);
  // A side without limits has those of its scale.
  const double widest =
      pulse.A * std::max(std::min(std::fabs(settings.pre), std::fabs(settings.post)), kLeastLimit);
  const Spending shortest = ShortestOf(asked);
  const Wave lowered = LoweredPulse(pulse, shortest.mu);
  double area = 0.0;
  for (const double v : lowered) area += v;
  if (!(area > 0.0)) return {0, 0};  // nothing to cancel
  const double V = area / 2.0;
  const double L = shortest.kappa * std::min({pre.lo, post.lo, widest}) * (shortest.f + 0.5) /
                   (shortest.f + 1.0);
  const double drop = V * V / (2.0 * L);
  double v = -V;
  double d = -drop;
  double least = d;
  for (int64 i = first; i <= last; ++i) {
    v += lowered[At(i)];
    d += v;
    least = std::min(least, d);
  }
  const double end = d + drop;
  const double h1 = std::max(0.0, -(least + std::max(0.0, end)) / 2.0);
  const double h2 = std::max(0.0, h1 + end);
  const auto room = [&](double h, double limit) {
    return LengthOf(std::ceil(V / L + std::sqrt(common::kTwoPi * h / limit)));
  };
  return {room(h1, pre.both), room(h2, post.both)};
}

/// The shift that the want of room asks for.
///
/// Pulses that may differ leave the larger share to the side that has the room; equal ones cannot,
/// and the place has to give way: to where both sides lack as much, and all the way where one lacks
/// half of its need or more, but no further than it lacks.  While a frame grows around its pulse,
/// each of these stays or shrinks.
int64 WantedShift(const Pulse& pulse, const Settings& settings, const Spending& asked) {
  if (!settings.IsSymmetric() || IsCentred(pulse, settings)) return 0;
  const Rooms needed = RoomsOfEqualPulses(pulse, settings, asked);
  const int64 lackPre = needed.pre - (pulse.at.iPS - 1);
  const int64 lackPost = needed.post - (pulse.N() - 2 - pulse.at.iPE);
  const int64 balance = (lackPre - lackPost) / 2;
  const auto partOf = [](int64 way, int64 lack, int64 need) {
    if (lack <= 0) return int64{0};
    const double share = kWayForLack * static_cast<double>(lack) / static_cast<double>(need);
    return std::min(lack, LengthOf(static_cast<double>(way) * std::min(share, 1.0)));
  };
  return balance > 0 ? partOf(balance, lackPre, needed.pre)
                     : -partOf(-balance, lackPost, needed.post);
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

/// Whether the plan with the shortest pulses comes home from a place; where it does not, none does.
bool ComesHome(const Pulse& pulse, const Settings& settings, const Spending& asked, int64 shift,
               Work* work) {
  const Pulse placed = ShiftedBy(pulse, shift);
  return Planner(placed, settings, ShortestOf(asked), work).Search(true).has_value();
}

/// The place nearest to `from` from where the table comes home; from `from` itself it does not.
/// Looked for in steps of N / 16, and then to the sample.
std::optional<int64> NearestHome(const Pulse& pulse, const Settings& settings,
                                 const Spending& asked, int64 from, Work* work) {
  const Places places = PlacesInFrame(pulse);
  const auto comesHome = [&](int64 shift) {
    return places.Has(shift) && ComesHome(pulse, settings, asked, shift, work);
  };
  const int64 step = std::max<int64>(1, pulse.N() / kPlaces);
  const int64 towardsMiddle = pulse.at.iPS + pulse.at.iPE < pulse.N() ? 1 : -1;
  for (int64 distance = step; distance < places.last - places.first + step; distance += step) {
    for (const int64 side : {towardsMiddle, -towardsMiddle}) {
      int64 home = std::clamp(from + side * distance, places.first, places.last);
      if (!comesHome(home)) continue;
      int64 out = home - side * step;
      while (std::abs(home - out) > 1) {
        const int64 middle = out + (home - out) / 2;
        (comesHome(middle) ? home : out) = middle;
      }
      return home;
    }
  }
  return std::nullopt;
}

/// Offers the plans in one place, from what is asked for to the one with the shortest pulses; those
/// that do not centre their stroke last, by their stroke.  None spends more of the main pulse.
/// @return whether there was any
bool OfferPlansAt(const Pulse& pulse, const Settings& settings, const Spending& asked, int64 shift,
                  const std::function<bool(Attempt)>& accept, Work* work) {
  const std::array<Spending, 3> ladder{
      {asked, {kFlat, kHighestLevel, asked.mu, asked.under}, ShortestOf(asked)}};
  bool any = false;
  std::optional<bool> canComeHome;  // asked only once a plan has failed
  std::vector<Plan> aside;
  for (auto rung = ladder.begin(); rung != ladder.end(); ++rung) {
    if (std::find(ladder.begin(), rung, *rung) != rung) continue;
    auto plan = PlanAt(pulse, settings, *rung, shift, work);
    if (!plan) {
      if (!canComeHome) canComeHome = ComesHome(pulse, settings, asked, shift, work);
      if (!*canComeHome) break;
      continue;
    }
    any = true;
    if (!plan->centred) {
      aside.push_back(std::move(*plan));
    } else if (accept(std::move(plan->attempt))) {
      return true;
    }
  }
  std::stable_sort(aside.begin(), aside.end(),
                   [](const Plan& a, const Plan& b) { return a.stroke < b.stroke; });
  for (Plan& plan : aside) {
    if (accept(std::move(plan.attempt))) break;
  }
  return any;
}

}  // namespace

void TryOptimised(const Pulse& pulse, const Settings& settings,
                  const std::function<bool(Attempt)>& accept, Work* work) {
  const Places places = PlacesInFrame(pulse);
  if (places.first > places.last) return;
  const bool stays = settings.IsSymmetric() && IsCentred(pulse, settings);
  if (stays && !places.Has(0)) return;
  Spending asked = SpendingOf(settings);
  const int64 wanted = std::clamp(WantedShift(pulse, settings, asked), places.first, places.last);
  const auto offer = [&] {
    if (OfferPlansAt(pulse, settings, asked, wanted, accept, work)) return true;
    if (stays) return false;
    const auto home = NearestHome(pulse, settings, asked, wanted, work);
    return home && OfferPlansAt(pulse, settings, asked, *home, accept, work);
  };
  if (offer() || !settings.IsSymmetric()) return;
  // Equal pulses are as low as the tighter side has them.  On the other one moves have room under
  // them, which is for frames without enough beside them.
  asked.under = true;
  offer();
}

}  // namespace qarv::wave_def::compensation
