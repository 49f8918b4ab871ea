// What is required of a shock: a spectrum with its tolerance, and how long the shock may be.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qarv::synthesis {

/// A corner of a required spectrum.
struct SrsTarget {
  double frequency;  // [Hz]
  double level;      // [amplitude unit] of the absolute acceleration, the larger of both sides
  double tolLower;   // [dB] below 0
  double tolUpper;   // [dB] above 0
};

/// How long a shock effectively is; 0 where nothing is required.
struct Durations {
  double Te = 0.0;  // [s] from the first to the last sample above a third of the peak
  double TE = 0.0;  // [s] the shortest time with 90 % of the short-time r.m.s. above a tenth of its
                    // peak
};

/// The durations of a shock, as MIL-STD-810, method 516, defines them.  The r.m.s. is taken over
/// a tenth of Te.
Durations EffectiveDurations(std::span<const double> shock, double fsamp);

/// A required shock response spectrum: straight lines between corners, both axes logarithmic, and
/// tolerances in dB that are straight over the logarithm of frequency.
struct SrsRequirement {
  std::vector<SrsTarget> points;  // at least 2, frequencies rising
  double zeta = 0.05;             // damping ratio of the oscillators, 1 / (2 Q)
  double perOctave = 12.0;        // lines that are looked at first
  bool bothPolarities = false;    // the smaller side is at most kPolarityDb below the larger one
  Durations durations;
  double durationTol = 20.0;  // [%] of the durations
};

/// What Polarity "both" allows between the two sides of a spectrum [dB].
inline constexpr double kPolarityDb = 1.5;

/// The first thing that is wrong with a requirement, and the point that it is about.
struct RequirementFault {
  enum class What { None, TooFewPoints, NotRising, Level, Tolerance, Damping, Lines, Duration };
  What what = What::None;
  std::size_t point = 0;
};

/// Right are at least 2 points with rising frequencies, levels above 0, tolLower < 0 < tolUpper,
/// zeta within 0.001 to 0.5, at most 4000 lines, durations not below 0 with a tolerance above it.
RequirementFault FaultOf(const SrsRequirement& requirement);

/// The required level at a frequency [amplitude unit]: that of the nearest end outside the points.
double RequiredLevel(const SrsRequirement& requirement, double frequency);

/// A line of a required spectrum.
struct SrsLine {
  double frequency;     // [Hz]
  double level;         // [amplitude unit]
  double lower, upper;  // [dB]
};

/// The lines from the first to the last point, `perOctave` in each octave, the last point included.
std::vector<SrsLine> RequiredLines(const SrsRequirement& requirement, double perOctave);

/// 20 log10(ratio), the same bits on every machine.
double Decibels(double ratio);
/// The ratio of so many dB.
double RatioOf(double decibels);

}  // namespace qarv::synthesis
