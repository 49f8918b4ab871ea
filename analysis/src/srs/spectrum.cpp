// The search for the extremes of responses between samples.
//
// All samples are visited in lanes, in blocks.  A response rises above its samples by less than a
// margin that follows from the block's extremes; blocks that can hold an extreme of the spectrum
// are kept with the state before them until more of the shock is known.  What is left is looked at
// closely, in lanes again; where many blocks are left, as of a burst, theirs is the only walk.  The
// tops that it shows are found by bounds and closed forms, those of a line together.
//
// A top's height depends on its own interval alone, and none is left out that could be the highest:
// the order of the search and the lines beside it change no bit.
#include "srs/spectrum.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/numeric/constants.h"
#include "srs/banks.h"
#include "srs/base_motion.h"
#include "srs/blocks.h"
#include "srs/oscillator.h"
#include "srs/tops.h"

namespace qarv::analysis {

namespace {

/// One oscillator.
struct Line {
  std::size_t index;  // among the frequencies
  Oscillator oscillator;
  Drive drive;
};

std::vector<BlockPeaks> PeaksOf(const BaseMotion& base) {
  std::vector<BlockPeaks> peaks;
  for (std::size_t first = 0; first < base.end; first += kBlock) {
    BlockPeaks p;
    for (std::size_t i = first; i < std::min(first + kBlock, base.end); ++i) {
      p.x = std::max({p.x, std::fabs(base.acceleration[i]), std::fabs(base.acceleration[i + 1])});
      p.change = std::max(p.change, std::fabs(base.change[i + 1]));
    }
    peaks.push_back(p);
  }
  return peaks;
}

/// A bank, its lines, and the walk through the shock.
template <class Bank>
class Search {
 public:
  Search(common::InstructionSet set, const Bank& bank, const BaseMotion& base,
         std::span<const BlockPeaks> peaks, std::span<Line> lines, SearchWork* work)
      : set_(set), bank_(bank), base_(base), peaks_(peaks), lines_(lines), work_(work) {
    for (std::size_t k = 0; k < lines.size(); ++k) {
      bank_.Set(k, lines[k].oscillator, lines[k].drive);
      rules_.Set(k, lines[k].oscillator, lines[k].drive, bank_.Scale(k));
      turnRules_.Set(k, lines[k].oscillator);
    }
  }

  void Run() {
    for (std::size_t first = 0; first < base_.end; first += kBlock) {
      const std::size_t last = std::min(first + kBlock, base_.end);
      Candidate c{first, last, state_, {}};
      if (eager_ > 0) {
        PassClosely(&c);
        continue;
      }
      if (!Pass(&c)) continue;
      candidates_.push_back(c);
      if (candidates_.size() == kMostCandidates) Thin();
    }
    Settle();
  }

  SrsExtremes Primary(std::size_t k) const {
    return {best_.high[k] * bank_.Scale(k), best_.low[k] * bank_.Scale(k)};
  }

  /// The shock is over at its last point: the response is free from there on.
  SrsExtremes Residual(std::size_t k) const {
    const Oscillator& o = lines_[k].oscillator;
    const LaneState from{state_.a[k], state_.b[k]};
    const Arc end = ArcOf(k, base_.end, from, Next(k, base_.end, from));
    const SrsExtremes free = FreeExtremes(end.y, end.slope / o.h, o.zeta);
    return {free.positive * bank_.Scale(k), free.negative * bank_.Scale(k)};
  }

 private:
  LaneState Next(std::size_t k, std::size_t i, LaneState s) const {
    bank_.Step(k, i, s.a, s.b);
    return s;
  }
  Arc ArcOf(std::size_t k, std::size_t i, const LaneState& from, const LaneState& to) const {
    return bank_.ArcOf(lines_[k].oscillator, lines_[k].drive, k, i, from, to);
  }

  /// Takes the bank through a block; whether it may hold an extreme.
  bool Pass(Candidate* c) {
    bool beyond = false;
    common::RunWith(set_, [&]() QARV_LANES {
      Walk(bank_, c->first, c->last, &state_, &c->track);
      beyond = Arrive(c);
    });
    return beyond;
  }

  /// At the end of a block: whether it may hold an extreme.
  QARV_LANES_INLINE bool Arrive(Candidate* c) {
    Silence(&state_);
    SetMargins(rules_, peaks_[c->first / kBlock], &c->track);
    if (!AnyBeyond(sure_, c->track)) return false;
    RaiseTo(c->track.high, c->track.low, &best_);
    RaiseTo(c->track.high, c->track.low, &sure_);
    return true;
  }

