// Where a classical pulse lies in its frame, and how its times become samples.
#pragma once

#include <optional>

#include "common/int_types.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def {

/// Half of a pulse's nominal width.
struct PulseHalfWidth {
  double h;          // [sample]; a time [s] where the pulse was clamped to the frame
  common::uint64 n;  // [sample]
};

/// Half the width of a pulse in samples: h = width 0.5 / dt, n = floor(h + 0.01).
///
/// A pulse as wide as the frame of N samples or wider is clamped to n = N / 2 - 1; so is one of a
/// negative width, whose n wraps.
/// @param[in] width  [s]   @param[in] dt  sample interval [s]
/// @return nothing if width or dt is 0 or N is below 2
std::optional<PulseHalfWidth> CalcPulseHalfWidth(double width, double dt, common::uint64 N);

/// A pulse in its frame.  Indices wrap below 0 on purpose: a wrapped one is not below N, and every
/// stroke tests its own.
struct PulseSpan {
  common::uint64 N;                   // [sample] length of the frame
  common::uint64 start, centre, end;  // [sample]
  double A;                           // [amplitude unit] peak
  double W;                           // [s] nominal width
  double dt;                          // [s] sample interval

  /// A fraction of the width in samples, truncated: (fraction W) / dt.
  common::uint64 Samples(double fraction) const;
};

/// The sample of a definition's centre: floor((MainShift T + T 0.5) / dt + 0.001), T = Nsamp dt.
common::uint64 CentreOf(const CWaveDefClassical& def, double dt);

/// The half width by which a definition is placed: floor(MainWidth 0.5 / dt).  [sample]
common::uint64 PlacedHalfWidth(const CWaveDefClassical& def, double dt);

/// The span of a definition's pulse about a centre.
/// @return nothing if dt is 0 or CalcPulseHalfWidth gives nothing
std::optional<PulseSpan> SpanOf(const CWaveDefClassical& def, common::uint64 centre, double dt);

}  // namespace qarv::wave_def
