// Damped least squares over the amplitudes.
//
//   R_i, S_i  required and reached level of line i;  r_i = 20 log10(S_i / R_i) [dB]
//   A_j, a_j  amplitude of element j, and its step;  A_j += a_j u_j
//   v_p, t_p  extremes of a response, which share a line's gradient by (|v_p| / S_i)^39: two that
//             compete for the largest would have the gradient jump between them
#include "fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::synthesis {

namespace {

constexpr double kDbPerRatio = 8.685889638065037;  // 20 / ln 10
constexpr double kKeep = 0.9;                      // of a line's largest peak
constexpr double kKeepSides = 0.5;                 // where the smaller side matters too
constexpr double kSidesApart = 1.0;                // [dB] that are aimed at
constexpr double kSideWeight = 0.5;
constexpr double kLimitWeight = 3.0;
constexpr double kNearLimit = 0.89;  // of a limit, from which on a peak is looked at
constexpr double kEndWeight = 100.0;

/// v^n for whole n.
double Power(double v, int n) {
  double out = 1.0;
  for (; n > 0; n /= 2, v *= v) {
    if (n % 2 == 1) out *= v;
  }
  return out;
}

double Outside(double r, double lower, double upper) {
  return r > upper ? r - upper : r < lower ? r - lower : 0.0;
}

/// Samples where |x| is at a top of at least that size.
std::vector<std::size_t> TopsOf(const std::vector<double>& x, double least) {
  std::vector<std::size_t> tops;
  for (std::size_t i = 1; i + 1 < x.size(); ++i) {
    const double size = std::fabs(x[i]);
    if (size >= least && size >= std::fabs(x[i - 1]) && size > std::fabs(x[i + 1])) {
      tops.push_back(i);
    }
  }
  return tops;
}

double LargestOf(const std::vector<double>& x) {
  double largest = 0.0;
  for (const double v : x) largest = std::max(largest, std::fabs(v));
  return largest;
}

std::array<double, 3> ArrayOf(const MotionLimits& limits) {
  return {limits.acceleration, limits.velocity, limits.displacement};
}

/// Solves A x = b for a positive definite A, whose lower triangle is used up.
/// @return false if A is not
bool SolveCholesky(std::size_t n, std::vector<double>* A, std::vector<double>* b) {
  std::vector<double>& a = *A;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = a[i * n + j];
      for (std::size_t k = 0; k < j; ++k) sum -= a[i * n + k] * a[j * n + k];
      if (i == j && !(sum > 0.0)) return false;
      a[i * n + j] = i == j ? std::sqrt(sum) : sum / a[j * n + j];
    }
  }
  std::vector<double>& x = *b;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < i; ++k) x[i] -= a[i * n + k] * x[k];
    x[i] /= a[i * n + i];
  }
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t k = i + 1; k < n; ++k) x[i] -= a[k * n + i] * x[k];
    x[i] /= a[i * n + i];
  }
  return true;
}

}  // namespace

FitGoal MatchGoal(std::size_t lines) {
  FitGoal goal;
  goal.lower.assign(lines, 0.0);
  goal.upper.assign(lines, 0.0);
  return goal;
}

Fit::Fit(Run* run, const SrsRequirement& requirement, Model* model, const Summation* sum,
         std::span<const SrsLine> lines, FitGoal goal)
    : run_(run),
      requirement_(requirement),
      model_(model),
      sum_(sum),
      lines_(lines),
      goal_(std::move(goal)) {
  for (const SrsLine& line : lines_) frequencies_.push_back(line.frequency);
  for (const Element& e : model_->elements) {
    const double Q = 0.5 / requirement.zeta;
    motions_.emplace_back(model_->method, e);
    leastSteps_.push_back(0.005 * RequiredLevel(requirement, e.frequency) / Q);
  }
  Element comp;
  comp.frequency = model_->compFrequency;
  comp.zeta = model_->compZeta;
  const ElementMotion compMotion(com_def::comdefconst::SYNC_WAVE_DAMPED_SINE, comp);
  responses_.reserve(lines_.size() * motions_.size());
  for (const SrsLine& line : lines_) {
    const double w = common::kTwoPi * line.frequency;
    for (const ElementMotion& m : motions_) responses_.emplace_back(m, w, requirement.zeta);
    if (model_->HasCompensation()) compensation_.emplace_back(compMotion, w, requirement.zeta);
  }
  std::vector<double> amplitudes;
  for (const Element& e : model_->elements) amplitudes.push_back(e.ampl);
  state_ = Measure(amplitudes);
  best_ = state_;
  Accept(state_);
}

