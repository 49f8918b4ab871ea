// The search for the extremes of responses between samples.
//
// All samples are visited in lanes, in blocks.  A response rises above its samples by less than a
// margin that follows from the block's extremes; blocks that can hold an extreme of the spectrum
// are kept with the state before them until more of the shock is known.  Where many are left, as
// of a shock that grows, they are looked at closely, in lanes again: cubics through samples and
// slopes tell every top to within its fourth derivative over 384.  What is left then is few, and
// few intervals in it, whose tops are found in closed form.
#include "srs/spectrum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "common/numeric/constants.h"
#include "srs/banks.h"
#include "srs/base_motion.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

namespace {

constexpr std::size_t kBlock = 64;       // [interval]
constexpr double kRounded = 1.0 + 1e-6;  // margins are no tighter than their rounding

/// One oscillator.
struct Line {
  std::size_t index;  // among the frequencies
  Oscillator oscillator;
  Drive drive;
};

/// By how much responses can leave the range of their samples in a block, from that range, the
/// largest response, and the largest input and change of input in an interval.
struct MarginRules {
  Lanes byRange{}, byLevel{}, byX{}, byChange{};

  void Set(std::size_t lane, const Oscillator& o, const Drive& drive, double scale) {
    const auto of = [&](double range, double level, double x, double change) {
      const double rise = drive.level * change / scale;
      const double force = (drive.level * x + drive.change * change) / scale;
      const double slope = (range + o.constant * (force + o.h2 * level)) / o.impulse;
      return kRounded * o.Margin(slope, force + o.h2 * level + o.s2 * slope, rise);
    };
    byRange[lane] = of(1, 0, 0, 0);
    byLevel[lane] = of(0, 1, 0, 0);
    byX[lane] = of(0, 0, 1, 0);
    byChange[lane] = of(0, 0, 0, 1);
  }
};

/// The largest absolute values in a block.
struct BlockPeaks {
  double x = 0.0;
  double change = 0.0;
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

/// The extremes of a block, as far as they have been seen, and how far the responses can go beyond.
struct BlockTrack {
  Lanes high{}, low{}, margin{};
};

/// A block that may hold an extreme of some of a bank's lines.
struct Candidate {
  std::size_t first, last;  // its intervals are those from first to before last
  BankState before;
  BlockTrack track;
  Lanes within;  // how far the responses can go beyond the ends of an interval
  bool seenClosely = false;
};

/// Takes a bank through a block.
template <class Bank>
QARV_LANES_INLINE void Walk(const Bank& bank, std::size_t first, std::size_t last, BankState* state,
                            BlockTrack* track) {
  BankState s = *state;
  Lanes high;
  Lanes low;
  for (std::size_t k = 0; k < kLanes; ++k) {
    high[k] = low[k] = bank.Response(k, first, s.a[k], s.b[k]);
  }
  for (std::size_t i = first; i < last; ++i) {
    for (std::size_t k = 0; k < kLanes; ++k) {
      bank.Step(k, i, s.a[k], s.b[k]);
      const double y = bank.Response(k, i + 1, s.a[k], s.b[k]);
      high[k] = y > high[k] ? y : high[k];
      low[k] = y < low[k] ? y : low[k];
    }
  }
  *state = s;
  track->high = high;
  track->low = low;
}

/// The margins of a block.
QARV_LANES_INLINE void SetMargins(const MarginRules& rules, const BlockPeaks& peaks,
                                  BlockTrack* block) {
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double high = block->high[k];
    const double low = block->low[k];
    const double level = high > -low ? high : -low;
    block->margin[k] = rules.byRange[k] * (high - low) + rules.byLevel[k] * level +
                       rules.byX[k] * peaks.x + rules.byChange[k] * peaks.change;
  }
}

/// Whether any response of a block can go beyond `best`.
QARV_LANES_INLINE bool AnyBeyond(const BlockTrack& best, const BlockTrack& block) {
  std::uint64_t beyond = 0;
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double high = block.high[k] + block.margin[k];
    const double low = block.low[k] - block.margin[k];
    beyond |= (high > best.high[k] ? 1U : 0U) | (low < best.low[k] ? 1U : 0U);
  }
  return beyond != 0;
}

