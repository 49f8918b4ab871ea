// Reshaping of a compensated waveform's spectrum: less displacement, and a table that ends where it
// began.
//
//   theta      2 pi k / N
//   C1 .. C4   spectra of the four conditions: area, first moment, first sample, last sample
//   G, b       Lagrange's system G lambda = b
#include "compensation/reshape.h"

#include <array>
#include <cmath>
#include <utility>

#include "com_def/com_def_system_const.h"
#include "common/numeric/constants.h"

namespace qarv::wave_def::compensation {

namespace {

using Vector4 = std::array<double, 4>;
using Matrix4 = std::array<Vector4, 4>;

double Squared(double v) { return v * v; }

/// Solves G x = b for a symmetric G, by elimination with partial pivoting.
/// @return false if G is singular
bool Solve(Matrix4 G, Vector4 b, Vector4* x) {
  // Scaled to a diagonal of 1: G22 grows with N^2, which costs all digits of a long frame
  // otherwise.
  Vector4 scale{};
  for (std::size_t i = 0; i < 4; ++i) {
    if (!(G[i][i] > 0.0)) return false;
    scale[i] = 1.0 / std::sqrt(G[i][i]);
  }
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 4; ++j) G[i][j] *= scale[i] * scale[j];
    b[i] *= scale[i];
  }
  for (std::size_t c = 0; c < 4; ++c) {
    std::size_t pivot = c;
    for (std::size_t r = c + 1; r < 4; ++r) {
      if (std::fabs(G[r][c]) > std::fabs(G[pivot][c])) pivot = r;
    }
    if (!(std::fabs(G[pivot][c]) > 1e-14)) return false;
    std::swap(G[c], G[pivot]);
    std::swap(b[c], b[pivot]);
    for (std::size_t r = c + 1; r < 4; ++r) {
      const double f = G[r][c] / G[c][c];
      for (std::size_t j = c; j < 4; ++j) G[r][j] -= f * G[c][j];
      b[r] -= f * b[c];
    }
  }
  for (std::size_t i = 4; i-- > 0;) {
    double v = b[i];
    for (std::size_t j = i + 1; j < 4; ++j) v -= G[i][j] * (*x)[j];
    (*x)[i] = v / G[i][i];
  }
  for (std::size_t i = 0; i < 4; ++i) (*x)[i] *= scale[i];
  return true;
}

}  // namespace

Reshaper::Reshaper(uint64 N) : plan_(N) {
  const auto lines =
      static_cast<std::size_t>(com_def::comdefsystemconst::ConvNsampToNlineByVal(N) + 1);
  const auto work = static_cast<std::size_t>(plan_.GetWorkSize());
  const std::array parts{&cos_, &sin_, &tan_, &re_, &im_, &shapedRe_, &shapedIm_};
  block_.resize(parts.size() * lines + work);
  std::span<double> rest(block_);
  const auto take = [&rest](std::size_t n) {
    const std::span<double> part = rest.first(n);
    rest = rest.subspan(n);
    return part;
  };
  for (Lines* const part : parts) *part = take(lines);
  work_ = take(work);
  for (std::size_t k = 0; k < lines; ++k) {
    common::CMatFFT::GetCosSinI(static_cast<int64>(k), static_cast<int64>(N), &cos_[k], &sin_[k]);
    const bool hasSine = k != 0 && 2 * k != N;
    tan_[k] = hasSine ? (1.0 + cos_[k]) / sin_[k] : 0.0;
  }
}

void Reshaper::SetWave(const Wave& comp) {
  plan_.Forward(comp.data(), work_.data(), re_.data(), im_.data());
}

bool Reshaper::Reshape(double g, Wave* out) {
  const uint64 N = plan_.GetSize();
  const std::size_t nline = re_.size() - 1;
  const auto n = static_cast<double>(N);
  const double energy = g / Squared(Squared(n));
  // 1 / (1 + w); the first and the last line have no weight.
  const auto weight = [&](std::size_t k) {
    if (k == nline) return 1.0;
    return 1.0 / (1.0 + energy / Squared(Squared(static_cast<double>(k) * common::kTwoPi / n)));
  };

  double H = 0.0;
  double Hc = 0.0;
  double Q = 0.0;
  Vector4 b{re_[0], 0.0, re_[0], re_[0]};
  for (std::size_t k = 1; k <= nline; ++k) {
    const double h = weight(k);
    const double mh = 2 * k == N ? h : 2.0 * h;
    H += mh;
    Hc += mh * cos_[k];
    Q += mh * (1.0 + tan_[k] * tan_[k]);
    b[1] += mh * (tan_[k] * im_[k] - re_[k]);
    b[2] += mh * re_[k];
    b[3] += mh * (cos_[k] * re_[k] + sin_[k] * im_[k]);
    shapedRe_[k] = h;  // kept for the second pass
  }
  const Matrix4 G{{{1.0, 0.0, 1.0, 1.0},  //
                   {0.0, Q, -H, H},
                   {1.0, -H, 1.0 + H, 1.0 + Hc},
                   {1.0, H, 1.0 + Hc, 1.0 + H}}};
  Vector4 lambda{};
  if (!Solve(G, b, &lambda)) return false;

  shapedRe_[0] = re_[0] - lambda[0] - lambda[2] - lambda[3];
  shapedIm_[0] = 0.0;
  for (std::size_t k = 1; k <= nline; ++k) {
    const double h = shapedRe_[k];
    shapedRe_[k] = h * (re_[k] + lambda[1] - lambda[2] - lambda[3] * cos_[k]);
    shapedIm_[k] = h * (im_[k] - lambda[1] * tan_[k] - lambda[3] * sin_[k]);
  }
  out->resize(static_cast<std::size_t>(N));
  return plan_.Inverse(out->data(), work_.data(), shapedRe_.data(), shapedIm_.data());
}

}  // namespace qarv::wave_def::compensation