void Fit::Restart(const std::vector<double>& amplitudes, FitGoal goal) {
  goal_ = std::move(goal);
  best_ = Measure(amplitudes);
  Accept(best_);
}

bool Fit::NeedsMotion() const { return goal_.limits != MotionLimits{} || !model_->IsWavelet(); }

FitState Fit::Measure(const std::vector<double>& amplitudes) {
  FitState state;
  state.amplitudes = amplitudes;
  Model model = *model_;
  for (std::size_t j = 0; j < amplitudes.size(); ++j) model.elements[j].ampl = amplitudes[j];
  sum_->Sum(model, &state.wave);
  state.peaks = analysis::CalcSrsPeaks(state.wave, model_->fsamp, frequencies_, requirement_.zeta,
                                       goal_.bothPolarities ? kKeepSides : kKeep);
  // What has overflowed has no spectrum: as bad as can be.
  if (state.peaks.empty()) state.peaks.resize(lines_.size());
  SetLevels(&state);
  if (NeedsMotion()) SetMotion(&state);
  run_->Continue(static_cast<double>(lines_.size()));
  return state;
}

void Fit::SetLevels(FitState* state) const {
  constexpr double kNothing = 1e-9;
  double squares = 0.0;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    double sides[2] = {};
    for (const analysis::SrsPeak& p : state->peaks[i]) {
      double& side = sides[p.value < 0.0 ? 1 : 0];
      side = std::max(side, std::fabs(p.value));
    }
    const double largest = std::max({sides[0], sides[1], kNothing * lines_[i].level});
    state->levels.push_back(largest);
    const double h = Outside(Decibels(largest / lines_[i].level), goal_.lower[i], goal_.upper[i]);
    state->h.push_back(h);
    squares += h * h;
    state->worst = std::max(state->worst, std::fabs(h));
    if (!goal_.bothPolarities) continue;
    const double smaller = std::max(std::min(sides[0], sides[1]), 0.4 * largest);
    const double apart = kSideWeight * std::min(0.0, Decibels(smaller / largest) + kSidesApart);
    state->extra.push_back(apart);
    state->worst = std::max(state->worst, -apart);
  }
  state->rms = std::sqrt(squares / static_cast<double>(lines_.size()));
}

void Fit::SetMotion(FitState* state) const {
  state->motion = Integrate(state->wave, model_->fsamp);
  const auto& [velocity, displacement] = state->motion;
  state->motionPeaks[0] = LargestOf(state->wave);
  state->motionPeaks[1] = LargestOf(velocity);
  state->motionPeaks[2] = LargestOf(displacement);
  const std::array<double, 3> limits = ArrayOf(goal_.limits);
  for (std::size_t kind = 0; kind < limits.size(); ++kind) {
    if (limits[kind] == 0.0 || state->motionPeaks[kind] == 0.0) continue;
    state->overLimit =
        std::max(state->overLimit, Decibels(state->motionPeaks[kind] / limits[kind]));
  }
  state->extra.push_back(kLimitWeight * state->overLimit);
  state->worst = std::max(state->worst, state->overLimit);
  if (model_->IsWavelet() || !(state->motionPeaks[1] > 0.0 && state->motionPeaks[2] > 0.0)) return;
  state->extra.push_back(kEndWeight * velocity.back() / state->motionPeaks[1]);
  state->extra.push_back(kEndWeight * displacement.back() / state->motionPeaks[2]);
}

