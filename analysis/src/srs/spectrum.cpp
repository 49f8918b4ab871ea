// The search for the extremes of responses between samples.
//
// All samples are visited in lanes, in blocks.  A response rises above its samples by less than a
// margin that follows from the block's extremes; blocks that can hold an extreme of the spectrum
// are kept with the state before them until more of the shock is known.  Where many are left, as
// of a shock that grows, they are looked at closely, in lanes again.  What is left then is few, and
// few intervals in it, whose tops are found in closed form.
#include "srs/spectrum.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/numeric/constants.h"
#include "srs/banks.h"
#include "srs/base_motion.h"
#include "srs/blocks.h"
#include "srs/oscillator.h"

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
