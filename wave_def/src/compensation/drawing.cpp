// Drawing compensation pulses into a frame, and the array operations around it.
#include "compensation/drawing.h"

#include <algorithm>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::wave_def::compensation {

using common::FloorToIndex;

namespace {

/// Draws one cosine pulse from sample `first` on, downwards or upwards, as far as the frame goes.
void DrawCosinePulse(double* target, uint64 N, double A, double r, const CosinePulse& pulse,
                     uint64 first, bool down) {
  const double n = pulse.p > 0.0 ? r * pulse.sh / ((pulse.f + 0.5) * pulse.p) : 0.0;
  const uint64 taper = FloorToIndex(n + 0.5);
  const uint64 flat = FloorToIndex(n * pulse.f + 0.5);
  const double level = -(A * pulse.p);
  // Downwards an index below 0 wraps beyond the frame, so that one test ends both.
  uint64 i = first;
  const auto step = [&] { i = down ? i - 1 : i + 1; };
  for (uint64 k = 0; k < flat && i < N; ++k, step()) target[i] = level;
  for (uint64 k = 0; k < taper && i < N; ++k, step()) {
    const double phase = static_cast<double>(k) * common::kPi / static_cast<double>(taper);
    target[i] = level * (0.5 + 0.5 * common::elementary::Cos(phase));
  }
}

}  // namespace

void DrawRampCompensation(double* target, uint64 N, double A, uint64 iPre, uint64 iPost,
                          double pPre, double pPost) {
  if (iPre != 0) {
    const double slope = -(A * pPre / static_cast<double>(iPre));
    for (uint64 i = 0; i < iPre && i < N; ++i) target[i] = static_cast<double>(i) * slope;
  }
  if (N == 0 || iPost >= N - 1) return;
  const uint64 m = N - iPost - 1;
  const double slope = -(A * pPost / static_cast<double>(m));
  for (uint64 k = 0; k < m; ++k) {
    // Deliberate: sample 0 is never written from behind; it is the start of the frame, at rest.
    if (N - 1 - k != 0) target[N - 1 - k] = static_cast<double>(k) * slope;
  }
}

void DrawCosineCompensation(double* target, uint64 N, double A, double S, uint64 iPre, uint64 iPost,
                            const CosinePulse& pre, const CosinePulse& post) {
  if (A == 0.0) return;
  const double r = S / A;
  DrawCosinePulse(target, N, A, r, pre, iPre - 1, true);
  DrawCosinePulse(target, N, A, r, post, iPost + 1, false);
}

bool DrawCompensation(double* target, uint64 N, double A, double S,
                      CWaveDefClassical::COMP_TYPE type, const Place& at, const Drawn& drawn) {
  const auto iPre = static_cast<uint64>(at.iPS);
  const auto iPost = static_cast<uint64>(at.iPE);
  const auto cosines = [&](double f) {
    DrawCosineCompensation(target, N, A, S, iPre, iPost, {drawn.levelPre, drawn.sharePre, f},
                           {drawn.levelPost, drawn.sharePost, f});
  };
  if (target == nullptr) return false;
  switch (type) {
    case CWaveDefClassical::CMP_RAMP:
      DrawRampCompensation(target, N, A, iPre, iPost, drawn.levelPre, drawn.levelPost);
      return true;
    case CWaveDefClassical::CMP_COSINE:
      cosines(0.0);
      return true;
    case CWaveDefClassical::CMP_FLAT_COSINE:
      cosines(1.0);
      return true;
    case CWaveDefClassical::CMP_NONE:
    case CWaveDefClassical::CMP_OPTIMIZED:  // follows its bands, and is no drawing of levels and
                                            // shares
      break;
  }
  return false;
}

double SampleSum(const double* samples, uint64 first, uint64 end) {
  double sum = 0.0;
  if (samples == nullptr) return sum;
  for (uint64 i = first; i < end; ++i) sum += samples[i];
  return sum;
}

void ShiftWithHold(double* samples, uint64 n, int64 shift) {
  if (samples == nullptr || n == 0 || shift == 0) return;
  const uint64 places = std::min(
      n - 1, shift > 0 ? static_cast<uint64>(shift) : uint64{0} - static_cast<uint64>(shift));
  if (shift > 0) {
    std::copy_backward(samples, samples + (n - places), samples + n);
    std::fill(samples, samples + places, samples[places]);
  } else {
    std::copy(samples + places, samples + n, samples);
    std::fill(samples + (n - places), samples + n, samples[n - 1]);
  }
}

}  // namespace qarv::wave_def::compensation
