// More samples of a record, by band-limited interpolation.
#include "assess/upsampling.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "analysis/resample.h"
#include "assess/spectrum.h"

namespace qarv::assess {

Upsampling UpsamplingFor(std::size_t samples, double fsamp, double highest) {
  if (samples == 0 || !(highest > 0.0 && highest <= kHighestLine * fsamp)) return {};
  // Below half of kSamplesPerCycle.  What is whole but for its rounding is whole.
  const int wanted =
      std::max(1, static_cast<int>(std::ceil(highest * kSamplesPerCycle / fsamp - 1e-9)));
  const std::size_t room = std::max<std::size_t>(1, kMostUpsampled / samples);
  return {wanted, static_cast<int>(std::min(room, static_cast<std::size_t>(wanted)))};
}

OwnedRecord Upsampled(const Record& record, int factor) {
  RequireNumbers(record.samples);
  const auto times = static_cast<std::size_t>(factor);
  const std::size_t n = record.samples.size();
  OwnedRecord out{{record.samples.begin(), record.samples.end()},
                  record.fsamp * factor,
                  record.unit,
                  record.begin - (1.0 - 1.0 / factor) / record.fsamp};
  if (times < 2 || n == 0) return out;
  out.samples.assign((n + 1) * times - 1, 0.0);
  const std::size_t first = times - 1;  // of the record's own samples
  const std::size_t last = first + (n - 1) * times;
  for (std::size_t part = 0; part < times; ++part) {
    // One place between samples after the other: each has one kernel.
    const std::size_t count = part == 0 ? n : n - 1;
    const std::vector<double> between =
        analysis::SampledAt(record.samples, static_cast<double>(part) / factor, 1.0, count);
    for (std::size_t i = 0; i < count; ++i) out.samples[first + i * times + part] = between[i];
  }
  for (std::size_t part = 1; part < times; ++part) {
    const double share = static_cast<double>(part) / factor;
    out.samples[part - 1] = share * record.samples.front();
    out.samples[last + part] = (1.0 - share) * record.samples.back();
  }
  return out;
}

}  // namespace qarv::assess
