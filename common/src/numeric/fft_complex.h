// The complex Fourier transform of lengths with small prime factors.
#pragma once

#include <vector>

#include "common/int_types.h"
#include "numeric/fft_pass.h"
#include "numeric/fft_table.h"

namespace qarv::common {

/// Complex transforms of one length n:  Z[k] = sum z[j] exp(-2 pi i j k / n), unscaled.
///
/// One pass per factor: every pass reads one buffer and writes another, in order, and no bit
/// reversal is needed (Stockham's autosort form; see Van Loan, Computational Frameworks for the
/// Fast Fourier Transform, section 1.7).  The factors w are applied before each butterfly, so that
/// the first pass, which has to part neighbours, needs none, and all others run along both their
/// values and their factors.
class ComplexFft {
 public:
  /// Whether all prime factors of n are small enough.
  static bool HasPasses(uint64 n);

  /// @param[in]  n  length, 0 < n, for which HasPasses
  explicit ComplexFft(uint64 n);

  uint64 GetSize() const { return n_; }

  /// Transforms n values by way of mid and out, which take turns and do not overlap.  The inverse,
  /// unscaled, is the same with re and im exchanged in every argument.
  ///
  /// @param[in]  in    n values.  They may stand in mid if ReadsMid and in out otherwise
  /// @param      mid   n values, which are overwritten
  /// @param[out] out   n values
  void Transform(InstructionSet set, const Source& in, const Split& mid, const Split& out) const;
  /// The same with the result in `last`, over the values of `out` if it pleases.
  void Transform(InstructionSet set, const Source& in, const Split& mid, const Split& out,
                 const Target& last) const;

  /// Which of its two buffers the input may stand in.
  bool ReadsMid() const { return passes_.size() % 2 != 0; }

 private:
  void FillTwiddles(const Pass& pass, class RootTable& roots, double* twiddle) const;

  uint64 n_;
  std::vector<Pass> passes_;
  FftTable tables_;  // of all passes
};

}  // namespace qarv::common
