// The complex Fourier transform of any length, on split arrays of real and imaginary parts.
#pragma once

#include <memory>
#include <vector>

#include "common/int_types.h"
#include "numeric/fft_roots.h"

namespace qarv::common {

class ChirpFft;

/// Complex transforms of one length n:  Z[k] = sum z[j] exp(-2 pi i j k / n), unscaled.
///
/// Lengths whose prime factors are small run through one pass per factor (Stockham's autosort form:
/// every pass reads one buffer and writes the other, in order, and no bit reversal is needed; see
/// Van Loan, Computational Frameworks for the Fast Fourier Transform, section 1.7).  Other lengths
/// become a convolution of a length that has (Bluestein's chirp transform).
class ComplexFft {
 public:
  explicit ComplexFft(uint64 n);

  uint64 GetSize() const { return n_; }
  /// The number of doubles that `Transform` needs for its scratch.
  uint64 GetScratchSize() const;

  /// Transforms n values in place.  The inverse, unscaled, is the same with re and im exchanged.
  void Transform(double* re, double* im, double* scratch) const;

 private:
  friend class ChirpFft;

  /// One factor of the length: `radix` values that lie m * stride apart become `radix` neighbours.
  struct Pass {
    uint64 radix;
    uint64 m;                      // what is left of the length behind this pass
    uint64 stride;                 // product of the radices before it
    std::vector<Complex> twiddle;  // m rows of radix - 1 factors
    std::vector<Complex> roots;  // of the radix itself, for those without a butterfly of their own
  };

  void AddPasses(const std::vector<uint64>& factors);

  uint64 n_;
  std::vector<Pass> passes_;
  std::shared_ptr<const ChirpFft> chirp_;  // instead of passes; never changes, so copies share it
};

}  // namespace qarv::common
