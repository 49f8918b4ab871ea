// A component of a synthesis in closed form: its motion, and what an oscillator answers to it.
//
// A component of amplitude 1 that starts at t = 0 is a sum of exponentials until it ends:
//
//   x(t) = Re sum c_m e^(s_m t),   0 <= t <= T
//
//   wavelet, N half cycles   c = 1/2, -1/2    s = i W (1 - 1/N), i W (1 + 1/N)    T = N / (2 F)
//   damped sine              c = -i           s = (-z + i) W                      T infinite
//   ending at rest           the latter times e z, and its derivative by s        T infinite
#pragma once

#include <array>
#include <cstddef>

#include "com_def/com_def_const.h"
#include "common/int_types.h"
#include "complex.h"

namespace qarv::synthesis {

using Method = com_def::comdefconst::SYNC_WAVE_TYPE;

struct Element {
  double frequency = 0.0;     // [Hz]
  unsigned int halves = 0;    // [half cycles] of a wavelet
  double zeta = 0.0;          // of a damped sine
  common::uint64 start = 0;   // [sample]
  common::uint64 length = 0;  // [sample] of a wavelet
  double ampl = 0.0;          // [amplitude unit]
};

/// The exponentials of an element of amplitude 1.
class ElementMotion {
 public:
  ElementMotion(Method method, const Element& element);

  double Velocity(double t) const;      // [s]
  double Displacement(double t) const;  // [s^2]

  std::size_t count = 0;
  std::array<Complex, 3> c{}, s{};
  double end = 0.0;  // [s]; infinite
};

/// The absolute acceleration of an oscillator at rest on a base that moves as an element of
/// amplitude 1.
class ElementResponse {
 public:
  /// @param[in] w  natural frequency [rad/s]
  ElementResponse(const ElementMotion& motion, double w, double zeta);

  /// @param[in] t  from the start of the element [s]
  double At(double t) const;

 private:
  double Free(double t, double cosine, double sine) const;

  std::size_t count_;
  std::array<Complex, 3> Y_{}, s_{};
  double end_, decay_, wd_;
  double P_, Q_;            // the free part while the element lasts
  double PAfter_, QAfter_;  // the decay behind it
};

}  // namespace qarv::synthesis
