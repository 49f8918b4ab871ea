// Samples as sound files: writing, which is the header of one format.
#include "exchange/wav.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "common/numeric/index_conv.h"
#include "exchange/error.h"
#include "piece_writer.h"

namespace qarv::exchange {

using common::uint64;

namespace {

/// A number as `width` bytes, the lowest first.
std::string LittleEndian(uint64 word, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(word >> (8 * i) & 0xFF);
  return bytes;
}

std::string Header(uint64 N, uint64 rate) {
  constexpr uint64 kWidth = sizeof(float);  // [byte] of a sample
  constexpr uint64 kFloat = 3;              // the format's code
  constexpr uint64 kChannels = 1;
  constexpr uint64 kPeaks = 16;  // [byte]
  std::string format = LittleEndian(kFloat, 2) + LittleEndian(kChannels, 2);
  format += LittleEndian(rate, 4) + LittleEndian(rate * kWidth & 0xFFFFFFFF, 4);
  format += LittleEndian(kWidth, 2) + LittleEndian(8 * kWidth, 2);
  std::string chunks = "WAVEfmt " + LittleEndian(format.size(), 4) + format;
  chunks += "fact" + LittleEndian(4, 4) + LittleEndian(N, 4);
  // The place that libsndfile keeps for the peaks, which carry the time of writing: the same
  // waveform gives the same bytes, and those that libsndfile gives without them.
  chunks += "PAD " + LittleEndian(kPeaks, 4) + std::string(kPeaks, '\0');
  chunks += "data" + LittleEndian(N * kWidth, 4);
  return "RIFF" + LittleEndian(chunks.size() + N * kWidth, 4) + chunks;
}

}  // namespace

void WriteWav(std::span<const double> samples, double fsamp, const Sink& sink) {
  if (!(fsamp >= 1.0 && fsamp <= std::numeric_limits<int>::max() && std::round(fsamp) == fsamp)) {
    throw Error(fmt::format("a sound file needs a whole sampling frequency, not {:g} Hz", fsamp));
  }
  constexpr double kLargest = std::numeric_limits<float>::max();
  for (const double v : samples) {
    if (!(std::fabs(v) <= kLargest)) throw Error(fmt::format("a sound file cannot hold {:g}", v));
  }
  constexpr uint64 kMost = (uint64{1} << 30) - 64;  // [sample] in the 4 GiB that its header counts
  if (samples.size() > kMost) throw Error("is too long for a sound file");
  PieceWriter out(sink);
  out.Append(Header(samples.size(), common::TruncToIndex(fsamp)));
  for (const double v : samples) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(v));
    const char bytes[] = {static_cast<char>(bits & 0xFF), static_cast<char>(bits >> 8 & 0xFF),
                          static_cast<char>(bits >> 16 & 0xFF), static_cast<char>(bits >> 24)};
    out.Append({bytes, sizeof(bytes)});
  }
  out.Flush();
}

}  // namespace qarv::exchange
