// The search for the extremes of responses between samples.
//
// All samples are visited in lanes, in blocks.  A response rises above its samples by less than a
// margin that follows from the block's extremes; blocks that can hold an extreme of the spectrum
// are kept with the state before them, and walked again at the end, when the highest sample is
// known.  Few are left then, and few intervals in them, whose tops are found in closed form.
#include "srs/spectrum.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/numeric/constants.h"
#include "srs/banks.h"
#include "srs/base_motion.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

namespace {

constexpr std::size_t kBlock = 64;       // [interval]
constexpr double kRounded = 1.0 + 1e-6;  // margins are no tighter than their rounding

/// A block that may hold an extreme of one oscillator.
struct Candidate {
  std::size_t first, last;  // its intervals are those from first to before last
  LaneState before;
  double high, low;  // of the samples
  double margin;     // how far the response can go beyond them
};

/// One oscillator.
struct Line {
  std::size_t index;  // among the frequencies
  Oscillator oscillator;
  Drive drive;
  std::vector<Candidate> candidates{};
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

/// What the samples of a block have shown.
struct BlockTrack {
  Lanes high{}, low{}, margin{};
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

/// The margins of a block; whether any of its responses can go beyond `best`.
QARV_LANES_INLINE bool Compare(const MarginRules& rules, const BlockPeaks& peaks,
                               const BlockTrack& best, BlockTrack* block) {
  double beyond = 0.0;
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double high = block->high[k];
    const double low = block->low[k];
    const double level = high > -low ? high : -low;
    const double margin = rules.byRange[k] * (high - low) + rules.byLevel[k] * level +
                          rules.byX[k] * peaks.x + rules.byChange[k] * peaks.change;
    block->margin[k] = margin;
    beyond += (high + margin > best.high[k] ? 1.0 : 0.0) + (low - margin < best.low[k] ? 1.0 : 0.0);
  }
  return beyond > 0.0;
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

/// A bank, its lines, and the walk through the shock.
template <class Bank>
class Search {
 public:
  Search(const Bank& bank, const BaseMotion& base, std::span<Line> lines)
      : bank_(bank), base_(base), lines_(lines) {
    for (std::size_t k = 0; k < lines.size(); ++k) {
      bank_.Set(k, lines[k].oscillator, lines[k].drive);
      rules_.Set(k, lines[k].oscillator, lines[k].drive, bank_.Scale(k));
    }
  }

  void Run(common::InstructionSet set, std::span<const BlockPeaks> peaks) {
    for (std::size_t first = 0; first < base_.end; first += kBlock) {
      const std::size_t last = std::min(first + kBlock, base_.end);
      const BankState before = state_;
      BlockTrack block;
      bool beyond = false;
      common::RunWith(set, [&]() QARV_LANES {
        Walk(bank_, first, last, &state_, &block);
        Silence(&state_);
        beyond = Compare(rules_, peaks[first / kBlock], best_, &block);
      });
      if (!beyond) continue;
      for (std::size_t k = 0; k < lines_.size(); ++k) {
        Offer(k, {first,
                  last,
                  {before.a[k], before.b[k]},
                  block.high[k],
                  block.low[k],
                  block.margin[k]});
      }
    }
    for (std::size_t k = 0; k < lines_.size(); ++k) Settle(k);
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

  bool Beyond(std::size_t k, double high, double low, double margin) const {
    return high + margin > best_.high[k] || low - margin < best_.low[k];
  }
  void Raise(std::size_t k, double high, double low) {
    best_.high[k] = std::max(best_.high[k], high);
    best_.low[k] = std::min(best_.low[k], low);
  }

  void Offer(std::size_t k, const Candidate& c) {
    if (!Beyond(k, c.high, c.low, c.margin)) return;
    Raise(k, c.high, c.low);
    lines_[k].candidates.push_back(c);
    if (lines_[k].candidates.size() == kMostCandidates) Thin(k);
  }

  /// Drops the candidates that have been surpassed; walks through the others if they are too many.
  void Thin(std::size_t k) {
    std::erase_if(lines_[k].candidates,
                  [&](const Candidate& c) { return !Beyond(k, c.high, c.low, c.margin); });
    if (lines_[k].candidates.size() > kMostCandidates / 2) Settle(k);
  }

  void Settle(std::size_t k) {
    for (const Candidate& c : lines_[k].candidates) {
      if (Beyond(k, c.high, c.low, c.margin)) Examine(k, c);
    }
    lines_[k].candidates.clear();
  }

  /// Walks through a block again, and into the intervals that may hold an extreme.
  void Examine(std::size_t k, const Candidate& c) {
    const Oscillator& o = lines_[k].oscillator;
    LaneState from = c.before;
    double y = bank_.Response(k, c.first, from.a, from.b);
    for (std::size_t i = c.first; i < c.last; ++i) {
      const LaneState to = Next(k, i, from);
      const double next = bank_.Response(k, i + 1, to.a, to.b);
      const double high = std::max(y, next);
      const double low = std::min(y, next);
      // From rest, in the first interval, a response to a straight line only rises or only falls.
      if (i > 0 && Beyond(k, high, low, c.margin)) {
        const Arc arc = ArcOf(k, i, from, to);
        const double margin =
            kRounded * o.Margin(std::fabs(arc.slope), std::fabs(o.Bend(arc)), std::fabs(arc.rise));
        if (high + margin > best_.high[k]) Raise(k, o.Crest(arc), 0.0);
        if (low - margin < best_.low[k]) Raise(k, 0.0, -o.Crest(-arc));
      }
      from = to;
      y = next;
    }
  }

  static constexpr std::size_t kMostCandidates = 64;

  Bank bank_;
  const BaseMotion& base_;
  std::span<Line> lines_;
  MarginRules rules_;
  BankState state_;
  BlockTrack best_;  // so far, with 0
};

SrsExtremes Times(const SrsExtremes& e, double factor) {
  const auto of = [&](double y) { return y == 0.0 ? 0.0 : y * factor; };
  if (factor < 0.0) return {of(e.negative), of(e.positive)};
  return {of(e.positive), of(e.negative)};
}

}  // namespace

std::vector<SrsPoint> CalcSrsWith(common::InstructionSet set, std::span<const double> shock,
                                  double fsamp, std::span<const double> frequencies, double zeta,
                                  SrsResponse response) {
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
      Search search(bank, base, some);
      search.Run(set, peaks);
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
