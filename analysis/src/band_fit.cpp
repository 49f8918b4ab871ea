// Where tolerance bands fit a record best.
//
//   p      a place of the bands' first sample [sample of the record], base + q / 8 for the eighths
//   k      a sample of the record, from `base` on, at one of the eighths behind its own samples
//   i      a sample of the bands; at the place p = base + d + phase / 8 it lies over k = d + i
#include "analysis/band_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include "analysis/judge.h"
#include "analysis/resample.h"
#include "common/numeric/index_conv.h"

namespace qarv::analysis {

namespace {

constexpr std::size_t kPhases = 8;
constexpr double kSlack = 1e-6;  // [sample] lost to rounding
constexpr double kInf = std::numeric_limits<double>::infinity();

std::size_t Index(double v) { return static_cast<std::size_t>(common::TruncToIndex(v)); }

/// The samples first .. last of the bands.
struct Range {
  std::size_t first, last;
  bool empty;
};

/// A record, its bands, and what is asked.
struct Task {
  std::span<const double> record, upper, lower;
  Places places;

  /// What the record covers of bands that begin at p.
  Range CoveredAt(double p) const {
    const double first = std::max(std::ceil(-p - kSlack), 0.0);
    const double last = std::min(std::floor(static_cast<double>(record.size() - 1) - p + kSlack),
                                 static_cast<double>(upper.size() - 1));
    if (!(first <= last)) return {0, 0, true};
    return {Index(first), Index(last), false};
  }
  double BeyondAt(double p) const {
    const Range covered = CoveredAt(p);
    if (covered.empty) return kInf;
    double farthest = -kInf;
    const std::vector<double> wave = SampledAt(record, p, 1.0, upper.size());
    for (std::size_t i = covered.first; i <= covered.last; ++i) {
      farthest = std::max(farthest, Beyond(wave[i], upper[i], lower[i]));
    }
    return farthest;
  }
};

/// The search among the eighths of a sample.
class EighthSearch {
 public:
  explicit EighthSearch(const Task& task)
      : task_(task),
        base_(std::floor(task.places.from)),
        first_(Index(std::ceil((task.places.from - base_) * kPhases - kSlack))) {
    const double last = std::floor((task.places.to - base_) * kPhases + kSlack);
    if (!(last >= static_cast<double>(first_))) return;  // no eighth between from and to
    bound_.resize(Index(last) - first_ + 1, -kInf);
    const std::size_t length = task.upper.size() + Index(last) / kPhases;
    for (std::size_t phase = 0; phase < kPhases; ++phase) {
      waves_[phase] =
          SampledAt(task.record, base_ + static_cast<double>(phase) / kPhases, 1.0, length);
    }
  }

  /// Goes on from the best that is known, until no bound promises anything better.
  void Improve(BandFit* best) {
    if (bound_.empty()) return;
    constexpr double kClose = 1e-6;  // of what is found: not worth another pass
    for (;;) {
      const double least = *std::min_element(bound_.begin(), bound_.end());
      if (!(best->beyond - least > kClose * std::fabs(best->beyond))) return;
      // Halfway, and in the middle of a run: a pulse that lies too early for one place lies too
      // early for all behind it, so that a pass takes half of a run away.  The least bound alone
      // would creep along a plateau from place to place.
      const double level = least == -kInf ? least : least + (best->beyond - least) / 2.0;
      const std::size_t q = first_ + MiddleOfLongestRun(level);
      const double beyond = Compare(q);
      ++best->passes;
      bound_[q - first_] = kTried;
      if (beyond < best->beyond) {
        best->place = PlaceOf(q);
        best->beyond = beyond;
      }
    }
  }

 private:
  static constexpr double kTried = kInf;
  static constexpr std::size_t kParts = 8;  // of the bands that name a witness each

  double PlaceOf(std::size_t q) const {
    return std::clamp(base_ + static_cast<double>(q) / kPhases, task_.places.from, task_.places.to);
  }