  /// Pass, where a closer look will be needed anyway: one walk instead of two.
  void PassClosely(Candidate* c) {
    bool beyond = false;
    common::RunWith(set_, [&]() QARV_LANES {
      WalkClosely(bank_, turnRules_, sure_, *c, &look_);
      state_ = look_.after;
      c->track.high = look_.high;
      c->track.low = look_.low;
      beyond = Arrive(c);
    });
    work_->looked += c->last - c->first;
    eager_ = beyond ? eager_ - 1 : 0;
    if (beyond) TakeTurns(*c);
  }

  /// Drops the candidates that have been surpassed; if many are left, looks at them closely.
  void Thin() {
    std::erase_if(candidates_, [&](const Candidate& c) { return !AnyBeyond(sure_, c.track); });
    if (candidates_.size() < kMostCandidates / 2) return;
    const std::size_t most = kMostCandidates / 8 * kLanes / 2;
    LookClosely();
    // If not, later blocks surpass earlier ones, and it pays to know them.
    eager_ = turns_ > most ? 8 * kMostCandidates : 0;
  }

  void LookClosely() {
    // From the last one on: the best of a shock that grows.
    for (std::size_t n = candidates_.size(); n-- > 0;) {
      const Candidate& c = candidates_[n];
      if (!AnyBeyond(sure_, c.track)) continue;
      common::RunWith(set_, [&]() QARV_LANES { WalkClosely(bank_, turnRules_, sure_, c, &look_); });
      work_->looked += c.last - c.first;
      if (n + 1 == kMostCandidates / 8) turns_ = 0;
      TakeTurns(c);
      if (n + 1 == candidates_.size()) Climb();
    }
    candidates_.clear();
  }

  void Settle() {
    LookClosely();
    Climb();
  }

  /// The heights of all tops that have been found.
  void Climb() {
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      TakeArches(k);
      for (const bool mirrored : {false, true}) Climb(k, mirrored);
    }
  }

  /// Goes through the turns that a closer look has shown.
  void TakeTurns(const Candidate& c) {
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      // From rest, in the first interval, a response to a straight line only rises or only falls.
      std::uint64_t turns = look_.turns[k] & (c.first == 0 ? ~std::uint64_t{1} : ~std::uint64_t{0});
      Arches& arches = arches_[k];
      turns_ += static_cast<std::size_t>(std::popcount(turns));
      for (; turns != 0; turns &= turns - 1) {
        const auto n = static_cast<std::size_t>(std::countr_zero(turns));
        const double slope = look_.slope[n][k];
        const double next = look_.slope[n + 1][k];
        if (slope * next < 0.0) {
          arches.Add(look_.y[n][k], slope, look_.y[n + 1][k], next);
        } else {
          Unfold(k, look_.y[n][k], slope, look_.y[n + 1][k], next);
        }
        if (arches.size == kTogether) TakeArches(k);
      }
    }
  }

  void TakeArches(std::size_t k) {
    Arches& arches = arches_[k];
    if (arches.size == 0) return;
    common::RunWith(set_, [&]() QARV_LANES { Bound(lines_[k].oscillator, arches, &bounds_); });
    work_->examined += arches.size;
    for (std::size_t j = 0; j < arches.size; ++j)
      RaiseSure(k, arches.mirrored[j], bounds_.least[j]);
    for (std::size_t j = 0; j < arches.size; ++j) {
      const bool mirrored = arches.mirrored[j];
      if (!(bounds_.most[j] > Sure(k, mirrored))) continue;
      Tops& tops = tops_[k][mirrored ? 1 : 0];
      tops.Add(arches, bounds_, j);
      if (tops.size < kTogether) continue;
      tops.KeepAbove(Sure(k, mirrored));
      if (tops.size > kTogether / 2) Climb(k, mirrored);
    }
    arches.size = 0;
  }

  /// Of one line.
  void Climb(std::size_t k, bool mirrored) {
    Tops& tops = tops_[k][mirrored ? 1 : 0];
    tops.KeepAbove(Sure(k, mirrored));
    if (tops.size == 0) return;
    const Oscillator& o = lines_[k].oscillator;
    Heights heights;
    common::RunWith(set_, [&]() QARV_LANES { analysis::Climb(o, tops, &heights); });
    work_->crests += tops.size;
    for (std::size_t j = 0; j < tops.size; ++j) {
      const bool sure = heights.sure[j] != 0.0;
      Raise(k, mirrored,
            sure ? heights.top[j]
                 : o.Crest(o.ArcOf(tops.y[j], tops.slope[j], heights.bend[j], heights.third[j])));
    }
    tops.size = 0;
  }

