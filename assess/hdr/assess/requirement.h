// A required shock response spectrum from its JSON text.
#pragma once

#include <string>
#include <string_view>

#include "assess/error.h"
#include "synthesis/requirement.h"
#include "synthesis/synthesize.h"

namespace qarv::assess {

/// A required spectrum with its name, its unit, and what it says of the record and the machine.
struct Requirement {
  std::string name;
  std::string unit = "g";  // of the levels
  synthesis::SrsRequirement spectrum;
  double fsamp = 0.0;              // [Hz]; 0 if it does not say
  common::uint64 nsamp = 0;        // [sample]; 0 if it does not say
  synthesis::MotionLimits limits;  // [unit, unit x s, unit x s^2]; 0 for none
};

/// Reads a requirement: one JSON object.
///
///   Name, About                text
///   UnitAmpl                   unit of the levels ("g")
///   Q or Damping               of the oscillators (Q 10)
///   PerOctave                  lines per octave (12)
///   Points                     [[Hz, level], ...] or [[Hz, level, lower dB, upper dB], ...]
///   TolLower, TolUpper         of the points without their own [dB] (-3, 6)
///   Polarity                   "larger" (the larger side is judged) or "both"
///   Te, TE, DurationTol        effective durations [s], their tolerance [%] (20)
///   Fsamp, Nsamp               sampling frequency [Hz] and length [samples]
///   MaxAccel                   [UnitAmpl], 0 for no limit
///   MaxVelocity                [m/s]
///   MaxDisplacement            [mm] to one side
///
/// @throws Error, with key and line, where it is not one, or has a key twice
Requirement RequirementFromJson(std::string_view text);

}  // namespace qarv::assess