  /// The middle of the most neighbours whose bounds are not above a level.
  std::size_t MiddleOfLongestRun(double level) const {
    std::size_t middle = 0;
    std::size_t longest = 0;
    std::size_t run = 0;
    for (std::size_t j = 0; j < bound_.size(); ++j) {
      run = bound_[j] <= level ? run + 1 : 0;
      if (run <= longest) continue;
      longest = run;
      middle = j - (run - 1) / 2;
    }
    return middle;
  }

  /// How far the record lies beyond at a place.  The farthest samples become witnesses.
  double Compare(std::size_t q) {
    const Range covered = task_.CoveredAt(PlaceOf(q));
    if (covered.empty) return kInf;
    double farthest = -kInf;
    const std::vector<double>& wave = waves_[q % kPhases];
    const std::size_t d = q / kPhases;
    const std::size_t part = (covered.last - covered.first) / kParts + 1;
    for (std::size_t from = covered.first; from <= covered.last; from += part) {
      double here = -kInf;
      std::size_t witness = d + from;
      for (std::size_t i = from; i < std::min(from + part, covered.last + 1); ++i) {
        const double beyond = Beyond(wave[d + i], task_.upper[i], task_.lower[i]);
        if (!(beyond > here)) continue;
        here = beyond;
        witness = d + i;
      }
      if (witnesses_.insert(witness).second) Hear(witness);
      farthest = std::max(farthest, here);
    }
    return farthest;
  }

  /// Raises the bound of every place at which the sample k is judged.
  void Hear(std::size_t k) {
    for (std::size_t j = 0; j < bound_.size(); ++j) {
      const std::size_t q = first_ + j;
      const std::size_t d = q / kPhases;
      if (k < d) return;
      const Range covered = task_.CoveredAt(PlaceOf(q));
      const std::size_t i = k - d;
      if (covered.empty || i < covered.first || i > covered.last) continue;
      bound_[j] =
          std::max(bound_[j], Beyond(waves_[q % kPhases][k], task_.upper[i], task_.lower[i]));
    }
  }

  const Task& task_;
  double base_;
  std::size_t first_;  // q of the first place
  std::array<std::vector<double>, kPhases> waves_;
  std::vector<double> bound_;  // of the places: the record lies at least so far outside
  std::set<std::size_t> witnesses_;
};

/// The golden section between the eighths on either side of the best one.
void Refine(const Task& task, BandFit* best) {
  constexpr int kSteps = 16;  // to 2^-11 of the two eighths
  const double ratio = (std::sqrt(5.0) - 1.0) / 2.0;
  double low = std::max(best->place - 1.0 / kPhases, task.places.from);
  double high = std::min(best->place + 1.0 / kPhases, task.places.to);
  const auto at = [&](double p) {
    const double beyond = task.BeyondAt(p);
    ++best->passes;
    if (beyond < best->beyond) {
      best->place = p;
      best->beyond = beyond;
    }
    return beyond;
  };
  double left = high - ratio * (high - low);
  double right = low + ratio * (high - low);
  double atLeft = at(left);
  double atRight = at(right);
  for (int step = 0; step < kSteps && best->beyond > 0.0; ++step) {
    if (atLeft < atRight) {
      high = right;
      right = left;
      atRight = atLeft;
      left = high - ratio * (high - low);
      atLeft = at(left);
    } else {
      low = left;
      left = right;
      atLeft = atRight;
      right = low + ratio * (high - low);
      atRight = at(right);
    }
  }
}

}  // namespace

BandFit FitBands(std::span<const double> record, std::span<const double> upper,
                 std::span<const double> lower, const Places& places) {
  const bool ordered = places.from <= places.preferred && places.preferred <= places.to;
  if (record.empty() || upper.empty() || upper.size() != lower.size() || !ordered ||
      !std::isfinite(places.from) || !std::isfinite(places.to)) {
    return {places.preferred, kInf, 0};
  }
  const Task task{record, upper, lower, places};
  BandFit best{places.preferred, task.BeyondAt(places.preferred), 1};
  if (best.beyond <= 0.0) return best;
  EighthSearch(task).Improve(&best);
  if (best.beyond > 0.0) Refine(task, &best);
  return best;
}

}  // namespace qarv::analysis
