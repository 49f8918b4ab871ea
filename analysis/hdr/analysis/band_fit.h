// Where tolerance bands fit a record best.
#pragma once

#include <cstddef>
#include <span>

namespace qarv::analysis {

/// Where the first sample of bands may be laid in a record.  [sample]
struct Places {
  double preferred;  ///< tried first [sample]
  double from;       ///< the first place [sample]
  double to;         ///< the last place, included [sample]
};

/// Bands laid over a record.
struct BandFit {
  double place;        ///< of their first sample in the record [sample]
  double beyond;       ///< there, the farthest sample beyond its limit; 0 or less if all are inside
  std::size_t passes;  ///< how often the record was compared with the bands to find it
};

/// Lays bands over a record where the standards let them be laid: wherever they fit best.
///
/// The preferred place, if every sample lies inside there.  Otherwise the place at which the
/// farthest sample lies least beyond its limit, or farthest within it: of all eighths of a sample,
/// and where none of them passes also between them, by a section search beside the best.  As in
/// JudgeBands, what the record does not cover is not compared, and a limit of the largest or the
/// lowest double is none.
///
/// At the eighths the result is that of trying all of them, to 1e-6 of itself.  They are not tried
/// one by one: a sample that lies beyond its limit at one place tells how far it lies beyond at
/// every other, since the bands are known there; what it excludes is never looked at.
///
/// @code
/// const std::vector<double> record{0.0, 0.0, 1.0, 0.0, 0.0};
/// const std::vector<double> upper{0.1, 1.1, 0.1}, lower{-0.1, 0.9, -0.1};
/// const auto place = FitBands(record, upper, lower, {1.0, 0.0, 2.0}).place;  // 1
/// @endcode
///
/// Cost: interpolation at 7 fractions of a sample, and `passes` times the length of the bands; some
/// tens of passes, whatever the length.
/// @param[in] record       at the sampling frequency of the bands
/// @param[in] upper,lower  of one length
/// @param[in] places       finite, from <= preferred <= to
/// @return the preferred place, infinitely far beyond, in 0 passes, if the arguments are not so
BandFit FitBands(std::span<const double> record, std::span<const double> upper,
                 std::span<const double> lower, const Places& places);

}  // namespace qarv::analysis