QARV_LANES_INLINE bool AnyAbove(const Lanes& a, const Lanes& b) {
  std::uint64_t above = 0;
  for (std::size_t k = 0; k < kLanes; ++k) above |= a[k] > b[k] ? 1U : 0U;
  return above != 0;
}

/// Raises `best` to what the responses of a block reach at least.
QARV_LANES_INLINE void RaiseTo(const Lanes& high, const Lanes& low, BlockTrack* best) {
  for (std::size_t k = 0; k < kLanes; ++k) {
    best->high[k] = high[k] > best->high[k] ? high[k] : best->high[k];
    best->low[k] = low[k] < best->low[k] ? low[k] : best->low[k];
  }
}

/// A response that has died away would be carried on in numbers with which processors are slow.
QARV_LANES_INLINE void Silence(BankState* state) {
  constexpr double kSilent = 1e-200;
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double a = state->a[k];
    const double b = state->b[k];
    const bool silent = a < kSilent && -a < kSilent && b < kSilent && -b < kSilent;
    state->a[k] = silent ? 0.0 : a;
    state->b[k] = silent ? 0.0 : b;
  }
}

/// How far a cubic through two points and their slopes can be from the response, and from which
/// slope on there is no turn that the ends do not show.
struct CubicRules {
  Lanes h2{}, s2{}, forceByX{}, forceByChange{}, riseByChange{}, rounding{};

  void Set(std::size_t lane, const Oscillator& o, const Drive& drive, double scale) {
    h2[lane] = o.h2;
    s2[lane] = o.s2;
    forceByX[lane] = drive.level / scale;
    forceByChange[lane] = drive.change / scale;
    riseByChange[lane] = drive.level / scale;
    rounding[lane] = 1e-13 / o.impulse;
  }
};

/// Of each lane: one interval with a turn, by its ends; an old one where the first slope is 0.
struct Turns {
  Lanes y0{}, y1{}, s0{}, s1{};
};

QARV_LANES_INLINE bool AnyTurn(const Turns& turns) {
  std::uint64_t any = 0;  // sums of doubles would be added one by one
  for (std::size_t k = 0; k < kLanes; ++k) any |= std::bit_cast<std::uint64_t>(turns.s0[k]);
  return any != 0;
}

/// What a closer look at a block has shown.
struct CloseTrack {
  Lanes high{}, low{};
  Lanes steepest{};  // of the slopes
  Lanes flattest{};  // the larger slope of an interval without a turn
  Lanes missed{};    // turns
  Lanes sampleHigh{}, sampleLow{};
  BankState after{};
};

/// Both are read before one is chosen, which leaves no branch in a loop over lanes.
QARV_LANES_INLINE double Choose(bool first, double a, double b) { return first ? a : b; }
QARV_LANES_INLINE double Higher(double a, double b) { return a > b ? a : b; }
QARV_LANES_INLINE double Lower(double a, double b) { return a < b ? a : b; }

/// The tops and bottoms of the cubics.
QARV_LANES_INLINE void Turn(const Turns& turns, CloseTrack* track) {
  constexpr double kTiny = 1e-300;  // above 0 without a turn
  for (std::size_t k = 0; k < kLanes; ++k) {
    // A bottom is the top of what is mirrored.
    const double sign = std::copysign(1.0, turns.s0[k]);
    const double p = sign * turns.s0[k];
    const double q = sign * turns.s1[k];
    const double y = sign * turns.y0[k];
    const double rise = sign * turns.y1[k] - y;
    // y + p t + b t^2 + c t^3
    const double b = 3.0 * rise - 2.0 * p - q;
    const double c = p + q - 2.0 * rise;
    const double square = b * b - 3.0 * c * p;
    const double t = p / (std::sqrt(std::fabs(square)) - b + kTiny);
    const double turn = sign * (y + t * (p + t * (b + t * c)));
    // Without a turn this is an old sample, which changes nothing.
    track->high[k] = Higher(turn, track->high[k]);
    track->low[k] = Lower(turn, track->low[k]);
  }
}

