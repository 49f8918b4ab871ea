// The shocks of a record, and what can be said of it before anything is judged.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qarv::analysis {

/// A stretch of a record in which a threshold is passed.
struct ShockEvent {
  std::size_t first;  ///< [sample] beyond the threshold
  std::size_t last;   ///< [sample] the last one beyond it
  std::size_t peak;   ///< [sample] of the largest magnitude, the first of equal ones
  double value;       ///< there; its sign is the polarity
};

/// Every shock of a record: the samples beyond a threshold to either side, where those that are not
/// more than `gap` samples apart belong to one.
/// @param[in] threshold  above 0; none are found otherwise
std::vector<ShockEvent> FindShocks(std::span<const double> record, double threshold,
                                   std::size_t gap);

/// What a record does where nothing happens.
struct QuietPart {
  std::size_t first;  ///< [sample]
  std::size_t count;  ///< [sample]
  double mean;        ///< 0 without a sample
  double noise;       ///< largest distance from the mean
};

/// The longest stretch before the first shock or behind the last one, `margin` samples from it.
QuietPart QuietOf(std::span<const double> record, const std::vector<ShockEvent>& shocks,
                  std::size_t margin);

/// How many samples in a row have exactly the largest or the lowest value, if that is at least half
/// of the largest magnitude: more than a few of them are the end of a range, unless the pulse is
/// flat.
std::size_t EqualExtremes(std::span<const double> record);

}  // namespace qarv::analysis
