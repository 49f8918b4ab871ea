// A record from a file of any kind.
#include "exchange/recording.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <utility>

#include "exchange/error.h"
#include "exchange/kind.h"
#include "exchange/units.h"
#include "text/text.h"
#include "time_fit.h"

namespace qarv::exchange {

namespace {

std::string NameOf(const std::vector<Signal>& signals, std::size_t i) {
  const std::string& name = signals[i].name;
  return name.empty() ? fmt::format("channel {}", i + 1) : text::OneLine(name);
}

std::size_t Find(const std::string& asked, const std::vector<Signal>& signals) {
  for (std::size_t i = 0; i < signals.size(); ++i) {
    if (signals[i].name == asked) return i;
  }
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(asked.data(), asked.data() + asked.size(), number);
  const bool whole = error == std::errc{} && end == asked.data() + asked.size();
  if (whole && number >= 1 && number <= signals.size()) return number - 1;
  std::string names;
  for (std::size_t i = 0; i < signals.size(); ++i) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", NameOf(signals, i));
  }
  throw Error(fmt::format("has no channel {}, but {}", text::OneLine(asked), names));
}

double FittedRate(const std::vector<double>& times) {
  TimeFit fit;
  for (std::size_t i = 0; i < times.size(); ++i) {
    if (!std::isfinite(times[i])) throw Error(fmt::format("sample {}: its time is no number", i));
    fit.Add(times[i], i);
  }
  return fit.Rate(false);
}

}  // namespace

Recording RecordingOf(std::vector<Signal> signals, const ChannelChoice& choice) {
  Recording out;
  for (std::size_t i = 0; i < signals.size(); ++i) out.names.push_back(NameOf(signals, i));
  std::vector<std::size_t> chosen;
  for (const std::string& asked : choice.channels) chosen.push_back(Find(asked, signals));
  std::vector<double> times;
  std::size_t timeAt = signals.size();
  if (!choice.time.empty()) {
    timeAt = Find(choice.time, signals);
    times = signals[timeAt].values;
  }
  if (chosen.empty()) {
    chosen.push_back(timeAt == 0 && signals.size() > 1 ? 1 : 0);
    // What is written here has its bands beside the waveform: there is nothing to choose.
    if (signals.size() > 1 && signals[chosen[0]].name != "waveform") {
      out.remarks.push_back(
          fmt::format("{} of {} channels was taken", NameOf(signals, chosen[0]), signals.size()));
    }
  }
  for (const std::size_t i : chosen) {
    Signal signal = signals[i];
    RequireNumbers(signal.values);
    const std::vector<double>& own = times.empty() ? signal.times : times;
    if (choice.fsamp) {
      signal.fsamp = *choice.fsamp;
    } else if (own.size() == signal.values.size() && !own.empty()) {
      signal.fsamp = FittedRate(own);
      signal.begin = own.front();
    } else if (!times.empty()) {
      throw Error(
          fmt::format("{} times do not go with {} values", own.size(), signal.values.size()));
    }
    signal.unit = PlainUnit(signal.unit);
    signal.times.clear();
    signal.lines.clear();
    out.channels.push_back(std::move(signal));
  }
  return out;
}

Recording ReadRecording(Bytes bytes, const ChannelChoice& choice) {
  if (DetectKind(bytes) == Kind::Csv) return ReadTable(bytes, choice);
  return RecordingOf(ReadSignals(bytes), choice);
}

Signal ResultantOf(const std::vector<Signal>& channels) {
  if (channels.size() < 2) throw Error("one channel has no resultant");
  Signal out = channels.front();
  out.name = "resultant";
  for (double& v : out.values) v *= v;
  for (std::size_t k = 1; k < channels.size(); ++k) {
    const Signal& other = channels[k];
    if (other.values.size() != out.values.size() || other.unit != out.unit ||
        other.fsamp != out.fsamp) {
      throw Error("channels of another length, unit or sampling frequency have no resultant");
    }
    for (std::size_t i = 0; i < out.values.size(); ++i) {
      out.values[i] += other.values[i] * other.values[i];
    }
  }
  for (double& v : out.values) v = std::sqrt(v);
  return out;
}

}  // namespace qarv::exchange
