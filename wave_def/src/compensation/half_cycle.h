// The samples of half a cycle, one after the other, by rotation.
#pragma once

#include "common/numeric/constants.h"
#include "numeric/elementary.h"

namespace qarv::wave_def::compensation {

/// cos(k pi / n) and sin(k pi / n) for k = 0, 1, ...: four multiplications a sample instead of a
/// cosine.  Compared with the library's functions the error is below n 1e-16, which the conditions
/// on the finished waveform do not notice; what a definition is compared by bit for bit uses the
/// functions themselves.
class HalfCycle {
 public:
  explicit HalfCycle(double n)
      : cosStep_(common::elementary::Cos(common::kPi / n)),
        sinStep_(common::elementary::Sin(common::kPi / n)) {}

  double Cos() const { return cos_; }
  double Sin() const { return sin_; }
  void Next() {
    const double c = cos_ * cosStep_ - sin_ * sinStep_;
    sin_ = sin_ * cosStep_ + cos_ * sinStep_;
    cos_ = c;
  }

 private:
  double cosStep_, sinStep_;
  double cos_ = 1.0;
  double sin_ = 0.0;
};

}  // namespace qarv::wave_def::compensation
