// Fourier transform of real waves of any length: a plan that owns its tables, and the one-call
// form.
#pragma once

#include <memory>

#include "common/int_types.h"

namespace qarv::common {

class RealFft;

/// Real Fourier transforms of one length n.
///
///     spec1[k] + i spec2[k] = sum over j of wave[j] exp(-2 pi i j k / n),   0 <= k <= n / 2
///
/// The forward transform is not scaled, the inverse divides by n.  The n / 2 + 1 lines (n / 2
/// rounded down) are the whole spectrum of a real wave: line 0 and, for even n, line n / 2 have no
/// imaginary part.  Any n from 1 takes O(n log n); lengths with prime factors up to 31 are the
/// quick ones.
///
/// @code
/// const FftPlan plan(4);
/// std::vector<double> work(plan.GetWorkSize());
/// const double wave[4] = {1.0, 0.0, -1.0, 0.0};  // one cosine
/// double re[3], im[3];
/// const bool done = plan.Forward(wave, work.data(), re, im);  // true
/// const double line1 = re[1];                                 // 2
/// @endcode
///
/// A plan owns its tables, never changes and can be copied cheaply.  Several threads may use one at
/// a time, each with its own buffers.  The root mean square error is about 4e-16 of that of the
/// spectrum.
///
/// Source: J. W. Cooley, J. W. Tukey, An algorithm for the machine calculation of complex Fourier
/// series (1965); for large primes L. I. Bluestein, A linear filtering approach to the computation
/// of the discrete Fourier transform (1970).
class FftPlan {
 public:
  /// Throws the standard allocation or length error where the tables do not fit into memory.
  explicit FftPlan(uint64 n);

  /// The length n. [sample]
  uint64 GetSize() const { return n_; }
  /// The number of doubles that the transforms need for `work`: n for even n with small factors, a
  /// few n otherwise.
  uint64 GetWorkSize() const;

  /// @param[in]  wave         n samples
  /// @param      work         GetWorkSize() doubles, which are overwritten
  /// @param[out] spec1,spec2  real and imaginary parts, n / 2 + 1 lines each
  /// @return false, with nothing written, if a pointer is null or n is 0
  bool Forward(const double* wave, double* work, double* spec1, double* spec2) const;

  /// @param[out] wave         n samples
  /// @param      work         GetWorkSize() doubles, which are overwritten
  /// @param[in]  spec1,spec2  real and imaginary parts, n / 2 + 1 lines each; imaginary parts
  ///                          that a real wave does not have are not read
  /// @return false, with nothing written, if a pointer is null or n is 0
  bool Inverse(double* wave, double* work, const double* spec1, const double* spec2) const;

 private:
  uint64 n_;
  std::shared_ptr<const RealFft> tables_;
};

/// The transforms as single calls, which build a plan each, and the roots of unity.
class CMatFFT {
 public:
  /// The forward transform of FftPlan.
  /// @param      work   n doubles, which are overwritten
  /// @param[in]  nline  n / 2: the index of the last line
  /// @return false, with nothing written, if a pointer is null, n is 0 or nline is not n / 2
  static bool WaveRfft(const double* wave, double* work, uint64 n, double* spec1, double* spec2,
                       uint64 nline);

  /// The inverse transform of FftPlan; what WaveRfft delivered gives the samples back.
  /// @return false as WaveRfft
  static bool WaveIfft(double* wave, double* work, uint64 n, const double* spec1,
                       const double* spec2, uint64 nline);

  /// Cosine and sine of the i-th of n equal steps of a full turn, 2 pi i / n.  Any i counts modulo
  /// n; multiples of an eighth of a turn are exact and symmetric.
  /// @return false, with nothing written, if n is not positive or a place is null
  static bool GetCosSinI(int64 i, int64 n, double* c, double* s);
};

}  // namespace qarv::common
