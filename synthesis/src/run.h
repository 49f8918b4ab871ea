// How far a run has come, and whether it goes on.
#pragma once

#include <algorithm>
#include <functional>

namespace qarv::synthesis {

class Run {
 public:
  /// @param[in] expected  work until the end, in lines of spectra
  Run(const std::function<bool(double)>& progress, double expected)
      : progress_(progress), expected_(expected) {}

  /// Counts work; once it has said no it says so for ever.
  bool Continue(double work) {
    done_ += work;
    if (!cancelled_ && progress_) cancelled_ = !progress_(std::min(0.99, done_ / expected_));
    return !cancelled_;
  }
  bool IsCancelled() const { return cancelled_; }

 private:
  const std::function<bool(double)>& progress_;
  double expected_;
  double done_ = 0.0;
  bool cancelled_ = false;
};

}  // namespace qarv::synthesis
