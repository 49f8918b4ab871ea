// What several shocks' spectra have in common: their envelope, their mean, and what all but a few
// such shocks stay below.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "assess/error.h"
#include "assess/spectrum.h"

namespace qarv::assess {

/// Spectra of several records on the same lines, and of their maximax line by line, in the unit of
/// the spectra:
///
///     envelope  the largest
///     mean      the arithmetic mean
///     P95/50    10^(m + k s), of the logarithms' mean m and standard deviation s (of n - 1),
///               k = ToleranceFactor(n, 0.95, 0.5): the level that, with even odds, 95 % of such
///               shocks stay below, if the logarithms are normal
///
/// Source: NASA-HDBK-7005, Dynamic Environmental Criteria, normal tolerance limits.
struct Ensemble {
  std::vector<Spectrum> members;       // one for each record, one at least
  std::vector<double> envelope, mean;  // for each line
  std::vector<double> p9550;           // none where `reason` says why
  std::string reason;
};

/// @param[in] members  at least one, of the same frequencies and unit
Ensemble EnsembleOf(std::vector<Spectrum> members);

/// P95/50 is of so many records at least.
inline constexpr std::size_t kLeastRecords = 3;

/// The factor k of a one-sided tolerance limit: with the given confidence, the share of a normal
/// population that is below mean + k times standard deviation of n of its values is at least this.
///
///     k = t / sqrt(n),   P(T <= t) = confidence,
///
/// T of the noncentral t distribution of n - 1 degrees of freedom about z(share) sqrt(n).  With y
/// the ratio of the sample's standard deviation to the population's, of density
///
///     g(y) ~ y^(n - 2) e^(-(n - 1) y^2 / 2),
///
/// that probability is the integral of Phi(sqrt(n) (k y - z)) g(y) dy, which is taken by Simpson's
/// rule; k is found by halving.  Within 1e-6 of the exact factor.
///
/// Source: D. B. Owen, A survey of properties and applications of the noncentral t-distribution
/// (1968).
///
/// @param[in] n           at least 2
/// @param[in] share       of the population, 0.5 to below 1
/// @param[in] confidence  above 0 and below 1
/// @return NaN for other arguments
double ToleranceFactor(std::size_t n, double share, double confidence);

}  // namespace qarv::assess
