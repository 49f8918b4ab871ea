// The classical shock pulses: each is drawn, and then its two tolerance bands are built.
#pragma once

#include "band/band_pen.h"
#include "common/int_types.h"
#include "pulse/pulse_corners.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::wave_def {

/// The three arrays of a pulse, N samples each, 0 on entry.  [amplitude unit]
struct PulseArrays {
  SampleSpan wave, tolU, tolL;
};

/// Draws a half-sine about its centre, cos(k pi / h 0.5) peak at k samples to either side; a side
/// that runs out of the frame is cut.
/// @param[in] centre  [sample]   @param[in] width,dt  [s]
/// @return false if dt or peak is 0, the centre lies outside the frame, or there is no width
[[nodiscard]] bool DrawHalfSine(common::uint64 centre, double width, double dt, double peak,
                                SampleSpan wave);

/// Draws a haversine, (cos(k pi / h) 0.5 + 0.5) peak; everything else as DrawHalfSine.
[[nodiscard]] bool DrawHaversine(common::uint64 centre, double width, double dt, double peak,
                                 SampleSpan wave);

/// Draws the polyline from level a up to p and down to e, raised (an upper band or a pulse) or
/// lowered.
/// @return false, with what was drawn so far left, if dt is 0, there is no width, or a corner lies
///         outside the frame
[[nodiscard]] bool DrawTrapezoid(const CWaveDefClassical& def, bool upper, common::uint64 centre,
                                 double dt, double rise, double fall, double a, double p, double e,
                                 SampleSpan out);

/// Draws a sawtooth, 0 to peak to 0.
/// @return false, with what was drawn so far left, if a corner lies outside the frame
[[nodiscard]] bool DrawSawtooth(const SawtoothCorners& corners, double peak, SampleSpan wave);

/// Builds a pulse and its bands, the upper one first.
/// @param[in]  centre  centre of the pulse [sample]
/// @param[in]  dt      sample interval [s]
/// @return false, with what was drawn so far left in the arrays, if the pulse or a band does not
///         fit the frame, or the shape does not offer the tolerance kind
[[nodiscard]] bool BuildHalfSinePulse(const CWaveDefClassical& def, common::uint64 centre,
                                      double dt, const PulseArrays& out);
[[nodiscard]] bool BuildSawtoothPulse(const CWaveDefClassical& def, common::uint64 centre,
                                      double dt, const PulseArrays& out);
[[nodiscard]] bool BuildTrapezoidPulse(const CWaveDefClassical& def, common::uint64 centre,
                                       double dt, const PulseArrays& out);
// Deliberate: a triangle and a user trapezoid have the user's band only, and fail with other kinds.
[[nodiscard]] bool BuildTrianglePulse(const CWaveDefClassical& def, common::uint64 centre,
                                      double dt, const PulseArrays& out);
[[nodiscard]] bool BuildUserTrapezoidPulse(const CWaveDefClassical& def, common::uint64 centre,
                                           double dt, const PulseArrays& out);
[[nodiscard]] bool BuildHaversinePulse(const CWaveDefClassical& def, common::uint64 centre,
                                       double dt, const PulseArrays& out);

}  // namespace qarv::wave_def
