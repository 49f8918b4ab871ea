// The sampling frequency of times that are rounded or jitter.
//
// The sums are centred while they grow (B. P. Welford 1962): times that count from an epoch leave
// nothing of sums about 0.
#include "time_fit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "exchange/error.h"
#include "text/text.h"

namespace qarv::exchange {

using common::uint64;

namespace {

/// The number of the fewest digits that is within a share of a number.
double Shortest(double v, double share) {
  double out = v;
  for (int digits = 1; digits <= 12; ++digits) {
    text::ParseNumber(fmt::format("{:.{}g}", v, digits), &out);
    if (std::fabs(out - v) <= share * v) return out;
  }
  return out;
}

}  // namespace

void TimeFit::Add(double t, uint64 place) {
  if (used_ == 0) begin_ = t;
  const double time = t - begin_;
  const auto index = static_cast<double>(count_);
  if (used_ != 0) {
    const double step = (time - last_) / static_cast<double>(count_ - lastIndex_);
    if (used_ == 1 || step < shortest_.size) shortest_ = {step, place};
    if (used_ == 1 || step > longest_.size) longest_ = {step, place};
  }
  ++used_;
  const auto n = static_cast<double>(used_);
  const double dIndex = index - meanIndex_;
  meanIndex_ += dIndex / n;
  meanTime_ += (time - meanTime_) / n;
  squares_ += dIndex * (index - meanIndex_);
  products_ += dIndex * (time - meanTime_);
  last_ = time;
  lastIndex_ = count_;
  ++count_;
}

double TimeFit::StepsTo(double t) const {
  if (used_ < 2 || !(products_ > 0.0)) return 0.0;
  return (t - begin_ - last_) * squares_ / products_;
}

double TimeFit::Rate(bool places) const {
  if (used_ < 2) throw Error("one sample has no time step: Fsamp is needed");
  const double dt = products_ / squares_;
  const auto fail = [&](const Step& step) {
    const std::string what =
        fmt::format("the time step of {:.6g} s is {:.3g} samples long, at {:.6g} s a sample",
                    step.size, step.size / dt, dt);
    if (places) throw Error(what, step.place);
    throw Error(fmt::format("sample {}: {}", step.place, what));
  };
  if (!(dt > 0.0 && std::isfinite(1.0 / dt))) throw Error("its times do not rise");
  // The farther one of the two is named.
  const bool isLonger = longest_.size - dt > dt - shortest_.size;
  const Step& farthest = isLonger ? longest_ : shortest_;
  if (!(std::fabs(farthest.size - dt) < 0.5 * dt)) fail(farthest);
  // Three standard deviations of the slope, if the stamps scatter by what the steps do.
  const auto n = static_cast<double>(used_);
  const double scatter = (longest_.size - shortest_.size) / dt;
  return Shortest(1.0 / dt, std::max(3.0 * scatter / (n * std::sqrt(n)), 5e-13));
}

}  // namespace qarv::exchange
