// A record of several shocks.
#include "assess/series.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/shock.h"
#include "common/numeric/index_conv.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/main_pulse.h"
#include "overlay.h"

namespace qarv::assess {

using analysis::ShockEvent;
using definition::IsClassical;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;

namespace {

std::size_t Count(double v) { return static_cast<std::size_t>(common::TruncToIndex(v)); }

double PeakSize(const CWaveDef& def) {
  return std::fabs(analysis::PeakOf(SpanOf(def.GetWave())).value);
}

/// The nominal width of the pulse.  [sample] of the record
double WidthIn(const CWaveDef& def, const Record& record) {
  return std::fabs(def.GetDefClassical().GetMainWidth()) * record.fsamp;
}

std::vector<ShockEvent> EventsOf(const CWaveDef& def, const Record& record, double factor,
                                 const SeriesSettings& settings) {
  if (!IsClassical(def)) return {};
  const double gap = settings.minGap ? *settings.minGap * record.fsamp : 3.0 * WidthIn(def, record);
  if (!(gap >= 0.0)) throw Error("min-gap", "is not 0 or above");
  if (!(settings.threshold > 0.0 && settings.threshold < 100.0)) {
    throw Error("threshold", "is not within 0 to 100");
  }
  const double threshold = settings.threshold / 100.0 * PeakSize(def) / std::fabs(factor);
  return analysis::FindShocks(record.samples, threshold, Count(gap));
}

/// The shock that lies at a time.
const ShockEvent& EventAt(double time, const std::vector<ShockEvent>& events, const Record& record,
                          double width) {
  const double place = (time - record.begin) * record.fsamp;
  for (const ShockEvent& event : events) {
    if (place >= static_cast<double>(event.first) - width &&
        place <= static_cast<double>(event.last) + width) {
      return event;
    }
  }
  throw Error("at", fmt::format("there is no shock at {:g} s", time));
}

/// The quiet part and the range of a record, where they say that something is wrong with it.
std::vector<std::string> WarningsOf(const CWaveDef& def, const Record& record, double factor,
                                    const std::vector<ShockEvent>& events) {
  constexpr double kOffset = 1.0;      // [%] of the peak
  constexpr double kNoise = 5.0;       // [%] of the peak
  constexpr std::size_t kFlat = 3;     // equal extreme samples that may be chance
  constexpr std::size_t kEnough = 10;  // [sample] that are quiet
  std::vector<std::string> warnings;
  if (!IsClassical(def) || events.empty()) return warnings;
  const auto quiet = analysis::QuietOf(record.samples, events, Count(2.0 * WidthIn(def, record)));
  const double percent = 100.0 * std::fabs(factor) / PeakSize(def);
  if (quiet.count >= kEnough && std::fabs(quiet.mean) * percent > kOffset) {
    warnings.push_back(fmt::format("has an offset of {:.3g} % of the peak; --offset takes it off",
                                   quiet.mean * percent));
  }
  if (quiet.count >= kEnough && quiet.noise * percent > kNoise) {
    warnings.push_back(
        fmt::format("has noise of {:.3g} % of the peak in its quiet part", quiet.noise * percent));
  }
  const std::size_t equal = analysis::EqualExtremes(record.samples);
  if (equal > kFlat && analysis::EqualExtremes(SpanOf(def.GetWave())) <= 2) {
    warnings.push_back(
        fmt::format("seems to be clipped: {} samples in a row have its extreme value", equal));
  }
  return warnings;
}

/// The part of a record about a shock, and where in it the pulse is looked for.
struct Window {
  std::size_t first, count;
  Stretch search;
};

Window WindowOf(const CWaveDef& def, const Record& record, const std::vector<ShockEvent>& events,
                std::size_t k) {
  const double frame = static_cast<double>(def.GetNsamp()) / SampleRateOf(def) * record.fsamp;
  const std::size_t reach = Count(std::ceil(2.0 * frame)) + 64;
  const std::size_t end = record.samples.size();
  const ShockEvent& event = events[k];
  const std::size_t first = event.first > reach ? event.first - reach : 0;
  const std::size_t last = std::min(end - 1, event.last + reach);
  const std::size_t from = k == 0 ? first : (events[k - 1].last + event.first) / 2;
  const std::size_t to = k + 1 == events.size() ? last : (event.last + events[k + 1].first) / 2;
  return {first, last - first + 1, {std::max(from, first) - first, std::min(to, last) - first}};
}

/// Judges one shock.
ShockVerdict JudgeShock(const CWaveDef& def, const Record& record, double factor,
                        const std::vector<ShockEvent>& events, std::size_t k, bool mirrored,
                        const JudgeSettings& settings) {
  const ShockEvent& event = events[k];
  const Window window = WindowOf(def, record, events, k);
  ShockVerdict out{record.begin + static_cast<double>(event.peak) / record.fsamp,
                   factor * event.value,
                   mirrored,
                   {},
                   {}};
  Record part = record;
  part.samples = record.samples.subspan(window.first, window.count);
  part.begin += static_cast<double>(window.first) / record.fsamp;
  std::vector<double> turned;
  if (mirrored) {
    turned.assign(part.samples.begin(), part.samples.end());
    for (double& v : turned) v = -v;
    part.samples = turned;
  }
  JudgeSettings own = settings;
  own.mirrored = mirrored;
  if (events.size() > 1) own.search = window.search;
  try {
    out.judgement = Judge(def, part, own);
  } catch (const Error& e) {
    if (!e.GetKey().empty() || events.size() == 1) throw;
    out.reason = e.what();
  }
  return out;
}

}  // namespace

bool Series::Fails() const {
  return std::any_of(shocks.begin(), shocks.end(),
                     [](const ShockVerdict& s) { return s.judgement && !s.judgement->Passes(); });
}

bool Series::IsOpen() const {
  return std::any_of(shocks.begin(), shocks.end(),
                     [](const ShockVerdict& s) { return !s.judgement; });
}

Series JudgeSeries(const CWaveDef& def, const Record& record, const SeriesSettings& settings) {
  RequireNumbers(record.samples);
  if (!definition::HasBands(def)) throw Error("", "the definition has no samples with bands");
  const double factor = UnitFactor(def, record);
  RequireSampling(def, record, settings.judge);
  const std::vector<ShockEvent> events = EventsOf(def, record, factor, settings);
  Series out;
  if (settings.count && events.size() != *settings.count) {
    throw Error("", fmt::format("has {} shocks, not {}", events.size(), *settings.count));
  }
  if (events.empty()) {
    if (!settings.at.empty()) throw Error("at", "there is no shock in the record");
    Judgement whole = Judge(def, record, settings.judge);
    const double peak = factor * analysis::PeakOf(record.samples).value;
    const double time =
        record.begin + static_cast<double>(analysis::PeakOf(record.samples).index) / record.fsamp;
    out.shocks.push_back({time, peak, false, std::move(whole), {}});
    return out;
  }
  std::vector<std::size_t> chosen;
  for (const double time : settings.at) {
    const ShockEvent& event = EventAt(time, events, record, WidthIn(def, record));
    chosen.push_back(static_cast<std::size_t>(&event - events.data()));
  }
  for (std::size_t k = 0; settings.at.empty() && k < events.size(); ++k) chosen.push_back(k);
  const bool isNegative = analysis::PeakOf(SpanOf(def.GetWave())).value < 0.0;
  for (const std::size_t k : chosen) {
    const bool turned = (factor * events[k].value < 0.0) != isNegative;
    const bool mirrored = turned && (settings.polarity == Polarity::Both ||
                                     (settings.polarity == Polarity::Usual && events.size() > 1));
    out.shocks.push_back(JudgeShock(def, record, factor, events, k, mirrored, settings.judge));
  }
  out.warnings = WarningsOf(def, record, factor, events);
  return out;
}

}  // namespace qarv::assess