double Fit::Sum(const FitState& state, int p) const {
  double sum = 0.0;
  for (const double h : state.h) sum += Power(std::fabs(h), p);
  for (const double h : state.extra) sum += Power(std::fabs(h), p);
  return sum;
}

void Fit::Accept(FitState state) {
  state_ = std::move(state);
  for (std::size_t j = 0; j < state_.amplitudes.size(); ++j) {
    model_->elements[j].ampl = state_.amplitudes[j];
  }
  compensated_ = CompensationOf(*model_);
  starts_.clear();
  for (const Element& e : model_->elements) starts_.push_back(StartOf(e));
  if (state_.worst < best_.worst) best_ = state_;
}

const FitState& Fit::TakeBest() {
  Accept(best_);
  return best_;
}

void Fit::Rescale(int rounds) {
  for (int round = 0; round < rounds && !run_->IsCancelled(); ++round) {
    std::vector<double> amplitudes = state_.amplitudes;
    std::size_t line = 0;
    for (std::size_t j = 0; j < amplitudes.size(); ++j) {
      const double F = model_->elements[j].frequency;
      const auto distance = [&](std::size_t i) {
        return std::fabs(Decibels(lines_[i].frequency / F));
      };
      while (line + 1 < lines_.size() && distance(line + 1) < distance(line)) ++line;
      amplitudes[j] *= RatioOf(-0.7 * Decibels(state_.levels[line] / lines_[line].level));
    }
    Accept(Measure(amplitudes));
  }
}

double Fit::StepOf(std::size_t element) const {
  return std::max(std::fabs(state_.amplitudes[element]), leastSteps_[element]);
}

double Fit::StartOf(const Element& element) const {
  const double start = model_->SecondsAt(element.start);
  if (!model_->HasCompensation()) return start;
  // The generator floors to samples.
  return std::floor((start + compensated_.shift) * model_->fsamp + 1e-9) / model_->fsamp;
}

/// @param[in] side    1 or -1: of the extremes on that side; 0: of all
/// @param[in] factor  of the gradient
FitRow Fit::SpectrumRow(std::size_t line, double side, double factor, double h) const {
  const std::size_t n = motions_.size();
  FitRow row{h, std::vector<double>(n)};
  double largest = 0.0;
  for (const analysis::SrsPeak& p : state_.peaks[line]) {
    if (side * p.value >= 0.0) largest = std::max(largest, std::fabs(p.value));
  }
  double sizes = 0.0;
  const double compStart =
      std::floor(compensated_.delay * model_->fsamp + 1e-9) / model_->fsamp;  // floored to a sample
  for (const analysis::SrsPeak& p : state_.peaks[line]) {
    const double share = std::fabs(p.value) / largest;
    if (side * p.value < 0.0 || share < kKeep) continue;
    const double weight = Power(share, 39);
    sizes += weight * std::fabs(p.value);
    const double signedWeight = std::copysign(weight, p.value);
    for (std::size_t j = 0; j < n; ++j) {
      row.gradient[j] += signedWeight * responses_[line * n + j].At(p.time - starts_[j]);
    }
    if (!model_->HasCompensation()) continue;
    const double y = signedWeight * compensation_[line].At(p.time - compStart);
    for (std::size_t j = 0; j < n; ++j) {
      row.gradient[j] += y * CompensationShare(*model_, model_->elements[j]);
    }
  }
  if (!(sizes > 0.0)) return row;
  for (std::size_t j = 0; j < n; ++j) {
    row.gradient[j] *= factor * kDbPerRatio * StepOf(j) / sizes;
  }
  return row;
}

