// Filters without a shift in time: what a laboratory does to a record before it judges it.
#pragma once

#include <span>
#include <vector>

namespace qarv::analysis {

/// A second-order section,
///
///   y[k] = b0 x[k] + b1 x[k - 1] + b2 x[k - 2] - a1 y[k - 1] - a2 y[k - 2]
struct FilterSection {
  double b0;  ///< of x[k]
  double b1;  ///< of x[k - 1]
  double b2;  ///< of x[k - 2]
  double a1;  ///< of y[k - 1]
  double a2;  ///< of y[k - 2]
};
using FilterSections = std::vector<FilterSection>;

enum class FilterShape { Butterworth, Bessel };
enum class FilterPass { Low, High };

inline constexpr int kMostFilterOrder = 8;

/// A filter whose two passes of ZeroPhase together have 1 / sqrt(2) at the cutoff, by the bilinear
/// transform with the cutoff held in place.
/// Source: A. V. Oppenheim, R. W. Schafer, Discrete-Time Signal Processing, chapter 7; the Bessel
/// polynomials of W. E. Thomson, Delay networks having maximally flat frequency characteristics
/// (1949).
/// @param[in] order   of one pass, 1 to kMostFilterOrder
/// @param[in] cutoff  [Hz], above 0 and below fsamp / 2
/// @return none where an argument is not so
FilterSections DesignFilter(FilterShape shape, FilterPass pass, int order, double cutoff,
                            double fsamp);

/// The filter of a channel frequency class of crash testing (60, 180, 600, 1000): a Butterworth
/// filter of second order, each pass of which has 1 / sqrt(2) at 2.0775 times the class.
/// Source: ISO 6487, SAE J211-1 (appendix on the digital filter).
/// @return none where 2.0775 cfc is not above 0 and below fsamp / 2
FilterSections CfcFilter(double cfc, double fsamp);

/// Filters forward and then backward, so that nothing is shifted: the gain is that of one pass,
/// squared.  Before its first and behind its last sample the signal stays where it is.
/// Cost: two passes over the samples for every section.
std::vector<double> ZeroPhase(std::span<const double> x, const FilterSections& filter);

}  // namespace qarv::analysis
