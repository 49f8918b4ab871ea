// What the band builders share: their input, and the look-up of a tolerance kind's row.
#pragma once

#include <array>
#include <cstddef>

#include "band/band_pen.h"
#include "band/tol_kind.h"
#include "common/int_types.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def {

/// What a band is built from and into.
struct BandTask {
  const CWaveDefClassical& def;
  bool upper;             // the upper band, or the lower
  common::uint64 centre;  // [sample] of the pulse
  double dt;              // [s] sample interval
  ConstSampleSpan wave;   // nominal pulse, N samples [amplitude unit]
  SampleSpan out;         // the band, N samples, 0 on entry [amplitude unit]

  /// Whether there is anything to build: a sample interval, both arrays, a kind that exists.
  bool IsComplete() const {
    return dt != 0.0 && wave.data() != nullptr && out.data() != nullptr &&
           IsTolKind(def.GetTolKind());
  }
  /// The level of this band, of a pair that is entered as two positive ratios.
  double Signed(double upperLevel, double lowerLevel) const {
    return upper ? upperLevel : -lowerLevel;
  }
};

/// The row of a kind; all zeros for a kind that the table does not list.
template <class Row, std::size_t N>
constexpr Row RowOf(const std::array<Row, N>& table, int kind) {
  const auto i = static_cast<std::size_t>(kind);
  return kind >= 0 && i < N ? table[i] : Row{};
}

}  // namespace qarv::wave_def
