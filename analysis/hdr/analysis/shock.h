// What a shock waveform is and what it asks of a table: peak, width, velocity, displacement,
// margins.
#pragma once

#include <cstddef>
#include <span>

namespace qarv::analysis {

/// A sample and where it is.
struct SampleAt {
  std::size_t index;  ///< [sample]
  double value;       ///< [amplitude unit]
};

/// The sample of the largest magnitude, the first of equal ones.  NaN samples are passed over; 0 at
/// sample 0 if there is no other.
SampleAt PeakOf(std::span<const double> wave);

/// How long the pulse around the peak stays above a share of it, on straight lines between the
/// samples.  [sample]
/// @param[in] level  share of the peak, between 0 and 1
/// @return 0 if the peak is 0
double WidthAtLevel(std::span<const double> wave, double level);

/// The motion of a table that follows an acceleration from rest, by the trapezoidal rule.
struct Motion {
  double peakVelocity = 0.0;            ///< largest |velocity| [input x s]
  double peakDisplacement = 0.0;        ///< largest |displacement| [input x s^2]
  double peakToPeakDisplacement = 0.0;  ///< the stroke [input x s^2]
  double residualVelocity = 0.0;        ///< at the last sample [input x s]
  double residualDisplacement = 0.0;    ///< at the last sample [input x s^2]
};

/// The motion of a table that follows an acceleration from rest.
///
///     v[i] = v[i - 1] + (a[i - 1] + a[i]) / (2 fsamp),   displacement from v in the same way
///
/// @code
/// const std::vector<double> acceleration{0.0, 1.0, 0.0, -1.0, 0.0};
/// const Motion motion = MotionOf(acceleration, 1.0);
/// const double most = motion.peakVelocity;      // 1
/// const double left = motion.residualVelocity;  // 0
/// @endcode
///
/// @param[in] fsamp  sampling frequency [Hz], above 0; otherwise nothing moves
Motion MotionOf(std::span<const double> acceleration, double fsamp);

/// The integral of the samples first .. last, included, by the trapezoidal rule.  [input x s]
/// @return 0 if the range is not inside the wave
double VelocityChange(std::span<const double> acceleration, double fsamp, std::size_t first,
                      std::size_t last);

/// Where a wave comes closest to a band: the least of upper - wave or wave - lower; negative where
/// it lies outside.
/// @return at sample 0 an infinite distance if there is no number to compare
SampleAt MarginToUpper(std::span<const double> wave, std::span<const double> upper);
/// The same to a lower band: wave - lower.
SampleAt MarginToLower(std::span<const double> wave, std::span<const double> lower);

/// The largest magnitude outside the samples first .. last.
SampleAt LargestOutside(std::span<const double> wave, std::size_t first, std::size_t last);

}  // namespace qarv::analysis
