// The damped-sine synthesis: the sum of components by one of three methods.
#pragma once

#include "common/data_array/data_array_float_t.h"
#include "common/int_types.h"
#include "family/damping_layout.h"
#include "numeric/instruction_set.h"
#include "wave_def/wave_def_damping.h"

namespace qarv::wave_def {

/// Synthesises the waveform of a damped-sine definition.
///
/// @param[in]  def    the components and the method
/// @param[in]  fsamp  sampling frequency [Hz]
/// @param[out] wave   def.GetNsamp() samples [amplitude unit]; what it held is replaced
/// @return false, with `wave` unchanged, if fsamp is 0, wave is null, Nsamp or the number of
///         elements is 0, or SyncWaveType names no method
///
/// Degenerate parameters (a frequency of 0, NaN) give the samples that the arithmetic gives.
/// Cost: linear in the samples that the components cover.
[[nodiscard]] bool DampingSynthesize(const CWaveDefDamping& def, double fsamp,
                                     common::CDataArrayFloatT<double>* wave);

// The building blocks work on a buffer of nsamp samples [amplitude unit].  A component starts at
// the sample floor(delay / dt), dt = 1 / fsamp, is cut at the end of the buffer, and adds nothing
// where it starts outside: at or behind the end, before the first sample, or nowhere (NaN).

/// Adds ampl e^(-zeta omega t) sin(omega t), omega = 2 pi freq.
/// @param[in] freq  [Hz]   @param[in] ampl [amplitude unit]
/// @param[in] zeta  damping ratio, of omega itself and not of a damped frequency [1]
/// @param[in] delay [s]
/// @return false if the buffer is null
bool AddDampedSine(double* buffer, common::uint64 nsamp, double fsamp, double freq, double ampl,
                   double zeta, double delay,
                   common::InstructionSet set = common::BestInstructionSet());

/// Adds e ampl zeta (x cos(x + phi) + sin(x)) e^(-zeta x), x = omega t,
/// phi = atan(-2 zeta / (zeta^2 - 1)): a damped sine whose final velocity and displacement are 0.
/// The arguments are those of AddDampedSine.
/// @return false if the buffer is null
bool AddModifiedDampedSine(double* buffer, common::uint64 nsamp, double fsamp, double freq,
                           double ampl, double zeta, double delay,
                           common::InstructionSet set = common::BestInstructionSet());

/// The velocity at the end of a sum of damped sines, and the delay-dependent term of its
/// displacement, from the integrals of each component over all time.
///
///   m = omega (zeta^2 + 1),   q = ampl / m
///   velocity = sum q,   displacement = sum (-2 zeta ampl / m^2 - q delay)
///
/// @param[in]  freq,ampl,zeta,delay  count values each
/// @param[out] velocity      [amplitude unit x s]
/// @param[out] displacement  [amplitude unit x s^2]
/// @return false if a result place is null
bool CalcDampedSineResidual(common::uint64 count, const double* freq, const double* ampl,
                            const double* zeta, const double* delay, double* velocity,
                            double* displacement);

/// Clears the buffer and adds the damped sines and one compensating damped sine, whose amplitude
/// makes the final velocity 0 and whose delay makes the final displacement 0.  Where it would start
/// before the time origin, everything is delayed so that it starts there.
/// @param[in] compFreq,compZeta  the compensating component [Hz], [1]
/// @return the shift that was applied [s]; 0, with nothing changed, if a pointer is null
double SynthesizeDampedSines(double* buffer, common::uint64 nsamp, double fsamp, double timeOrigin,
                             common::uint64 count, const double* freq, const double* ampl,
                             const double* zeta, const double* delay, double compFreq,
                             double compZeta);

/// Clears the buffer and adds the modified damped sines, delayed by the time origin.
/// @return false, with nothing changed, if a pointer is null
bool SynthesizeModifiedDampedSines(double* buffer, common::uint64 nsamp, double fsamp,
                                   double timeOrigin, common::uint64 count, const double* freq,
                                   const double* ampl, const double* zeta, const double* delay);

/// Clears the buffer and adds the wavelets: sines under a half-sine window that lasts an odd number
/// N of half cycles, sin(omega t) ampl sin(omega / N t), delayed by the time origin.  Such a
/// wavelet ends with velocity and displacement 0.
/// @param[in] halves  half cycles; fewer than 3 become 3, an even number is raised by one
/// @return false, with nothing changed, if the buffer is null
bool SynthesizeWavelets(double* buffer, common::uint64 nsamp, double fsamp, double timeOrigin,
                        common::uint64 count, const double* freq, const double* ampl,
                        const common::uint64* halves, const double* delay,
                        common::InstructionSet set = common::BestInstructionSet());

}  // namespace qarv::wave_def
