// The sine of the sample index.
#include "family/sine_section.h"

#include "common/numeric/constants.h"
#include "numeric/elementary/sine_block.h"

namespace qarv::wave_def {

using namespace common::elementary;

namespace {

/// 0, 1, 2, ...: SSE2 converts integers of 32 bits only, which makes the loop around wider than its
/// registers.
constexpr auto kIndices = [] {
  common::SampleBlock k{};
  for (std::size_t i = 0; i < k.size(); ++i) k[i] = static_cast<double>(i);
  return k;
}();
static_assert(kIndices.size() <= kBlock);

}  // namespace

void DrawUnitSine(common::uint64 first, double Ps, std::span<double> y,
                  common::InstructionSet set) {
  common::RunWith(set, [=]() QARV_LANES {
    Angle<SineKind> sine;
    const auto base = static_cast<double>(first);
    const double* const index = kIndices.data();
    double* const to = y.data();
    OneBlock(
        sine, y.size(),
        [=](std::size_t i) QARV_LANES { return (base + index[i]) / Ps * common::kTwoPi; },
        [=](std::size_t i, double value) QARV_LANES { to[i] = value; });
  });
}

}  // namespace qarv::wave_def
