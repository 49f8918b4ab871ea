// All large extremes of responses: where they are, and how high.
//
// A bank walks through the shock once, which gives the largest sample of each block.  Blocks that
// reach the share that is kept are walked through again, one oscillator at a time, for the tops
// between their samples.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "analysis/srs.h"
#include "common/numeric/constants.h"
#include "numeric/elementary.h"
#include "srs/banks.h"
#include "srs/base_motion.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

namespace {

constexpr std::size_t kStretch = 64;  // [interval] that one state is kept for

/// The points behind `first` up to `last`, with the state at `first`.
struct Stretch {
  std::size_t first, last;
  BankState before;
  Lanes size{};  // the largest |response|
};

template <class Bank>
QARV_LANES_INLINE void Pass(const Bank& bank, const Stretch& stretch, BankState* state,
                            Lanes* largest) {
  constexpr double kSilent = 1e-200;  // less is slow, and nothing
  BankState s = stretch.before;
  Lanes size{};
  for (std::size_t i = stretch.first; i < stretch.last; ++i) {
    for (std::size_t k = 0; k < kLanes; ++k) {
      bank.Step(k, i, s.a[k], s.b[k]);
      const double y = std::fabs(bank.Response(k, i + 1, s.a[k], s.b[k]));
      size[k] = y > size[k] ? y : size[k];
    }
  }
  for (std::size_t k = 0; k < kLanes; ++k) {
    const double a = s.a[k];
    const double b = s.b[k];
    const bool silent = a < kSilent && -a < kSilent && b < kSilent && -b < kSilent;
    s.a[k] = silent ? 0.0 : a;
    s.b[k] = silent ? 0.0 : b;
  }
  *state = s;
  *largest = size;
}

/// The turn of a cubic over an interval, from its ends and the slopes there, of which the first
/// leads upwards and the second does not.
struct Turn {
  double t, value;
};
Turn TurnOf(double y0, double s0, double y1, double s1) {
  const double rise = y1 - y0;
  const double b = 3.0 * rise - 2.0 * s0 - s1;
  const double c = s0 + s1 - 2.0 * rise;
  const double divisor = std::sqrt(std::fabs(b * b - 3.0 * c * s0)) - b;
  const double t = divisor > s0 ? s0 / divisor : 1.0;
  return {t, y0 + t * (s0 + t * (b + t * c))};
}

/// An oscillator and where it stands among the frequencies.
struct Line {
  std::size_t index;
  Oscillator oscillator;
};

template <class Bank>
class PeakSearch {
 public:
  PeakSearch(const Bank& bank, const BaseMotion& base, std::span<const Line> lines, double keep)
      : bank_(bank), base_(base), lines_(lines), keep_(keep) {
    for (std::size_t k = 0; k < lines.size(); ++k) bank_.Set(k, lines[k].oscillator, DriveAt(k));
  }

  void Run(common::InstructionSet set) {
    for (std::size_t first = 0; first < base_.end; first += kStretch) {
      Stretch stretch{first, std::min(first + kStretch, base_.end), state_};
      common::RunWith(set, [&]() QARV_LANES { Pass(bank_, stretch, &state_, &stretch.size); });
      for (std::size_t k = 0; k < kLanes; ++k) {
        largest_[k] = std::max(largest_[k], stretch.size[k]);
      }
      stretches_.push_back(stretch);
    }
  }

  /// The unit of a lane's peaks.
  double Scale(std::size_t k) const { return bank_.Scale(k); }

  /// Of a lane.  Times are in points.
  std::vector<SrsPeak> PeaksOf(std::size_t k) const {
    const double h = lines_[k].oscillator.h;
    // By how much a sample next to a top may be below it, and a little for what is not a sine.
    const double least = keep_ * largest_[k] * std::max(0.5, 0.98 - 0.125 * h * h);
    std::vector<SrsPeak> peaks;
    for (const Stretch& stretch : stretches_) {
      if (stretch.size[k] >= least && stretch.size[k] > 0.0) Look(k, stretch, least, &peaks);
    }
    Decay(k, &peaks);
    double largest = 0.0;
    for (const SrsPeak& peak : peaks) largest = std::max(largest, std::fabs(peak.value));
    std::erase_if(peaks, [&](const SrsPeak& p) {
      return std::fabs(p.value) < keep_ * largest || p.value == 0.0;
    });
    return peaks;
  }

 private:
  Drive DriveAt(std::size_t k) const {
    return DriveOf(lines_[k].oscillator, SrsResponse::AbsoluteAcceleration);
  }

  /// A point of a response.
  struct Point {
    LaneState state;
    double y;
  };
  Point After(std::size_t k, std::size_t i, Point p) const {
    bank_.Step(k, i, p.state.a, p.state.b);
    p.y = bank_.Response(k, i + 1, p.state.a, p.state.b);
    return p;
  }
  double Slope(std::size_t k, std::size_t i, const Point& at, const Point& next) const {
    return bank_.Slope(k, i, at.state.a, at.state.b, next.state.a, next.state.b);
  }
  Point At(std::size_t k, const Stretch& stretch) const {
    const LaneState s{stretch.before.a[k], stretch.before.b[k]};
    return {s, bank_.Response(k, stretch.first, s.a, s.b)};
  }

