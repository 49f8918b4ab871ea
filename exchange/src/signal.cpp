// What a reader gives: the samples of one channel, and what is asked of them.
#include "exchange/signal.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "exchange/error.h"
#include "text/text.h"

namespace qarv::exchange {

using common::uint64;

namespace {

constexpr double kStepTolerance = 0.001;  // of the mean step

/// Throws with the place of a sample: its line, where the file has one for each.
[[noreturn]] void FailAtSample(std::span<const uint64> lines, uint64 i, const std::string& what,
                               const std::string& whatOfSample) {
  if (i < lines.size()) throw Error(what, lines[i]);
  throw Error(fmt::format("sample {}{}", i, whatOfSample));
}

}  // namespace

Bytes BytesOf(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string_view TextOf(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

double SampleRateOf(std::span<const double> times, std::span<const uint64> lines) {
  const uint64 n = times.size();
  if (n < 2) {
    const char* const why = n == 0 ? "has no time column" : "one sample has no time step";
    throw Error(fmt::format("{}: Fsamp is needed", why));
  }
  const double mean = (times[n - 1] - times[0]) / static_cast<double>(n - 1);
  for (uint64 i = 1; i < n; ++i) {
    const double step = times[i] - times[i - 1];
    // Written so that a NaN is refused.
    if (!(step > 0.0 && std::fabs(step - mean) <= kStepTolerance * mean)) {
      const std::string what =
          fmt::format("the time step of {} s is not the mean step of {} s", step, mean);
      FailAtSample(lines, i, what, ": " + what);
    }
  }
  // The text of a time column holds no more than 12 digits: 1000 Hz, not 1000.0000000000001 Hz.
  double rate = 0.0;
  text::ParseNumber(fmt::format("{:.12g}", 1.0 / mean), &rate);
  return rate;
}

double SampleRateOf(const Signal& signal) {
  return signal.fsamp != 0.0 ? signal.fsamp : SampleRateOf(signal.times, signal.lines);
}

void RequireNumbers(std::span<const double> values, std::span<const uint64> lines) {
  const auto isNumber = [](double v) { return std::isfinite(v); };
  const auto odd = std::find_if_not(values.begin(), values.end(), isNumber);
  if (odd == values.end()) return;
  FailAtSample(lines, static_cast<uint64>(odd - values.begin()), "the value is no number",
               " is no number");
}

void RequireNumbers(const Signal& signal) { RequireNumbers(signal.values, signal.lines); }

}  // namespace qarv::exchange
