// Roots of unity.
#include "numeric/fft_roots.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

#include "common/numeric/constants.h"
#include "numeric/elementary.h"
#include "numeric/sample_blocks.h"

namespace qarv::common {

namespace {

/// An angle in the first octant, and how the root of the whole angle follows from its own.
struct OctantAngle {
  double x;
  bool steep, diagonal, leftHalf, lowerHalf;

  /// The root, from cosine and sine of x.
  Complex Unfold(double c, double s) const {
    if (diagonal) c = s = std::sqrt(0.5);  // on the diagonal the two are one number
    if (steep) std::swap(c, s);
    return {leftHalf ? -c : c, lowerHalf ? -s : s};
  }
};

OctantAngle ToOctant(uint64 i, uint64 n) {
  // The angle is part num / (n parts) of a turn, parts a power of two.  A multiple of num is only
  // formed where it is at most n, so that 64 bits hold it for every n.
  uint64 num = i;
  double parts = 1.0;
  const bool lowerHalf = num > n - num;
  if (lowerHalf) num = n - num;
  const bool leftHalf = 2 * num > n - 2 * num;
  if (leftHalf) {  // 1/2 - num / n
    num = n - 2 * num;
    parts = 2.0;
  }
  const uint64 quarter = leftHalf ? 2 * num : 4 * num;  // of 1/4, in units of 1 / n; at most n
  const bool steep = quarter > n - quarter;
  const bool diagonal = quarter == n - quarter;
  if (steep) {  // 1/4 - num / (n parts)
    num = n - quarter;
    parts = 4.0;
  }
  const double x = kTwoPi * (static_cast<double>(num) / static_cast<double>(n) / parts);
  return {x, steep, diagonal, leftHalf, lowerHalf};
}

}  // namespace

Complex UnitRoot(uint64 i, uint64 n) {
  const OctantAngle angle = ToOctant(i, n);
  return angle.Unfold(elementary::Cos(angle.x), elementary::Sin(angle.x));
}

namespace {

/// The n-th roots of the indices 0, step, 2 step, ..., conjugated.
std::vector<Complex> StepRoots(uint64 count, uint64 step, uint64 n) {
  std::vector<Complex> roots(static_cast<std::size_t>(count));
  std::array<OctantAngle, kSampleBlock> angle;
  SampleBlock c, s;
  for (uint64 first = 0; first < count; first += kSampleBlock) {
    const auto size = static_cast<std::size_t>(std::min<uint64>(kSampleBlock, count - first));
    for (std::size_t k = 0; k < size; ++k) {
      angle[k] = ToOctant((first + k) * step, n);
      s[k] = angle[k].x;
    }
    elementary::Cos({s.data(), size}, {c.data(), size});
    elementary::Sin({s.data(), size}, {s.data(), size});
    for (std::size_t k = 0; k < size; ++k) {
      const Complex root = angle[k].Unfold(c[k], s[k]);
      roots.data()[first + k] = {root.re, -root.im};
    }
  }
  return roots;
}

/// All n-th roots, conjugated; n a multiple of 8, so that those of one octant show the others.
std::vector<Complex> MirroredRoots(uint64 n) {
  std::vector<Complex> roots = StepRoots(n / 8 + 1, 1, n);
  roots.resize(static_cast<std::size_t>(n));
  const uint64 quarter = n / 4;
  for (uint64 k = n / 8 + 1; k <= quarter; ++k) {
    const Complex root = roots.data()[quarter - k];
    roots.data()[k] = {-root.im, -root.re};
  }
  for (uint64 k = quarter + 1; k < n; ++k) {
    const Complex root = roots.data()[k - quarter];
    roots.data()[k] = {root.im, -root.re};
  }
  return roots;
}

}  // namespace

RootTable::RootTable(uint64 n, uint64 widest) : block_(8) {
  // The least number of sines, of which a coarse table with octants takes an eighth.
  const uint64 octants = n % 64 == 0 ? 8 : 1;
  while (widest * block_ * 4 <= n / (block_ * octants)) block_ *= 2;
  shift_ = std::countr_zero(block_);
  fine_ = StepRoots(std::min(n, widest * (block_ - 1) + 1), 1, n);
  const uint64 count = (n - 1) / block_ + 1;
  coarse_ = n % (8 * block_) == 0 ? MirroredRoots(count) : StepRoots(count, block_, n);
  rowRe_.resize(static_cast<std::size_t>(block_));
  rowIm_.resize(static_cast<std::size_t>(block_));
}

void RootTable::FillRow(InstructionSet set, uint64 step, uint64 count, double* re, double* im) {
  const uint64 block = std::min(block_, count);
  for (uint64 f = 0; f < block; ++f) {
    rowRe_.data()[f] = fine_.data()[f * step].re;
    rowIm_.data()[f] = fine_.data()[f * step].im;
  }
  RunWith(set, [&]() QARV_LANES {
    const double* const fineRe = rowRe_.data();
    const double* const fineIm = rowIm_.data();
    for (uint64 first = 0; first < count; first += block_) {
      const Complex coarse = coarse_.data()[first / block_ * step];
      const uint64 size = std::min(block_, count - first);
      QARV_INDEPENDENT
      for (uint64 f = 0; f < size; ++f) {
        const Complex root = coarse * Complex{fineRe[f], fineIm[f]};
        re[first + f] = root.re;
        im[first + f] = root.im;
      }
    }
  });
}

}  // namespace qarv::common
