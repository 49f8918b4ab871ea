// A stretch of a sine under an envelope: what single and gradual waves are made of.
#pragma once

#include <span>

#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

/// y[i] = sin(k / Ps 2 pi) for k = first + i, at most a block of them.  The phase is divided while
/// the sine is reduced: a division by itself takes as long as half of the sine.
/// @param[in] Ps  period [sample]
void DrawUnitSine(common::uint64 first, double Ps, std::span<double> y, common::InstructionSet set);

/// x[k] = envelope(k) sin(k / Ps 2 pi) for first <= k < end.
///
/// @param[in] Ps        period [sample]
/// @param[in] envelope  function of k, an always-inline lambda (QARV_LANES) [amplitude unit]
template <class Envelope>
void DrawSineSection(double* x, common::uint64 first, common::uint64 end, double Ps,
                     Envelope envelope, common::InstructionSet set = common::BestInstructionSet()) {
  common::SampleBlock sine;
  common::ForBlocks(set, first, end, [&](common::uint64 at, std::size_t n) QARV_LANES {
    DrawUnitSine(at, Ps, {sine.data(), n}, set);
    const auto base = static_cast<double>(at);
    const int count = static_cast<int>(n);
    const double* const from = sine.data();
    double* const out = x + at;
    for (int i = 0; i < count; ++i) out[i] = envelope(base + i) * from[i];
  });
}

}  // namespace qarv::wave_def
