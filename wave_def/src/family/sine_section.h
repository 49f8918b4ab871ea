// A stretch of a sine under an envelope: what single and gradual waves are made of.
#pragma once

#include "common/numeric/constants.h"
#include "numeric/sample_blocks.h"

namespace qarv::wave_def {

/// x[k] = envelope(k) sin(k / Ps 2 pi) for first <= k < end.
///
/// @param[in] Ps        period [sample]
/// @param[in] envelope  function of k, an always-inline lambda (QARV_LANES) [amplitude unit]
template <class Envelope>
void DrawSineSection(double* x, common::uint64 first, common::uint64 end, double Ps,
                     Envelope envelope, common::InstructionSet set = common::BestInstructionSet()) {
  common::SampleBlock c;
  common::ForBlocks(set, first, end, [&](common::uint64 at, std::size_t n) QARV_LANES {
    common::FillBlock(c.data(), at, n,
                      [Ps](double k) QARV_LANES { return k / Ps * common::kTwoPi; });
    common::elementary::Sin({c.data(), n}, {c.data(), n}, set);
    double* const out = x + at;
    common::FillBlock(out, at, n, envelope);
    for (std::size_t i = 0; i < n; ++i) out[i] *= c[i];
  });
}

}  // namespace qarv::wave_def
