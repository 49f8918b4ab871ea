// Random moves of components that make the sum's velocity or displacement small.
#include "arrange.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "common/numeric/index_conv.h"
#include "squeeze.h"

namespace qarv::synthesis {

using common::uint64;

namespace {

/// The motion of one element of amplitude 1 on every step-th sample, from its start on.
using Track = std::vector<double>;

class Arrangement {
 public:
  Arrangement(Model* model, SrsQuantity quantity, uint64 seed)
      : model_(model),
        stride_(std::max<uint64>(1, model->nsamp / 2048)),
        draws_(seed),
        sum_(model->nsamp / stride_ + 1) {
    for (const Element& e : model->elements) {
      const ElementMotion motion(model->method, e);
      Track track;
      double largest = 0.0;
      for (uint64 i = 0; i < e.length; i += stride_) {
        const double t = model->SecondsAt(i);
        track.push_back(quantity == SrsQuantity::Velocity ? motion.Velocity(t)
                                                          : motion.Displacement(t));
        largest = std::max(largest, std::fabs(track.back()));
      }
      weights_.push_back(std::fabs(e.ampl) * largest);
      total_ += weights_.back();
      tracks_.push_back(std::move(track));
    }
    for (std::size_t j = 0; j < tracks_.size(); ++j) Add(j, model->elements[j], 1.0, &sum_);
    cost_ = CostOf(sum_);
  }

  void Move() {
    const std::size_t j = Draw();
    Element moved = model_->elements[j];
    const uint64 room = model_->nsamp > moved.length + 2 ? model_->nsamp - moved.length - 2 : 0;
    if (draws_.Next() < 1.0 / 3.0) {
      moved.start = draws_.Below(room + 1);
    } else {
      const double period = model_->fsamp / moved.frequency;
      const double to = static_cast<double>(moved.start) + (2.0 * draws_.Next() - 1.0) * period;
      moved.start = common::RoundToIndex(std::clamp(to, 0.0, static_cast<double>(room)));
    }
    if (draws_.Next() < 0.25) moved.ampl = -moved.ampl;
    std::vector<double> sum = sum_;
    Add(j, model_->elements[j], -1.0, &sum);
    Add(j, moved, 1.0, &sum);
    const double cost = CostOf(sum);
    if (!(cost < cost_)) return;
    cost_ = cost;
    sum_ = std::move(sum);
    model_->elements[j] = moved;
  }

 private:
  void Add(std::size_t j, const Element& e, double sign, std::vector<double>* sum) const {
    const uint64 start = e.start / stride_;
    const std::size_t n = std::min<std::size_t>(tracks_[j].size(), sum->size() - start);
    for (std::size_t i = 0; i < n; ++i) (*sum)[start + i] += sign * e.ampl * tracks_[j][i];
  }
  static double CostOf(const std::vector<double>& sum) {
    double largest = 0.0;
    double squares = 0.0;
    for (const double v : sum) {
      largest = std::max(largest, std::fabs(v));
      squares += v * v;
    }
    return largest + 0.3 * std::sqrt(squares / static_cast<double>(sum.size()));
  }
  /// An element, the likelier the more it moves.
  std::size_t Draw() {
    double at = draws_.Next() * total_;
    std::size_t j = 0;
    for (; j + 1 < weights_.size() && at >= weights_[j]; ++j) at -= weights_[j];
    return j;
  }

  Model* model_;
  uint64 stride_;  // [sample]
  Draws draws_;
  std::vector<Track> tracks_;
  std::vector<double> weights_;
  double total_ = 0.0;
  std::vector<double> sum_;
  double cost_ = 0.0;
};

/// A layout that is arranged and fitted in turn.
Candidate ArrangedFrom(const Task& task, const LayoutRule& rule, SrsQuantity quantity, Run* run) {
  constexpr int kTurns = 3;
  constexpr int kMoves = 1500;
  const std::size_t kind = quantity == SrsQuantity::Velocity ? 1 : 2;
  FitGoal goal = MatchGoal(task.coarse.size());
  SetLimit(&goal.limits, quantity, 1e300);  // so that it is looked at
  Candidate best;
  Model model = task.Layout(rule);
  for (int turn = 0; turn <= kTurns; ++turn) {
    if (run->IsCancelled()) return best;
    if (turn > 0) {
      Arrangement arrangement(&model, quantity, rule.seed + 977 * static_cast<uint64>(turn));
      for (int n = 0; n < kMoves; ++n) arrangement.Move();
    }
    const auto sum = std::make_shared<const Summation>(model);
    Fit fit(run, task.requirement, &model, sum.get(), task.coarse, goal);
    fit.Rescale(turn == 0 ? 4 : 3);
    if (turn == 0) continue;
    fit.Improve(2, 5, 0.1);
    const FitState& now = fit.TakeBest();
    const double score = now.motionPeaks[kind] * (1.0 + std::max(0.0, now.worst - 1.0));
    if (!best.sum || score < best.score) best = {model, sum, score};
  }
  return best;
}

}  // namespace

Outcome LeastByPlaces(const Task& task, const Outcome& start, SrsQuantity quantity, Run* run) {
  std::vector<Candidate> candidates;
  for (const double perQ : {1.0, 2.0, 3.0}) {
    for (const Order order : {Order::HighFirst, Order::Together, Order::Random}) {
      if (run->IsCancelled()) return start;
      const LayoutRule rule{
          .order = order, .halves = task.Halves(perQ), .room = 0.95, .seed = task.settings.seed};
      candidates.push_back(ArrangedFrom(task, rule, quantity, run));
    }
  }
  Outcome best = Squeeze(task, start, quantity, run);
  if (run->IsCancelled()) return best;
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.score < b.score; });
  for (std::size_t n = 0; n < 2; ++n) {
    Candidate& candidate = candidates[n];
    Fit fit(run, task.requirement, &candidate.model, candidate.sum.get(), task.fine,
            MatchGoal(task.fine.size()));
    for (const int p : {2, 8}) fit.Improve(p, 8, 0.1);
    fit.TakeBest();
    if (run->IsCancelled()) return best;
    Outcome least = Squeeze(task, OutcomeOf(task, candidate), quantity, run);
    if (!least.comparison.Meets(task.requirement)) continue;
    if (least.Of(quantity) < best.Of(quantity)) best = std::move(least);
  }
  return best;
}

}  // namespace qarv::synthesis
