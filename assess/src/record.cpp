// A measured record.
#include "assess/record.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "assess/error.h"

namespace qarv::assess {

void RequireNumbers(std::span<const double> samples) {
  const auto isNumber = [](double v) { return std::isfinite(v); };
  const auto odd = std::find_if_not(samples.begin(), samples.end(), isNumber);
  if (odd == samples.end()) return;
  throw Error("", fmt::format("sample {} is no number", odd - samples.begin()));
}

}  // namespace qarv::assess
