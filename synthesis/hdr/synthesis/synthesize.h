// From a required shock response spectrum to a waveform that has it.
#pragma once

#include <functional>

#include "analysis/shock.h"
#include "com_def/com_def_const.h"
#include "common/int_types.h"
#include "synthesis/comparison.h"
#include "synthesis/requirement.h"
#include "wave_def/wave_def_damping.h"

namespace qarv::synthesis {

/// What a waveform looks like.
enum class SrsShape {
  Sweep,   ///< one frequency after the other: the least load on the machine
  Shock,   ///< all frequencies start together
  Random,  ///< they start at any time
};

/// What is made as small as can be; the spectrum need not be met better than `within` then.
enum class SrsAim { Match, LeastAcceleration, LeastVelocity, LeastDisplacement };

/// The most that a machine does; 0 where there is no limit.
struct MotionLimits {
  double acceleration = 0.0;  // [amplitude unit]
  double velocity = 0.0;      // [amplitude unit x s]
  double displacement = 0.0;  // [amplitude unit x s^2] to one side
  bool operator==(const MotionLimits&) const = default;
};

struct SrsSettings {
  com_def::comdefconst::SYNC_WAVE_TYPE method = com_def::comdefconst::SYNC_WAVE_WAVELET;
  double fsamp = 0.0;        // [Hz]; 0: 20.48 times the last frequency
  common::uint64 nsamp = 0;  // [sample]; 0: 6 periods of the first frequency
  MotionLimits limits;       // wavelets only
  SrsShape shape = SrsShape::Shock;
  SrsAim aim = SrsAim::Match;  // wavelets only, if it is not Match
  double within = 0.0;         // [dB] for the aims; 0: the requirement's tolerance
  bool quick = false;          // a quarter of a decibel between the lines, for a first look
  common::uint64 seed = 1;
  /// Is told the share that is done, 0 to 1, many times a second; false ends the run.
  std::function<bool(double share)> progress = {};
};

/// Why a waveform is not what was asked for.
enum class SrsFailure {
  None,
  BadRequirement,   ///< see FaultOf; or a setting is no number, or the record over 2^24 samples
  RecordTooShort,   ///< value: samples; bound: the least that is enough
  SamplingTooLow,   ///< value: the sampling frequency [Hz]; bound: the least
  BelowItsOwnPeak,  ///< value: the level at `frequency`; bound: the peak of the waveform
  TooSteep,         ///< value: the slope at `frequency` [dB per octave]; bound: the steepest
  NotReached,       ///< value: the deviation at `frequency` [dB]; bound: the tolerance there
  PolarityNotMet,   ///< value: the difference of the sides at `frequency` [dB]; bound: kPolarityDb
  DurationNotMet,   ///< value: the duration [s] `quantity`; bound: the required one
  LimitsNotMet,     ///< value: the least found of `quantity`; bound: its limit
  Cancelled,
};

/// What a failure can be about.
enum class SrsQuantity { None, Acceleration, Velocity, Displacement, Te, TE };

struct SrsResult {
  SrsFailure failure = SrsFailure::None;
  SrsQuantity quantity = SrsQuantity::None;
  double frequency = 0.0, value = 0.0, bound = 0.0;  // see SrsFailure

  wave_def::CWaveDefDamping definition;  // without elements where there is none to give
  double fsamp = 0.0;                    // [Hz]
  SrsComparison comparison;              // of the definition's waveform
  double peak = 0.0;                     // [amplitude unit]
  analysis::Motion motion;               // of the waveform
  bool sweeps = false;  // the frequency in the middle of the energy falls steadily with time
};

/// The frequency below which the sampling is coarse [Hz], in multiples of the last one required.
inline constexpr double kLeastSampling = 10.0;
inline constexpr double kGoodSampling = 20.0;

/// Finds a sum of wavelets, or of damped sines, that has a required spectrum.
///
/// The amplitudes of some eighty components are fitted to the required spectrum by damped least
/// squares: where a response has its largest extreme, the contribution of each component is known
/// in closed form, and so is the gradient.  Wavelets end at rest on the samples, to rounding.
/// Damped sines leave a little (SrsResult::motion says how much).
///
/// The same requirement and settings give the same bits on every machine.
/// @return the best waveform found, also where the result has a failure, except for
///         BadRequirement, RecordTooShort, SamplingTooLow and Cancelled: those have none
/// Cost: about a hundred spectra of nsamp samples and 36 lines per octave.
SrsResult SynthesizeSrs(const SrsRequirement& requirement, const SrsSettings& settings);

}  // namespace qarv::synthesis
