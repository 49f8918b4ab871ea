// The passes of a complex Fourier transform: each takes one factor out of the length.
#pragma once

#include "common/int_types.h"
#include "numeric/instruction_set.h"

namespace qarv::common {

/// Larger prime factors have no pass: they are cheaper as a convolution than by their sums.
constexpr uint64 kLargestRadix = 31;

/// Complex values in two arrays.
struct Split {
  double* re;
  double* im;
};

/// Complex values that are read: value i is re[i step] + i im[i step].  A step of 2 reads a real
/// wave as complex values, even samples as real parts and odd ones as imaginary.
struct Source {
  const double* re;
  const double* im;
  uint64 step;
};

/// Where complex values go.  As pairs, with im null, each has its imaginary part in front of the
/// real one: that is what an inverse transform by exchanged parts needs for the samples of a wave.
struct Target {
  double* re;
  double* im;
};

/// One factor of a length: transforms of `radix` values that lie stride * m apart.
///
///   y[k + stride (q + radix j)] = sum over r of x[k + stride (j + m r)] w^(k r) v^(q r),
///   0 <= k < stride,  0 <= j < m,  w = exp(-2 pi i / (radix stride)),  v = exp(-2 pi i / radix)
struct Pass {
  uint64 radix;   // at most kLargestRadix, a prime, 4 or 8
  uint64 stride;  // product of the radices before it
  uint64 m;       // what is left of the length behind this pass
  const double*
      twiddle;          // w^(k r): for r = 1 .. radix - 1 `stride` real and as many imaginary parts
  const double* roots;  // v^q: `radix` real and as many imaginary parts
};

/// Runs a pass.  Source and target must not overlap.
void RunPass(InstructionSet set, const Pass& pass, const Source& x, const Target& y);

}  // namespace qarv::common
