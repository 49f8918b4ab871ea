// Reshaping of a compensated waveform's spectrum: less displacement, and a table that ends where it
// began.
//
// Of all spectra A' it finds the one with the least
//
//   sum over k of  m (|A'_k - A_k|^2 + w_k |A'_k|^2),   w_k = (g / N^4) / (2 pi k / N)^4
//
// (m = 1 for the lines 0 and N / 2, otherwise 2) under four conditions: no area, so that the
// velocity returns to 0; no first moment, so that the displacement does; the first and the last
// sample 0, so that the table is at rest at both ends.  |A'_k|^2 / (2 pi k / N)^4 is the
// displacement's energy in line k: a larger gain g trades closeness to the drawn waveform for
// displacement.  With Lagrange's multipliers the solution is a 4 x 4 system and one pass over the
// lines.
#pragma once

#include <span>

#include "common/numeric/mat_fft.h"
#include "compensation/problem.h"

namespace qarv::wave_def::compensation {

class Reshaper {
 public:
  /// For frames of N samples.
  explicit Reshaper(uint64 N);
  Reshaper(const Reshaper&) = delete;  // its parts point into its own block
  Reshaper& operator=(const Reshaper&) = delete;
  ~Reshaper() = default;

  /// Takes the waveform to reshape: N samples.
  void SetWave(const Wave& comp);

  /// The reshaped waveform for gain g.
  /// @param[out] out  N samples
  /// @return false if the system is singular
  bool Reshape(double g, Wave* out);

 private:
  using Lines = std::span<double>;  // one value per spectral line

  common::FftPlan plan_;
  Wave block_;                 // all work memory; the parts below lie in it
  std::span<double> work_;     // of the transforms
  Lines cos_, sin_, tan_;      // cos and sin of theta = 2 pi k / N, and (1 + cos) / sin
  Lines re_, im_;              // spectrum of the waveform
  Lines shapedRe_, shapedIm_;  // and of the result
};

}  // namespace qarv::wave_def::compensation