/// Walks through a block again, this time with the slopes at its samples.  Of each window one turn
/// is looked into, and further ones are missed: it should be as long as the fastest lane's half
/// cycle.
template <std::size_t kWindow, class Bank>
QARV_LANES_INLINE void WalkClosely(const Bank& bank, const BlockTrack& best, const Candidate& c,
                                   CloseTrack* track) {
  constexpr double kSteep = 1e300;
  BankState s = c.before;
  Lanes y0, s0, above, under;
  CloseTrack t;
  Turns turns;
  const auto step = [&](std::size_t k, std::size_t i, double* y, double* slope) QARV_LANES {
    const double a = s.a[k];
    const double b = s.b[k];
    bank.Step(k, i, s.a[k], s.b[k]);
    *y = bank.Response(k, i, a, b);
    *slope = bank.Slope(k, i, a, b, s.a[k], s.b[k]);
  };
  for (std::size_t k = 0; k < kLanes; ++k) {
    above[k] = best.high[k] - c.within[k];
    under[k] = best.low[k] + c.within[k];
    t.flattest[k] = kSteep;
    t.missed[k] = 0.0;
    step(k, c.first, &y0[k], &s0[k]);
    turns.y0[k] = turns.y1[k] = y0[k];
    t.high[k] = t.low[k] = t.sampleHigh[k] = t.sampleLow[k] = y0[k];
    t.steepest[k] = std::fabs(s0[k]);
  }
  for (std::size_t first = c.first; first < c.last; first += kWindow) {
    const std::size_t last = first + kWindow < c.last ? first + kWindow : c.last;
    for (std::size_t k = 0; k < kLanes; ++k) turns.s0[k] = 0.0;
    for (std::size_t i = first; i < last; ++i) {
      if (i + 1 == c.last) t.after = s;
      for (std::size_t k = 0; k < kLanes; ++k) {
        double y1;
        double s1;
        step(k, i + 1, &y1, &s1);
        const double before = y0[k];
        const double slope = s0[k];
        const double reach =
            Higher(Higher(before, y1) - above[k], under[k] - Lower(before, y1));  // if above 0
        const double size = Higher(std::fabs(slope), std::fabs(s1));
        const double turning = Lower(reach, -(slope * s1));
        const double flat = Choose(slope * s1 < 0.0, kSteep, size);
        t.flattest[k] = Lower(Choose(reach > 0.0, flat, kSteep), t.flattest[k]);
        t.steepest[k] = Higher(size, t.steepest[k]);
        t.sampleHigh[k] = Higher(y1, t.sampleHigh[k]);
        t.sampleLow[k] = Lower(y1, t.sampleLow[k]);
        const double kept0 = turns.y0[k];
        const double kept1 = turns.y1[k];
        const double keptSlope0 = turns.s0[k];
        const double keptSlope1 = turns.s1[k];
        t.missed[k] += Choose(turning > 0.0, std::fabs(keptSlope0), 0.0);
        turns.y0[k] = Choose(turning > 0.0, before, kept0);
        turns.y1[k] = Choose(turning > 0.0, y1, kept1);
        turns.s0[k] = Choose(turning > 0.0, slope, keptSlope0);
        turns.s1[k] = Choose(turning > 0.0, s1, keptSlope1);
        y0[k] = y1;
        s0[k] = s1;
      }
    }
    if (AnyTurn(turns)) Turn(turns, &t);
  }
  for (std::size_t k = 0; k < kLanes; ++k) {
    t.high[k] = Higher(t.sampleHigh[k], t.high[k]);
    t.low[k] = Lower(t.sampleLow[k], t.low[k]);
  }
  *track = t;
}

