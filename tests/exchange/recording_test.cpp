// Records from files of any kind: which channel, which times, which sampling frequency.
#include "exchange/recording.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "exchange/csv.h"
#include "exchange/npy.h"
#include "exchange/uff.h"
#include "exchange/wav.h"
#include "sample_files.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Recording;
using exchange::Signal;

const OwnedWaveform kWave{{1, -2, 3}, {0, -3, 2}, {2, -1, 4}};

TEST(Recording, IsReadFromFilesOfEveryKindByTheirContent) {
  const auto file = [&](auto write) {
    return Written([&](const exchange::Sink& sink) { write(kWave.View(), sink); });
  };
  std::vector<std::string> files;
  files.push_back(file(exchange::WriteUff));
  files.push_back(file(exchange::WriteNpy));
  files.push_back(file(exchange::WriteWaveCsv));
  files.push_back(file([](const exchange::Waveform& w, const exchange::Sink& sink) {
    exchange::WriteWav(w.waveform, w.fsamp, sink);
  }));
  for (const std::string& bytes : files) {
    const Recording record = exchange::ReadRecording(BytesOf(bytes));
    ASSERT_EQ(record.channels.size(), 1U);
    EXPECT_EQ(record.channels[0].values, kWave.waveform);
    EXPECT_EQ(record.remarks.size(), 0U);  // bands are no channels
    EXPECT_EQ(record.channels[0].fsamp, 1000.0);
  }
  ExpectError([] { exchange::ReadRecording(BytesOf("{}")); }, "is no sample file of a known kind");
}

Signal Named(std::string name, std::string unit, std::vector<double> values) {
  Signal signal;
  signal.name = std::move(name);
  signal.unit = std::move(unit);
  signal.values = std::move(values);
  return signal;
}

std::vector<Signal> Signals() {
  return {Named("clock", "", {0, 0.26, 0.49, 0.75}), Named("x", "M/S**2", {3, 0, 0, 1}),
          Named("y", "m/s2", {4, 0, -5, 1})};
}

TEST(Recording, ChoosesChannelsAndTimesByNumberOrName) {
  const Recording record =
      exchange::RecordingOf(Signals(), {.time = "clock", .channels = {"3", "x"}});
  ASSERT_EQ(record.channels.size(), 2U);
  EXPECT_EQ(record.channels[0].name, "y");
  EXPECT_EQ(record.channels[1].name, "x");
  EXPECT_EQ(record.channels[1].unit, "m/s^2");
  EXPECT_NEAR(record.channels[1].fsamp, 4.0, 0.1);
  EXPECT_EQ(exchange::RecordingOf(Signals(), {.time = "1"}).channels[0].name, "x");
  EXPECT_EQ(exchange::RecordingOf(Signals(), {.fsamp = 7.0}).channels[0].fsamp, 7.0);
  ExpectError([] { exchange::RecordingOf(Signals(), {.channels = {"z"}}); },
              "has no channel z, but clock, x, y");
  ExpectError([] { exchange::RecordingOf(Signals(), {.channels = {"4"}}); },
              "has no channel 4, but clock, x, y");
}

TEST(Recording, RefusesTimesThatLeaveNoRate) {
  std::vector<Signal> signals = Signals();
  signals[0].values = {0, 1, 2, 5};
  try {
    exchange::RecordingOf(signals, {.time = "clock"});
    ADD_FAILURE();
  } catch (const exchange::Error& e) {
    EXPECT_NE(std::string(e.what()).find("sample 3: the time step of 3 s"), std::string::npos)
        << e.what();
  }
  signals[1].values[2] = HUGE_VAL;
  ExpectError([&] { exchange::RecordingOf(signals, {.channels = {"x"}}); },
              "sample 2 is no number");
}

TEST(Recording, TheResultantIsTheRootOfTheSquares) {
  auto channels = exchange::RecordingOf(Signals(), {.channels = {"x", "y"}}).channels;
  EXPECT_EQ(exchange::ResultantOf(channels).values, (std::vector<double>{5, 0, 5, std::sqrt(2.0)}));
  EXPECT_EQ(exchange::ResultantOf(channels).unit, "m/s^2");
  channels[1].unit = std::string("g");
  ExpectError([&] { exchange::ResultantOf(channels); },
              "channels of another length, unit or sampling frequency have no resultant");
  channels.pop_back();
  ExpectError([&] { exchange::ResultantOf(channels); }, "one channel has no resultant");
}

}  // namespace
}  // namespace qarv::test