void Fit::AddLineRows(std::vector<FitRow>* rows) const {
  constexpr double kDeepInside = 0.5;  // [dB] within a band, where a line asks for nothing
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const double r = Decibels(state_.levels[i] / lines_[i].level);
    const bool deep =
        goal_.band && r < goal_.upper[i] - kDeepInside && r > goal_.lower[i] + kDeepInside;
    if (!deep) rows->push_back(SpectrumRow(i, 0.0, 1.0, state_.h[i]));
    if (!goal_.bothPolarities || state_.extra[i] == 0.0) continue;
    double sides[2] = {};
    for (const analysis::SrsPeak& p : state_.peaks[i]) {
      double& side = sides[p.value < 0.0 ? 1 : 0];
      side = std::max(side, std::fabs(p.value));
    }
    if (std::min(sides[0], sides[1]) == 0.0) continue;  // too small to be seen
    rows->push_back(SpectrumRow(i, sides[0] < sides[1] ? 1.0 : -1.0, kSideWeight, state_.extra[i]));
  }
}

/// What an element of amplitude 1 adds to acceleration, velocity or displacement at a sample.
double Fit::UnitMotion(int kind, std::size_t element, std::size_t sample) const {
  const Element& e = model_->elements[element];
  if (kind == 0) {
    const std::vector<double>& unit = sum_->UnitOf(element);
    return sample >= e.start && sample - e.start < unit.size() ? unit[sample - e.start] : 0.0;
  }
  const double t = model_->SecondsAt(sample) - model_->SecondsAt(e.start);
  return kind == 1 ? motions_[element].Velocity(t) : motions_[element].Displacement(t);
}

void Fit::AddLimitRows(std::vector<FitRow>* rows) const {
  constexpr double kSoft = 0.3;  // of the gradient, where the limit is not exceeded
  const std::array<double, 3> limits = ArrayOf(goal_.limits);
  const std::array<const std::vector<double>*, 3> series{&state_.wave, &state_.motion.velocity,
                                                         &state_.motion.displacement};
  for (int kind = 0; kind < 3; ++kind) {
    const double limit = limits[static_cast<std::size_t>(kind)];
    if (limit == 0.0) continue;
    const std::vector<double>& x = *series[static_cast<std::size_t>(kind)];
    for (const std::size_t at : TopsOf(x, kNearLimit * limit)) {
      const double h = std::max(0.0, Decibels(std::fabs(x[at]) / limit));
      FitRow row{kLimitWeight * h, std::vector<double>(motions_.size())};
      const double factor = kLimitWeight * kDbPerRatio * (h == 0.0 ? kSoft : 1.0) / x[at];
      for (std::size_t j = 0; j < motions_.size(); ++j) {
        row.gradient[j] = factor * StepOf(j) * UnitMotion(kind, j, at);
      }
      rows->push_back(std::move(row));
    }
  }
}

/// What sampling a start with a kink leaves at the end: a step of the slope adds dt^2 / 12 of it.
void Fit::AddEndRows(std::vector<FitRow>* rows) const {
  if (model_->IsWavelet() || !(state_.motionPeaks[1] > 0.0 && state_.motionPeaks[2] > 0.0)) return;
  const double dt = 1.0 / model_->fsamp;
  const double end = model_->SecondsAt(model_->nsamp);
  FitRow velocity{state_.extra[state_.extra.size() - 2], std::vector<double>(motions_.size())};
  FitRow displacement{state_.extra.back(), std::vector<double>(motions_.size())};
  for (std::size_t j = 0; j < motions_.size(); ++j) {
    const Element& e = model_->elements[j];
    const double W = common::kTwoPi * e.frequency;
    double slope = W;
    double moment = W * (end - starts_[j]);
    if (model_->HasCompensation()) {
      const double share = CompensationShare(*model_, e) * common::kTwoPi * model_->compFrequency;
      slope += share;
      moment += share * (end - compensated_.delay);
    } else {
      const double E = common::elementary::Exp(1.0) * e.zeta;
      slope *= E * (1.0 + common::elementary::Cos(2.0 * common::elementary::Atan(e.zeta)));
      moment = slope * (end - starts_[j]);
    }
    const double step = -dt * dt / 12.0 * StepOf(j) * kEndWeight;
    velocity.gradient[j] = step * slope / state_.motionPeaks[1];
    displacement.gradient[j] = step * moment / state_.motionPeaks[2];
  }
  rows->push_back(std::move(velocity));
  rows->push_back(std::move(displacement));
}

