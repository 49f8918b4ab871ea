// A bank of oscillators over a block of intervals, in lanes: the walk from sample to sample, how
// far its responses can go beyond their samples, and a closer look at where they turn between them.
#pragma once

#include <array>
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
    const double byBend = kRounded * o.MarginByBend();
    const auto of = [&](double range, double level, double x, double change) {
      const double force = (drive.level * x + drive.change * change) / scale;
      const double push = force + o.h2 * level;
      const double first = (range + o.constant * push) / o.impulse;  // slopes at an interval's ends
      const double second = std::fabs(o.slopeKept) * first + o.impulse * push;
      return byBend * (push + o.s2 * (first > second ? first : second));
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

/// What a closer look has shown of a block: the responses and their slopes at its points, and, a
/// bit for each, the intervals that may hold a higher top or a lower bottom than the best.
struct CloseLook {
  std::array<Lanes, kBlock + 1> y, slope;
  std::array<std::uint64_t, kLanes> turns;
  Lanes high, low;  // of the samples
  BankState after;
};

QARV_LANES_INLINE double Higher(double a, double b) { return a > b ? a : b; }

/// Oscillator::TurnRule of each lane.
struct TurnRules {
  Lanes byTurn{}, byLean{}, leanest{};

  void Set(std::size_t lane, const Oscillator& o) {
    const Oscillator::TurnRule rule = o.TurnRuleOf();
    byTurn[lane] = kRounded * rule.byTurn;
    byLean[lane] = kRounded * rule.byLean;
    leanest[lane] = rule.leanest;
  }
};

/// Walks through a block, this time with the slopes at its samples.
template <class Bank>
QARV_LANES_INLINE void WalkClosely(const Bank& bank, const TurnRules& rules, const BlockTrack& best,
                                   const Candidate& c, CloseLook* look) {
  constexpr double kRounding = 1e-14;
  constexpr std::uint64_t kFirst = std::uint64_t{1} << (kBlock - 1);
  BankState s = c.before;
  Lanes y0, s0, out0, middle, reach, high, low;
  std::array<std::uint64_t, kLanes> turns{};
  const auto step = [&](std::size_t k, std::size_t i, double* y, double* slope) QARV_LANES {
    const double a = s.a[k];
    const double b = s.b[k];
    bank.Step(k, i, s.a[k], s.b[k]);
    *y = bank.Response(k, i, a, b);
    *slope = bank.Slope(k, i, a, b, s.a[k], s.b[k]);
  };
  for (std::size_t k = 0; k < kLanes; ++k) {
    middle[k] = 0.5 * (best.high[k] + best.low[k]);
    reach[k] = (0.5 - kRounding) * (best.high[k] - best.low[k]);
    step(k, c.first, &y0[k], &s0[k]);
    out0[k] = std::fabs(y0[k] - middle[k]);
    high[k] = low[k] = look->y[0][k] = y0[k];
    look->slope[0][k] = s0[k];
  }
  for (std::size_t i = c.first; i < c.last; ++i) {
    Lanes& ys = look->y[i + 1 - c.first];
    Lanes& slopes = look->slope[i + 1 - c.first];
    if (i + 1 == c.last) look->after = s;
    for (std::size_t k = 0; k < kLanes; ++k) {
      double y1;
      double s1;
      step(k, i + 1, &y1, &s1);
      const double slope = s0[k];
      const double out = std::fabs(y1 - middle[k]);  // compared with the best's by one difference
      const double rise = y1 - y0[k];
      const double sum = slope + s1;
      const double turn = std::fabs(s1 - slope);
      const double lean = std::fabs((rise + rise) - sum);
      const double missing =
          (reach[k] - Higher(out0[k], out)) - (rules.byTurn[k] * turn + rules.byLean[k] * lean);
      const double straight = std::fabs(sum) - Higher(turn, rules.leanest[k] * lean);
      // Below 0 both.  By sign bits, as a choice would leave a branch in the loop.
      turns[k] = (turns[k] >> 1) | (__builtin_bit_cast(std::uint64_t, missing) &
                                    __builtin_bit_cast(std::uint64_t, straight) & kFirst);
      out0[k] = out;
      high[k] = Higher(y1, high[k]);
      low[k] = y1 < low[k] ? y1 : low[k];
      ys[k] = y0[k] = y1;
      slopes[k] = s0[k] = s1;
    }
  }
  for (std::size_t k = 0; k < kLanes; ++k)
    look->turns[k] = turns[k] >> (kBlock - (c.last - c.first));
  look->high = high;
  look->low = low;
}

}  // namespace qarv::analysis
