// The sampling frequency of times that are rounded or jitter: a straight line through all of them.
#pragma once

#include <cstddef>

#include "common/int_types.h"

namespace qarv::exchange {

/// Takes time after time and keeps sums alone.
///
///   t_i = begin + dt i   by least squares, over the samples i = 0, 1, ...
class TimeFit {
 public:
  /// @param[in] t      [s]
  /// @param[in] place  line or sample, for what is said of it
  void Add(double t, common::uint64 place);

  /// How many samples lie between the last time and this one, by the mean step so far; 0 before
  /// there is one.
  double StepsTo(double t) const;

  common::uint64 GetCount() const { return count_; }
  double GetBegin() const { return begin_; }

  /// A sample that was left out: the next time belongs to the one behind it.
  void Skip() { ++count_; }

  /// The sampling frequency [Hz], with the fewest digits that the scatter of the steps leaves open.
  /// @param[in] places  whether the places are lines; otherwise they are samples, from 0
  /// Throws Error where there are fewer than two times, the line does not rise, or a step is off by
  /// half a sampling interval or more.
  double Rate(bool places) const;

 private:
  struct Step {
    double size = 0.0;  // [s]
    common::uint64 place = 0;
  };

  common::uint64 count_ = 0;  // samples so far
  common::uint64 used_ = 0;   // of these, with a time
  double begin_ = 0.0;
  double last_ = 0.0;  // [s] behind the first
  common::uint64 lastIndex_ = 0;
  Step shortest_, longest_;
  // Means and centred sums of i and t.
  double meanIndex_ = 0.0, meanTime_ = 0.0;
  double squares_ = 0.0, products_ = 0.0;
};

}  // namespace qarv::exchange