std::vector<FitRow> Fit::Rows() const {
  std::vector<FitRow> rows;
  AddLineRows(&rows);
  AddLimitRows(&rows);
  AddEndRows(&rows);
  return rows;
}

/// The normal equations, damped by lambda times a mixture of the mean diagonal and their own.
class NormalEquations {
 public:
  NormalEquations(const std::vector<FitRow>& rows, std::size_t n, int p, bool band)
      : n_(n), A_(n * n), b_(n) {
    const double floor = band ? 0.3 : 0.05;
    double largest = 0.0;
    for (const FitRow& row : rows) largest = std::max(largest, std::fabs(row.h));
    if (largest == 0.0) return;
    for (const FitRow& row : rows) {
      Add(row, Power(std::max(std::fabs(row.h) / largest, floor), (p - 2) / 2));
    }
  }

  /// @return the steps, each within 0.7; none where there is no solution
  std::vector<double> Solve(double lambda) const {
    double mean = 0.0;
    for (std::size_t j = 0; j < n_; ++j) mean += A_[j * n_ + j];
    mean /= static_cast<double>(n_);
    std::vector<double> A = A_;
    std::vector<double> u = b_;
    for (std::size_t j = 0; j < n_; ++j) {
      A[j * n_ + j] += lambda * (0.3 * mean + 0.7 * A_[j * n_ + j]);
    }
    if (!SolveCholesky(n_, &A, &u)) return {};
    constexpr double kLargest = 0.7;
    for (double& v : u) v = std::clamp(v, -kLargest, kLargest);
    return u;
  }

 private:
  void Add(const FitRow& row, double weight) {
    const double* const g = row.gradient.data();
    for (std::size_t j = 0; j < n_; ++j) {
      const double gj = weight * g[j];
      if (gj == 0.0) continue;
      b_[j] -= gj * row.h;
      double* const a = A_.data() + j * n_;
      for (std::size_t k = 0; k <= j; ++k) a[k] += gj * g[k];
    }
  }

  std::size_t n_;
  std::vector<double> A_, b_;
};

void Fit::Improve(int p, int steps, double target) {
  constexpr int kTries = 6;
  constexpr int kSlow = 3;           // steps
  constexpr double kLittle = 0.002;  // of the sum, that such a step gains
  double lambda = 1e-2;
  int slow = 0;
  for (int step = 0; step < steps && slow < kSlow && state_.worst > target; ++step) {
    if (run_->IsCancelled()) return;
    const NormalEquations equations(Rows(), motions_.size(), p, goal_.band);
    const double before = Sum(state_, p);
    bool better = false;
    for (int n = 0; n < kTries && !better; ++n) {
      const std::vector<double> u = equations.Solve(lambda);
      if (!u.empty()) {
        std::vector<double> amplitudes = state_.amplitudes;
        for (std::size_t j = 0; j < u.size(); ++j) amplitudes[j] += StepOf(j) * u[j];
        FitState trial = Measure(amplitudes);
        if (run_->IsCancelled()) return;
        better = Sum(trial, p) < before;
        if (better) Accept(std::move(trial));
      }
      lambda = better ? std::max(1e-6, 0.4 * lambda) : 4.0 * lambda;
    }
    if (!better) return;
    slow = Sum(state_, p) > (1.0 - kLittle) * before ? slow + 1 : 0;
  }
}

}  // namespace qarv::synthesis
