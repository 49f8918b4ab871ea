// A sampled signal between its samples: band-limited interpolation, and another sampling frequency.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qarv::analysis {

/// The signal at evenly spaced places between its samples.
///
///     out[j] = sum over k of x[k] h(start + j step - k),   0 <= j < count
///
/// h is a sinc under a four-term cosine window (F. J. Harris 1978) of 32 zero crossings to either
/// side: nothing up to 0.85 of the lower of the two Nyquist frequencies is changed by more than
/// 1e-4.  A step above 1 lowers the sampling frequency; what the new one cannot hold is filtered
/// out.  A step of 1 from a whole sample gives the samples themselves.  Before its first and behind
/// its last sample the signal stays where it is.
///
/// @code
/// const std::vector<double> wave{0.0, 1.0, 0.0, -1.0};
/// const auto twice = SampledAt(wave, 0.0, 0.5, 8);  // at twice the frequency
/// const auto n = twice.size();                      // 8
/// @endcode
///
/// @param[in] x      the samples
/// @param[in] start  place of the first result [sample of x]
/// @param[in] step   distance of two results [sample of x], above 0
/// @param[in] count  number of results
/// @return nothing if x is empty, start is no finite number or step is not above 0 and finite
std::vector<double> SampledAt(std::span<const double> x, double start, double step,
                              std::size_t count);

}  // namespace qarv::analysis
