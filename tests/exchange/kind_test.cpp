// The kind of a sample file by its content, and what damaged files of all kinds do.
#include "exchange/kind.h"

#include <gtest/gtest.h>

#include "exchange/csv.h"
#include "exchange/npy.h"
#include "exchange/uff.h"
#include "exchange/wav.h"
#include "sample_files.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Kind;
using exchange::Sink;

Kind KindOf(std::string_view text) { return exchange::DetectKind(BytesOf(text)); }

/// The same waveform in each format.
std::vector<std::pair<Kind, std::string>> Files() {
  const OwnedWaveform wave{{1, -2, 3, 4, 5}, {0, -3, 2, 3, 4}, {2, -1, 4, 5, 6}};
  const auto file = [&](auto write) {
    return Written([&](const Sink& sink) { write(wave.View(), sink); });
  };
  return {{Kind::Csv, file(exchange::WriteWaveCsv)},
          {Kind::Uff, file(exchange::WriteUff)},
          {Kind::Npy, file(exchange::WriteNpy)},
          {Kind::Wav, file([](const exchange::Waveform& w, const Sink& sink) {
             exchange::WriteWav(w.waveform, w.fsamp, sink);
           })}};
}

TEST(DetectKind, KnowsWhatIsWrittenByItsFirst64Bytes) {
  for (const auto& [kind, bytes] : Files()) {
    EXPECT_EQ(KindOf(bytes), kind);
    EXPECT_EQ(KindOf(bytes.substr(0, 64)), kind);
    const auto signals = exchange::ReadSignals(BytesOf(bytes));
    EXPECT_EQ(signals.front().values, (std::vector<double>{1, -2, 3, 4, 5}));
    EXPECT_EQ(SampleRateOf(signals.front()), 1000.0);
  }
}

TEST(DetectKind, KnowsTheFormsOfOthers) {
  EXPECT_EQ(KindOf("\xEF\xBB\xBF    -1\r\n    58"), Kind::Uff);
  EXPECT_EQ(KindOf("    -1"), Kind::Uff);
  EXPECT_EQ(KindOf("    -1.5\n"), Kind::Csv);
  EXPECT_EQ(KindOf("-1\n"), Kind::Csv);
  EXPECT_EQ(KindOf("\xEF\xBB\xBFZeit;Wert\r\n0,1;2\r\n"), Kind::Csv);
  EXPECT_EQ(KindOf("Beschleunigung [m/s\xB2]\n"), Kind::Csv);  // Latin-1
  EXPECT_EQ(KindOf(std::string_view("RIFX\0\0\0\x30WAVEfmt ", 16)), Kind::Wav);
}

TEST(DetectKind, TakesNothingForWhatItIsNot) {
  EXPECT_EQ(KindOf(""), Kind::Unknown);
  EXPECT_EQ(KindOf(" \r\n"), Kind::Unknown);
  EXPECT_EQ(KindOf(" {\"Fsamp\": 1}"), Kind::Unknown);
  EXPECT_EQ(KindOf(std::string_view("u\x01\0\0\0b", 6)), Kind::Unknown);  // a record
  EXPECT_EQ(KindOf("\x1F\x8B\x08"), Kind::Unknown);
  ExpectError([] { exchange::ReadSignals({}); }, "is no sample file of a known kind");
}

TEST(ReadSignals, DamagedFilesAreErrorsOrSamples) {
  RandomValues random(12);
  int read = 0;
  int refused = 0;
  for (const auto& [kind, whole] : Files()) {
    for (int round = 0; round < 4000; ++round) {
      std::string bytes = whole;
      for (unsigned int hits = 1 + random.Below(4); hits != 0; --hits) {
        // The header more often than the rest.
        const auto size = static_cast<unsigned int>(bytes.size());
        const unsigned int at = random.Below(random.OneIn(2) ? std::min(size, 160U) : size);
        bytes[at] = random.OneIn(2) ? random.Pick({'\0', '\xFF', '\x7F', '9', '-', ',', '(', '\n'})
                                    : static_cast<char>(random.Below(256));
      }
      if (random.OneIn(4)) bytes.resize(random.Below(static_cast<unsigned int>(bytes.size())));
      try {
        for (const exchange::Signal& signal : exchange::ReadSignals(BytesOf(bytes))) {
          EXPECT_FALSE(signal.values.empty());
          EXPECT_TRUE(signal.times.empty() || signal.times.size() == signal.values.size());
          EXPECT_TRUE(signal.lines.empty() || signal.lines.size() == signal.values.size());
        }
        ++read;
      } catch (const exchange::Error& e) {
        EXPECT_STRNE(e.what(), "");
        ++refused;
      }
    }
  }
  EXPECT_GT(read, 1000);
  EXPECT_GT(refused, 1000);
}

}  // namespace
}  // namespace qarv::test
