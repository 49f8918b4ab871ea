// The plan of the complex transform: factors, tables, and the order of the buffers.
#include "numeric/fft_complex.h"

#include <algorithm>

#include "numeric/fft_roots.h"

namespace qarv::common {
namespace {

/// The radices of n in the order of their passes, and what is left of n beside them.
struct Factors {
  std::vector<uint64> radices;
  uint64 rest;
};

/// Eights and fours first: they make rows of whole lanes for all behind them.
Factors Factorise(uint64 n) {
  Factors f{{}, n};
  uint64 twos = 0;
  for (; f.rest % 2 == 0; f.rest /= 2) ++twos;
  for (; twos == 3 || twos >= 5; twos -= 3) f.radices.push_back(8);
  for (; twos >= 2; twos -= 2) f.radices.push_back(4);
  for (uint64 p = 3; p <= kLargestRadix; p += 2) {
    for (; f.rest % p == 0; f.rest /= p) f.radices.push_back(p);
  }
  if (twos == 1) f.radices.push_back(2);
  return f;
}

uint64 CountTwiddles(const Pass& p) { return p.stride == 1 ? 0 : 2 * (p.radix - 1) * p.stride; }
/// Odd radices without a butterfly of their own take their roots from a table.
uint64 CountRoots(const Pass& p) { return p.radix < 7 || p.radix == 8 ? 0 : 2 * p.radix; }

}  // namespace

bool ComplexFft::HasPasses(uint64 n) { return Factorise(n).rest == 1; }

ComplexFft::ComplexFft(uint64 n) : n_(n) {
  uint64 stride = 1;
  uint64 tableSize = 0;
  for (const uint64 radix : Factorise(n).radices) {
    passes_.push_back({radix, stride, n / (stride * radix), nullptr, nullptr});
    tableSize += CountTwiddles(passes_.back()) + CountRoots(passes_.back());
    stride *= radix;
  }
  if (tableSize == 0) return;
  tables_ = FftTable(tableSize);
  RootTable roots(n, passes_.back().radix - 1);
  double* at = tables_.Get();
  for (Pass& p : passes_) {
    p.twiddle = at;
    if (p.stride != 1) FillTwiddles(p, roots, at);
    at += CountTwiddles(p);
    if (CountRoots(p) == 0) continue;
    p.roots = at;
    for (uint64 r = 0; r < p.radix; ++r) {
      const Complex root = UnitRoot(r, p.radix);
      *at++ = root.re;
      at[p.radix - 1] = -root.im;
    }
    at += p.radix;
  }
}

void ComplexFft::FillTwiddles(const Pass& p, RootTable& roots, double* twiddle) const {
  for (uint64 r = 1; r < p.radix; ++r) {
    double* const re = twiddle + 2 * (r - 1) * p.stride;
    double* const im = re + p.stride;
    if (p.m == 1) {  // most of the table
      roots.FillRow(BestInstructionSet(), r, p.stride, re, im);
      continue;
    }
    for (uint64 k = 0; k < p.stride; ++k) {
      const Complex w = roots(k * r * p.m);
      re[k] = w.re;
      im[k] = w.im;
    }
  }
}

void ComplexFft::Transform(InstructionSet set, const Source& in, const Split& mid,
                           const Split& out) const {
  Transform(set, in, mid, out, {out.re, out.im});
}

void ComplexFft::Transform(InstructionSet set, const Source& in, const Split& mid, const Split& out,
                           const Target& last) const {
  if (passes_.empty()) {
    RunPass(set, {1, 1, 1, nullptr, nullptr}, in, last);
    return;
  }
  Source x = in;
  bool toOut = ReadsMid();
  for (const Pass& p : passes_) {
    const Split& y = toOut ? out : mid;
    RunPass(set, p, x, &p == &passes_.back() ? last : Target{y.re, y.im});
    x = {y.re, y.im, 1};
    toOut = !toOut;
  }
}

}  // namespace qarv::common