/// Puts the cubics' extremes and error bound in the place of a block's, where no turn was missed;
/// raises `sure` to what they reach at least.
QARV_LANES_INLINE void Tighten(const CubicRules& rules, const BlockPeaks& peaks,
                               const CloseTrack& seen, BlockTrack* block, BlockTrack* sure) {
  Lanes high;
  Lanes low;
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double h2 = rules.h2[k];
    const double s2 = rules.s2[k];
    const double level = seen.high[k] > -seen.low[k] ? seen.high[k] : -seen.low[k];
    // At the samples; each derivative, from the second one on, is a free response with the next
    // one as its slope, and stays below the sum of both.
    const double second = rules.forceByX[k] * peaks.x + rules.forceByChange[k] * peaks.change +
                          h2 * level + s2 * seen.steepest[k];
    const double third = rules.riseByChange[k] * peaks.change + s2 * second + h2 * seen.steepest[k];
    const double fourth = s2 * third + h2 * second;
    const double fifth = s2 * fourth + h2 * third;
    const double error = kRounded / 384.0 * (fourth + fifth) + rules.rounding[k] * (level + second);
    // Between ends that both rise or both fall, slopes differ from a straight line by less than
    // t (1 - t) / 2 of the third derivative.
    const double flat = 0.5 * kRounded * (third + fourth) + rules.rounding[k] * (level + second);
    const double margin = block->margin[k];
    const double clear = Choose(seen.missed[k] > 0.0, -1.0, seen.flattest[k] - flat);
    const double better = Choose(clear > 0.0, margin - error, -1.0);
    const double oldHigh = block->high[k];
    const double oldLow = block->low[k];
    block->high[k] = Choose(better > 0.0, seen.high[k], oldHigh);
    block->low[k] = Choose(better > 0.0, seen.low[k], oldLow);
    block->margin[k] = Choose(better > 0.0, error, margin);
    high[k] = seen.high[k] - error;
    low[k] = seen.low[k] + error;
  }
  RaiseTo(high, low, sure);
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
      cubic_.Set(k, lines[k].oscillator, lines[k].drive, bank_.Scale(k));
    }
  }

  void Run() {
    for (std::size_t first = 0; first < base_.end; first += kBlock) {
      const std::size_t last = std::min(first + kBlock, base_.end);
      Candidate c{first, last, state_, {}, {}};
      if (!(eager_ ? PassClosely(&c) : Pass(&c))) continue;
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

  QARV_LANES_INLINE bool Arrive(Candidate* c) {
    Silence(&state_);
    SetMargins(rules_, peaks_[c->first / kBlock], &c->track);
    c->within = c->track.margin;
    margin_ = c->within;
    if (!AnyBeyond(sure_, c->track)) return false;
    RaiseTo(c->track.high, c->track.low, &best_);
    RaiseTo(c->track.high, c->track.low, &sure_);
    return true;
  }

  /// The same where a closer look will be needed anyway: one walk instead of two.
  bool PassClosely(Candidate* c) {
    bool beyond = false;
    CloseTrack seen;
    common::RunWith(set_, [&]() QARV_LANES {
      for (std::size_t k = 0; k < kLanes; ++k) c->within[k] = 1.25 * margin_[k];
      const Lanes expected = c->within;
      WalkClosely<kWindow>(bank_, sure_, *c, &seen);
      state_ = seen.after;
      c->track.high = seen.sampleHigh;
      c->track.low = seen.sampleLow;
      beyond = Arrive(c);
      eager_ = beyond;
      if (!beyond || AnyAbove(c->within, expected)) return;
      Tighten(cubic_, peaks_[c->first / kBlock], seen, &c->track, &sure_);
      c->seenClosely = true;
      beyond = AnyBeyond(sure_, c->track);
    });
    work_->looked += c->last - c->first;
    if (beyond && IsCrowded(seen, *c)) eager_ = c->seenClosely = false;
    return beyond;
  }

  bool Beyond(std::size_t k, double high, double low, double margin) const {
    return high + margin > sure_.high[k] || low - margin < sure_.low[k];
  }
  bool Beyond(std::size_t k, const Candidate& c) const {
    return Beyond(k, c.track.high[k], c.track.low[k], c.track.margin[k]);
  }
  void Raise(std::size_t k, double high, double low) {
    best_.high[k] = std::max(best_.high[k], high);
    best_.low[k] = std::min(best_.low[k], low);
    sure_.high[k] = std::max(sure_.high[k], high);
    sure_.low[k] = std::min(sure_.low[k], low);
  }

  void DropSurpassed() {
    std::erase_if(candidates_, [&](const Candidate& c) { return !AnyBeyond(sure_, c.track); });
  }

  /// Drops the candidates that have been surpassed; if too many are left, looks at them closely,
  /// and if still too many are left, into their intervals.
  void Thin() {
    DropSurpassed();
    eager_ = eager_ || candidates_.size() > kMostCandidates * 3 / 4;
    if (candidates_.size() > kMostCandidates / 2) LookClosely();
    if (candidates_.size() > kMostCandidates / 2) Settle();
  }

  bool IsCrowded(const CloseTrack& seen, const Candidate& c) const {
    std::size_t crowded = 0;
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      if (seen.missed[k] > 0.0 && Beyond(k, c)) ++crowded;
    }
    return crowded > kLanes / 4;
  }

  void LookClosely() {
    // From the last one on: the best of a shock that grows.
    for (std::size_t n = candidates_.size(); n-- > 0;) {
      Candidate& c = candidates_[n];
      if (c.seenClosely || !AnyBeyond(sure_, c.track)) continue;
      c.seenClosely = true;
      if (IsCrowded(LookAt<kWindow>(&c), c)) {
        eager_ = false;
        LookAt<1>(&c);
      }
    }
    DropSurpassed();
  }

  template <std::size_t kIntervals>
  CloseTrack LookAt(Candidate* c) {
    CloseTrack seen;
    common::RunWith(set_, [&]() QARV_LANES {
      WalkClosely<kIntervals>(bank_, sure_, *c, &seen);
      Tighten(cubic_, peaks_[c->first / kBlock], seen, &c->track, &sure_);
    });
    work_->looked += c->last - c->first;
    return seen;
  }

  void Settle() {
    LookClosely();
    for (std::size_t n = candidates_.size(); n-- > 0;) {
      const Candidate& c = candidates_[n];
      for (std::size_t k = 0; k < lines_.size(); ++k) {
        if (Beyond(k, c)) Examine(k, c);
      }
    }
    candidates_.clear();
  }

  /// Walks through a block again, and into the intervals that may hold an extreme: first by
  /// bounds, of which the highest leave few intervals for the closed form.
  void Examine(std::size_t k, const Candidate& c) {
    const Oscillator& o = lines_[k].oscillator;
    LaneState from{c.before.a[k], c.before.b[k]};
    double y = bank_.Response(k, c.first, from.a, from.b);
    work_->examined += c.last - c.first;
    for (std::size_t i = c.first; i < c.last; ++i) {
      const LaneState to = Next(k, i, from);
      const double next = bank_.Response(k, i + 1, to.a, to.b);
      const double high = std::max(y, next);
      const double low = std::min(y, next);
      // From rest, in the first interval, a response to a straight line only rises or only falls.
      if (i > 0 && Beyond(k, high, low, c.within[k])) {
        const Arc arc = ArcOf(k, i, from, to);
        const double margin =
            kRounded * o.Margin(std::fabs(arc.slope), std::fabs(o.Bend(arc)), std::fabs(arc.rise));
        if (high + margin > sure_.high[k]) Expect(k, arc, false);
        if (low - margin < sure_.low[k]) Expect(k, -arc, true);
      }
      from = to;
      y = next;
    }
    for (const Top& top : tops_) {
      if (!(top.most > (top.mirrored ? -sure_.low[k] : sure_.high[k]))) continue;
      ++work_->crests;
      const double crest = o.Crest(top.arc);
      Raise(k, top.mirrored ? 0.0 : crest, top.mirrored ? -crest : 0.0);
    }
    tops_.clear();
  }

  /// A top, or a mirrored bottom, that may be an extreme.
  struct Top {
    Arc arc;
    bool mirrored;
    double most;
  };
  void Expect(std::size_t k, const Arc& arc, bool mirrored) {
    const Oscillator::Bounds bounds = lines_[k].oscillator.CrestBounds(arc);
    double& sure = mirrored ? sure_.low[k] : sure_.high[k];
    if (!(bounds.most > (mirrored ? -sure : sure))) return;
    tops_.push_back({arc, mirrored, bounds.most});
    if (mirrored) {
      sure = std::min(sure, -bounds.least);
    } else {
      sure = std::max(sure, bounds.least);
    }
  }

  static constexpr std::size_t kMostCandidates = 64;
  static constexpr std::size_t kWindow = 4;  // [interval]

  common::InstructionSet set_;
  Bank bank_;
  const BaseMotion& base_;
  std::span<const BlockPeaks> peaks_;
  std::span<Line> lines_;
  SearchWork* work_;
  MarginRules rules_;
  CubicRules cubic_;
  BankState state_;
  BlockTrack best_;  // so far, with 0: samples, and tops in closed form
  BlockTrack sure_;  // what the extremes reach at least
  std::vector<Candidate> candidates_;
  std::vector<Top> tops_;
  Lanes margin_{};  // of the last block
  bool eager_ = false;
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
