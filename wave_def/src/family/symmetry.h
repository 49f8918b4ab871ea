// The generator of the symmetry wave: a shock pulse and its compensation of the same shape.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "family/symmetry_layout.h"
#include "numeric/instruction_set.h"
#include "wave_def/wave_def_symmetry.h"

namespace qarv::wave_def {

/// Generates the main pulse and the compensating pulse or its two halves, with silence around them.
///
/// All times become samples by time x fsamp, rounded half up; every pulse is n samples wide.
///   whole, forward:   PreZero | -pulse | MidZero | pulse | PostZero
///   whole, backward:  PreZero | pulse | MidZero | -pulse | PostZero
///   divided:          PreZero | -pulse/2 | MidZero | pulse | MidZeroBackward | -pulse/2 | PostZero
/// @param[in]  def    the parameters
/// @param[in]  fsamp  sampling frequency [Hz]
/// @param[out] wave   the whole [amplitude unit]; what it held is replaced
/// @return false, with `wave` unchanged, if wave is null, fsamp, Peak or Width is 0, WaveKind is
///         not HALF_SINE, TRIANGLE or HAVERSINE, the whole has no samples, or a sample of a pulse
///         would fall outside it (negative silences, a triangle's peak beyond its width)
[[nodiscard]] bool SymmetryGenerate(const CWaveDefSymmetry& def, double fsamp,
                                    common::CDataArrayFloatT<double>* wave);

// The pulses: each assigns the samples of a pulse of n samples with the peak a [amplitude unit]
// that begins at sample `at` of the buffer.  The buffer has room for them: that is the caller's
// check.

/// A half sine, sin(k pi / n) a; it ends one sample before its zero.
void SymHalfSinePulse(double a, common::uint64 n, common::uint64 at, double* buffer,
                      common::InstructionSet set = common::BestInstructionSet());
/// A haversine about its sample h = n / 2 (rounded down): (cos(k pi / h) 0.5 + 0.5) a at k samples
/// to either side.  It begins one sample behind `at`; of no samples it still has its peak.
void SymHaversinePulse(double a, common::uint64 n, common::uint64 at, double* buffer,
                       common::InstructionSet set = common::BestInstructionSet());
/// A triangle that rises to sample trunc(peakPos n), at least 1; it ends one sample before its
/// zero.
/// @param[in] peakPos  place of the peak [width]; the peak lies inside the width
void SymTrianglePulse(double a, common::uint64 n, double peakPos, common::uint64 at,
                      double* buffer);

}  // namespace qarv::wave_def
