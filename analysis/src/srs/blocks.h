// A bank of oscillators over a block of intervals, in lanes: the walk from sample to sample, how
// far its responses can go beyond their samples, and a closer look at the tops between them.
//
// The closer look walks with the slopes at the samples too.  Where they change their sign between
// two samples, a cubic through both ends tells the top to within 1/384 of the fourth derivative.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "numeric/instruction_set.h"
#include "srs/banks.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

inline constexpr std::size_t kBlock = 64;       // [interval]
inline constexpr double kRounded = 1.0 + 1e-6;  // margins are no tighter than their rounding

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

}  // namespace qarv::analysis
