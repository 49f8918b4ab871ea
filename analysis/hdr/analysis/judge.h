// How a measured record compares with a reference: where it lies in time, and whether it keeps
// within the tolerance bands.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

namespace qarv::analysis {

/// Where a record shows a reference best.
struct Alignment {
  double lag;          ///< place of the reference's first sample in the record [sample]
  double correlation;  ///< there, of reference and record: 1 where one is a multiple of the other
  double gain;         ///< the multiple of the reference that comes closest to the record there [1]
};

/// How alike a reference and a record of its length are.
struct Likeness {
  double correlation;  ///< 1 where one is a multiple of the other, -1 a negative one [1]
  double gain;         ///< the multiple of the reference that comes closest to the record [1]
};

/// How alike a reference and a record of its length are.
///
///     correlation = r.x / sqrt(r.r x.x),   gain = r.x / r.r,   r the reference, x the record
///
/// @return 0 for both if one of them is empty or 0 throughout, or they differ in length
Likeness LikenessOf(std::span<const double> reference, std::span<const double> record);

/// Finds a reference in a record of the same sampling frequency: from the largest
/// cross-correlation, with the record taken as 0 beyond its ends, to the next maximum of the
/// correlation coefficient, at first at the samples and then between them by band-limited
/// interpolation.  The coefficient is what counts in the end, because it alone is largest at a copy
/// whatever surrounds it.  A lag within 1e-4 of a whole sample is that sample, so that a copy is
/// found without an error.
///
/// @code
/// const std::vector<double> pulse{0.0, 1.0, 0.0}, record{0.0, 0.0, 0.0, 2.0, 0.0};
/// const double lag = Align(pulse, record).lag;  // 2
/// @endcode
///
/// @param[in] reference  the main pulse or the whole waveform
/// @param[in] record     of any length
/// @return a correlation and a gain of 0 if either is empty or 0 throughout, or holds a NaN or an
/// infinity
Alignment Align(std::span<const double> reference, std::span<const double> record);

/// The limit that is none; so is its negative.
inline constexpr double kNoLimit = std::numeric_limits<double>::max();

/// How far a value lies beyond its limits; 0 or less within them, infinite for what is no number.
inline double Beyond(double value, double upper, double lower) {
  if (!std::isfinite(value)) return std::numeric_limits<double>::infinity();
  const double above = std::fabs(upper) == kNoLimit ? -kNoLimit : value - upper;
  const double below = std::fabs(lower) == kNoLimit ? -kNoLimit : lower - value;
  return std::max(above, below);
}

/// A record against its bands.
struct Verdict {
  std::size_t judged = 0;   ///< samples that were compared
  std::size_t outside = 0;  ///< of these, samples beyond a limit, or no number
  std::size_t worst = 0;    ///< [sample] the one farthest beyond its limit, the first of equal ones
  double value = 0.0;       ///< there [amplitude unit]; 0 if none is outside
  double limit = 0.0;       ///< the limit that it is beyond [amplitude unit]
};

/// Compares the samples first .. last, included, with both bands.
///
/// @code
/// const std::vector<double> wave{0.0, 1.2, 0.0}, upper{0.1, 1.1, 0.1}, lower{-0.1, 0.9, -0.1};
/// const auto outside = JudgeBands(wave, upper, lower, 0, 2).outside;  // 1
/// @endcode
///
/// @param[in] wave,upper,lower  of one length
/// @return nothing judged if the range is not inside the arrays
Verdict JudgeBands(std::span<const double> wave, std::span<const double> upper,
                   std::span<const double> lower, std::size_t first, std::size_t last);

}  // namespace qarv::analysis
