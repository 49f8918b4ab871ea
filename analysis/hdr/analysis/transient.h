// How long a transient lasts and how its energy lies in time.
#pragma once

#include <span>

namespace qarv::analysis {

/// The numbers of a transient; all are 0 of one that is 0 throughout, or without a sampling
/// frequency above 0.
struct Transient {
  double rms = 0.0;     ///< of all samples [input]
  double energy = 0.0;  ///< integral of the square [input^2 s]
  /// From the first to the last time at which the magnitude is a tenth of the peak, on straight
  /// lines between the samples [s].  Source: MIL-STD-810, method 516 (effective transient
  /// duration).
  double durationTenth = 0.0;
  /// From 5 % to 95 % of the energy [s].  Source: M. D. Trifunac, A. G. Brady, A study on the
  /// duration of strong earthquake ground motion (1975); MIL-STD-810, method 516.
  double durationEnergy = 0.0;
  ///< The temporal moments of the square.  Source: D. O. Smallwood, Characterization and simulation
  // of transient vibrations using band limited temporal moments (1994).
  double centroid = 0.0;     ///< first moment over the energy [s] from the first sample
  double rmsDuration = 0.0;  ///< root of the second central moment over the energy [s]
  double skewness = 0.0;     ///< third root of the third central moment over the energy [s]
  double kurtosis = 0.0;     ///< fourth root of the fourth central moment over the energy [s]
  double rootEnergy = 0.0;   ///< root of energy over rms duration [input]
};

/// Squares are integrated as steps of one interval about each sample.
Transient TransientOf(std::span<const double> wave, double fsamp);

}  // namespace qarv::analysis