  /// The tops whose highest sample is among the points of a stretch.
  void Look(std::size_t k, const Stretch& stretch, double least,
            std::vector<SrsPeak>* peaks) const {
    Point before = At(k, stretch);
    Point here = After(k, stretch.first, before);
    for (std::size_t i = stretch.first + 1; i <= stretch.last; ++i) {
      const Point next = After(k, i, here);
      const double size = std::fabs(here.y);
      const double sign = here.y < 0.0 ? -1.0 : 1.0;
      if (size >= least && size >= sign * before.y && size > sign * next.y) {
        const double slope = sign * Slope(k, i, here, next);
        const bool later = slope > 0.0;
        if (!(later && i == base_.end)) {  // that is a matter of the decay
          const Point& from = later ? here : before;
          const Point& to = later ? next : here;
          const double other = sign * (later ? Slope(k, i + 1, next, After(k, i + 1, next))
                                             : Slope(k, i - 1, before, here));
          const Turn turn = later ? TurnOf(sign * from.y, slope, sign * to.y, std::min(other, 0.0))
                                  : TurnOf(sign * from.y, std::max(other, 0.0), sign * to.y, slope);
          const double start = static_cast<double>(later ? i : i - 1);
          peaks->push_back({start + turn.t, sign * turn.value});
        }
      }
      before = here;
      here = next;
    }
  }

  /// The extremes behind the last point: they come every half turn, each smaller than the last.
  void Decay(std::size_t k, std::vector<SrsPeak>* peaks) const {
    const Oscillator& o = lines_[k].oscillator;
    const Point end{{state_.a[k], state_.b[k]},
                    bank_.Response(k, base_.end, state_.a[k], state_.b[k])};
    const double y = end.y;
    const double v = Slope(k, base_.end, end, After(k, base_.end, end)) / o.h;
    if (y == 0.0 && v == 0.0) return;
    // In the plane of response and velocity: the phase at which the velocity is 0 for the first
    // time.
    const double root = std::sqrt((1.0 - o.zeta) * (1.0 + o.zeta));
    const double sign = v < 0.0 || (v == 0.0 && y < 0.0) ? -1.0 : 1.0;
    double phase = common::elementary::Atan2(root * v * sign, (o.zeta * v + y) * sign);
    const SrsExtremes first = FreeExtremes(sign * y, sign * v, o.zeta);
    const double fall = common::elementary::Exp(-o.zeta * common::kPi / root);
    double value = sign * first.positive;
    const double least = keep_ * std::max(largest_[k], first.positive);
    constexpr int kMost = 64;  // without damping there is no end
    for (int n = 0; n < kMost && std::fabs(value) >= least; ++n) {
      const double time = static_cast<double>(base_.end) + phase / (root * o.h);
      peaks->push_back({time, value});
      phase += common::kPi;
      value *= -fall;
    }
  }

  Bank bank_;
  const BaseMotion& base_;
  std::span<const Line> lines_;
  double keep_;
  BankState state_;
  Lanes largest_{};
  std::vector<Stretch> stretches_;
};

}  // namespace

std::vector<std::vector<SrsPeak>> CalcSrsPeaks(std::span<const double> shock, double fsamp,
                                               std::span<const double> frequencies, double zeta,
                                               double keep) {
  // Written so that a NaN is refused.
  if (!(fsamp > 0.0 && std::isfinite(fsamp) && zeta >= 0.0 && zeta < 1.0)) return {};
  if (!(keep > 0.0 && keep <= 1.0)) return {};
  const auto fits = [&](double f) { return f > 0.0 && f < 0.5 * fsamp; };
  const auto isNumber = [](double v) { return std::isfinite(v); };
  if (!std::all_of(frequencies.begin(), frequencies.end(), fits)) return {};
  if (!std::all_of(shock.begin(), shock.end(), isNumber)) return {};

  const BaseMotion base(shock);
  const std::size_t silence = shock.size() + 1 - base.end;  // [sample] before the shock
  std::vector<Line> soft;
  std::vector<Line> stiff;
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    const Oscillator o(common::kTwoPi * frequencies[i] / fsamp, zeta);
    const bool isSoft = o.h * static_cast<double>(base.end) <= common::kTwoPi;
    (isSoft ? soft : stiff).push_back({i, o});
  }
  std::vector<std::vector<SrsPeak>> out(frequencies.size());
  if (silence == shock.size()) return out;
  const auto run = [&](const auto& bank, std::span<const Line> lines) {
    for (std::size_t first = 0; first < lines.size(); first += kLanes) {
      const auto some = lines.subspan(first, std::min(kLanes, lines.size() - first));
      PeakSearch search(bank, base, some, keep);
      search.Run(common::BestInstructionSet());
      for (std::size_t k = 0; k < some.size(); ++k) {
        std::vector<SrsPeak> peaks = search.PeaksOf(k);
        const double unit = search.Scale(k) * base.unit;
        for (SrsPeak& p : peaks) {
          // Point 1 is the first sample that is not 0.
          p = {(p.time - 1.0 + static_cast<double>(silence)) / fsamp, p.value * unit};
        }
        out[some[k].index] = std::move(peaks);
      }
    }
  };
  run(StiffBank(&base), stiff);
  if (soft.empty()) return out;
  const BaseMotion::Travel travel = base.Integrate();
  run(SoftBank(&base, &travel), soft);
  return out;
}

}  // namespace qarv::analysis
