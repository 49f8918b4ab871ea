// The input of a spectrum: straight lines through the samples, from 0 and back to 0, and the base's
// motion under it.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qarv::analysis {

/// Point 0 lies one sampling interval before the first sample that is not 0, point `end` one
/// interval behind the last sample; both are 0.  Time runs in sampling intervals.
struct BaseMotion {
  /// @param[in] shock  finite samples
  explicit BaseMotion(std::span<const double> shock);

  double unit;      // [unit of the samples] a power of two, by which they are divided
  std::size_t end;  // also the number of intervals
  std::vector<double> acceleration;  // of each point, and of one more
  std::vector<double> change;        // change[i + 1] leads from point i to the next; the first is 0

  /// Velocity and displacement of each point, and of one more, from rest.
  struct Travel {
    std::vector<double> velocity, displacement;
    double velocityRest, displacementRest;  // what rounding has left out of the last ones
  };
  Travel Integrate() const;
};

}  // namespace qarv::analysis
