// The shocks of a record, and its quiet part.
#include "analysis/events.h"

#include <algorithm>
#include <cmath>

namespace qarv::analysis {

std::vector<ShockEvent> FindShocks(std::span<const double> record, double threshold,
                                   std::size_t gap) {
  std::vector<ShockEvent> shocks;
  if (!(threshold > 0.0)) return shocks;
  for (std::size_t i = 0; i < record.size(); ++i) {
    const double size = std::fabs(record[i]);
    if (!(size > threshold)) continue;
    if (shocks.empty() || i - shocks.back().last > gap) shocks.push_back({i, i, i, record[i]});
    ShockEvent& shock = shocks.back();
    shock.last = i;
    if (size > std::fabs(shock.value)) {
      shock.peak = i;
      shock.value = record[i];
    }
  }
  return shocks;
}

QuietPart QuietOf(std::span<const double> record, const std::vector<ShockEvent>& shocks,
                  std::size_t margin) {
  QuietPart quiet{0, record.size(), 0.0, 0.0};
  if (!shocks.empty()) {
    const std::size_t before = shocks.front().first > margin ? shocks.front().first - margin : 0;
    const std::size_t end = shocks.back().last + 1;
    const std::size_t behind = record.size() - end > margin ? record.size() - end - margin : 0;
    quiet.first = before >= behind ? 0 : record.size() - behind;
    quiet.count = std::max(before, behind);
  }
  if (quiet.count == 0) return quiet;
  const auto part = record.subspan(quiet.first, quiet.count);
  double sum = 0.0;
  for (const double v : part) sum += v;
  quiet.mean = sum / static_cast<double>(quiet.count);
  for (const double v : part) quiet.noise = std::max(quiet.noise, std::fabs(v - quiet.mean));
  return quiet;
}

std::size_t EqualExtremes(std::span<const double> record) {
  if (record.empty()) return 0;
  const auto [low, high] = std::minmax_element(record.begin(), record.end());
  const double lowest = *low;
  const double highest = *high;
  if (lowest == highest) return 0;
  // Where a record rests it may be lowest, and is not clipped.
  const double least = 0.5 * std::max(std::fabs(lowest), std::fabs(highest));
  std::size_t longest = 0;
  std::size_t run = 0;
  for (std::size_t i = 0; i < record.size(); ++i) {
    const bool extreme =
        (record[i] == lowest || record[i] == highest) && std::fabs(record[i]) >= least;
    run = !extreme ? 0 : i > 0 && record[i] == record[i - 1] ? run + 1 : 1;
    longest = std::max(longest, run);
  }
  return longest;
}

}  // namespace qarv::analysis