  /// An interval between slopes of the same sign, which may hide a top and a bottom.
  void Unfold(std::size_t k, double y0, double slope0, double y1, double slope1) {
    const Oscillator& o = lines_[k].oscillator;
    const double lead = y1 - y0 - slope0;
    const double turn = slope1 - slope0;
    const Oscillator::BendRule& rule = o.bendRule;
    const Arc arc = o.ArcOf(y0, slope0, rule.bendByLead * lead + rule.bendByTurn * turn,
                            rule.thirdByLead * lead + rule.thirdByTurn * turn);
    for (const bool mirrored : {false, true}) {
      ++work_->crests;
      Raise(k, mirrored, o.Crest(mirrored ? -arc : arc));
    }
  }

  double Sure(std::size_t k, bool mirrored) const {
    return mirrored ? -sure_.low[k] : sure_.high[k];
  }
  void RaiseSure(std::size_t k, bool mirrored, double height) {
    if (!(height > Sure(k, mirrored))) return;
    (mirrored ? sure_.low[k] : sure_.high[k]) = mirrored ? -height : height;
  }
  void Raise(std::size_t k, bool mirrored, double height) {
    RaiseSure(k, mirrored, height);
    double& best = mirrored ? best_.low[k] : best_.high[k];
    best = mirrored ? std::min(best, -height) : std::max(best, height);
  }

  static constexpr std::size_t kMostCandidates = 64;

  common::InstructionSet set_;
  Bank bank_;
  const BaseMotion& base_;
  std::span<const BlockPeaks> peaks_;
  std::span<Line> lines_;
  SearchWork* work_;
  MarginRules rules_;
  TurnRules turnRules_;
  BankState state_;
  BlockTrack best_;  // so far, with 0
  BlockTrack sure_;  // what the extremes reach at least
  std::vector<Candidate> candidates_;
  CloseLook look_;
  std::array<Arches, kLanes> arches_;
  Bounds bounds_;
  std::array<std::array<Tops, 2>, kLanes> tops_;  // of each line; the second are mirrored bottoms
  std::size_t turns_ = 0;
  std::size_t eager_ = 0;  // so many blocks are walked through closely at once
};

SrsExtremes Times(const SrsExtremes& e, double factor) {
  const auto of = [&](double y) { return y == 0.0 ? 0.0 : y * factor; };
  if (factor < 0.0) return {of(e.negative), of(e.positive)};
  return {of(e.positive), of(e.negative)};
}

}  // namespace

std::vector<SrsPoint> CalcSrsWith(common::InstructionSet set, std::span<const double> shock,
                                  double fsamp, std::span<const double> frequencies, double zeta,
                                  SrsResponse response, SearchWork* work) {
  SearchWork uncounted;
  if (work == nullptr) work = &uncounted;
  const BaseMotion base(shock);
  const std::vector<BlockPeaks> peaks = PeaksOf(base);
  std::vector<SrsPoint> points;
  std::vector<Line> soft;
  std::vector<Line> stiff;
  for (const double f : frequencies) {
    const Oscillator o(common::kTwoPi * f / fsamp, zeta);
    const bool isSoft = o.h * static_cast<double>(base.end) <= common::kTwoPi;
    (isSoft ? soft : stiff).push_back({points.size(), o, DriveOf(o, response)});
    points.push_back({f, {}, {}});
  }
  const auto run = [&](const auto& bank, std::span<Line> lines) {
    for (std::size_t first = 0; first < lines.size(); first += kLanes) {
      const auto some = lines.subspan(first, std::min(kLanes, lines.size() - first));
      Search search(set, bank, base, peaks, some, work);
      search.Run();
      for (std::size_t k = 0; k < some.size(); ++k) {
        const double unit = UnitOf(some[k].oscillator, response, fsamp) * base.unit;
        points[some[k].index].primary = Times(search.Primary(k), unit);
        points[some[k].index].residual = Times(search.Residual(k), unit);
      }
    }
  };
  run(StiffBank(&base), stiff);
  if (soft.empty()) return points;
  const BaseMotion::Travel travel = base.Integrate();
  run(SoftBank(&base, &travel), soft);
  return points;
}

}  // namespace qarv::analysis
