// What the tests of sample files share: the bytes that a writer gives, and what a reader refuses.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/error.h"
#include "exchange/signal.h"
#include "exchange/waveform.h"
#include "random_values.h"

namespace qarv::test {

/// What `write` hands to its sink.
template <class Write>
std::string Written(Write write) {
  std::string bytes;
  write([&](std::string_view piece) { bytes += piece; });
  return bytes;
}

/// Expects an exchange::Error of this text, at this line.
template <class Call>
void ExpectError(Call call, const std::string& what, common::uint64 line = 0) {
  try {
    call();
    ADD_FAILURE() << "no error: " << what;
  } catch (const exchange::Error& e) {
    EXPECT_EQ(e.what(), what);
    EXPECT_EQ(e.GetLine(), line) << what;
  }
}

/// A waveform that owns its samples.
struct OwnedWaveform {
  std::vector<double> waveform, lower, upper;
  double fsamp = 1000.0;
  std::string unit = "g";
  std::string name = "name";

  exchange::Waveform View() const {
    return {waveform, lower, upper, fsamp, unit, exchange::Quantity::Acceleration, name};
  }
};

inline std::vector<double> RandomSamples(RandomValues* random, std::size_t n, bool hostile) {
  std::vector<double> samples(n);
  for (double& v : samples) v = hostile ? random->Value(-1e3, 1e3) : random->Between(-1e3, 1e3);
  return samples;
}

inline OwnedWaveform RandomWaveform(RandomValues* random, std::size_t n, bool hostile) {
  OwnedWaveform out;
  out.waveform = RandomSamples(random, n, hostile);
  out.lower = RandomSamples(random, n, hostile);
  out.upper = RandomSamples(random, n, hostile);
  return out;
}

/// Expects that text of many samples arrives in pieces of a size that does not depend on it.
template <class Write>
void ExpectPieces(Write write, std::size_t total) {
  std::size_t largest = 0;
  std::size_t sum = 0;
  write([&](std::string_view piece) {
    largest = std::max(largest, piece.size());
    sum += piece.size();
  });
  EXPECT_LT(largest, std::size_t{1} << 17);
  EXPECT_GE(sum, total);
}

}  // namespace qarv::test
