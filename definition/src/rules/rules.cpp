// The rules of every family but the classical pulses, and those of all waveforms.
#include "rules/rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>
#include <vector>

#include "common/numeric/index_conv.h"
#include "family/damping_layout.h"
#include "family/packet_layout.h"
#include "family/symmetry_layout.h"
#include "json_fields.h"
#include "rules/rule_table.h"
#include "text/text.h"

namespace qarv::definition {

using text::NumberText;
using text::ParseNumber;
using text::Plain;

using common::FloorToIndex;
using common::int64;
using common::TruncToIndex;
using common::uint64;
using fmt::format;
using wave_def::CWaveDef;
using enum Severity;

// ---- Tables ------------------------------------------------------------------------------------

Findings Broken(const std::vector<Rule>& table) {
  Findings findings;
  for (const Severity severity : {Fails, Warns}) {
    for (const Rule& rule : table) {
      if (!rule.broken || rule.severity != severity) continue;
      Finding& finding = findings.emplace_back(Finding{severity, rule.text, rule.remedies});
      std::erase_if(finding.remedies, [](const Remedy& r) { return !std::isfinite(r.value); });
    }
  }
  return findings;
}

namespace {

/// v in units of its sixth digit, rounded by `round`; what is whole but for rounding errors stays.
template <class Round>
double ToSixDigits(double v, double slack, Round round) {
  const double unit = std::pow(10.0, std::floor(std::log10(v)) - 5.0);
  double rounded = v;
  ParseNumber(format("{:.6g}", round(v / unit * (1.0 + slack)) * unit), &rounded);
  return rounded;
}

}  // namespace

double RoundedUp(double v) {
  return ToSixDigits(v, -1e-12, [](double x) { return std::ceil(x); });
}

double RoundedDown(double v) {
  return ToSixDigits(v, 1e-12, [](double x) { return std::floor(x); });
}

Rule TooCoarse(const std::string& what, double samples, const std::string& key, double value) {
  const bool broken = samples > 0.0 && samples < kLeastSamples && value > 0.0;
  Rule rule{Warns, broken,
            format("{} has {:.3g} samples, fewer than {:g}", what, samples, kLeastSamples)};
  if (broken) rule.remedies = {{key, RoundedUp(value * kLeastSamples / samples)}};
  return rule;
}

namespace {

Rule NoRate(double fsamp) { return {Fails, fsamp == 0.0, "Fsamp is 0"}; }

Rule OddRate(double fsamp) {
  return {Warns, !(fsamp > 0.0 && std::isfinite(fsamp)) && fsamp != 0.0,
          format("Fsamp is {:g}, which is no sampling frequency", Plain(fsamp))};
}

Rule NoPeriod(double period) {
  return {Warns, period == 0.0, "Period is 0, so that the samples are no numbers"};
}

Rule NoLevel(const char* key, double level) {
  return {Warns, level == 0.0, format("{} is 0, and so is the waveform", key)};
}

/// The bands of all but the classical pulses.
Findings BandRules(const CWaveDef& settings) {
  const double up = settings.GetTolUpperRat();
  const double low = settings.GetTolLowerRat();
  return Broken({
      {Warns,
       up < 0.0,
       format("TolUpperRat is {:g}, so that the upper band lies below the waveform", up),
       {{"TolUpperRat", -up}}},
      {Warns,
       low > 0.0,
       format("TolLowerRat is {:g}, so that the lower band lies above the waveform", low),
       {{"TolLowerRat", -low}}},
  });
}

}  // namespace

// ---- Sines -------------------------------------------------------------------------------------

Findings BrokenRules(const wave_def::CWaveDefSingle& set, double fsamp) {
  const uint64 N = set.GetNsamp();
  const uint64 edge = TruncToIndex(set.GetEdgeTime() / (1.0 / fsamp));
  return Broken({
      NoRate(fsamp),
      {Fails, N == 0, "Nsamp is 0"},
      OddRate(fsamp),
      NoPeriod(set.GetPeriod()),
      NoLevel("PeakLevel", set.GetPeakLevel()),
      TooCoarse("a period", set.GetPeriod() * fsamp, "Fsamp", fsamp),
      {Warns,
       edge > N / 2,
       format("two edges of {:g} s do not fit {} samples", set.GetEdgeTime(), N),
       {{"EdgeTime", static_cast<double>(N / 2) / fsamp}}},
  });
}

Findings BrokenRules(const wave_def::CWaveDefGradual& set, double fsamp) {
  using Set = wave_def::CWaveDefGradual;
  const uint64 N = set.GetNsamp();
  const bool byTime = set.GetLengthType() == Set::LENGTH_BY_TIME;
  const bool bySlope = set.GetLengthType() == Set::LENGTH_BY_SLOPE;
  const double slope = set.GetWaveSlope();
  const double time = byTime ? set.GetWaveTime() : (set.GetLevelEnd() - set.GetLevelBeg()) / slope;
  const double needed = (set.GetPreTime() + time) * fsamp;  // [sample] of rise and ramp
  std::vector<Remedy> longer;
  if (needed < 4e9) longer.push_back({"Nsamp", std::ceil(needed) + 1.0});
  return Broken({
      NoRate(fsamp),
      {Fails, N == 0, "Nsamp is 0"},
      {Fails, !byTime && !bySlope, "LengthType is neither LENGTH_BY_TIME nor LENGTH_BY_SLOPE"},
      {Fails, bySlope && slope == 0.0, "WaveSlope is 0"},
      OddRate(fsamp),
      NoPeriod(set.GetPeriod()),
      TooCoarse("a period", set.GetPeriod() * fsamp, "Fsamp", fsamp),
      {Warns,
       bySlope && time < 0.0,
       format("WaveSlope is {:g}, which leads away from LevelEnd", slope),
       {{"WaveSlope", -slope}}},
      {Warns, byTime && time < 0.0, format("WaveTime is {:g} s", time)},
      {Warns, time >= 0.0 && needed > static_cast<double>(N),
       format("rise and ramp take {:.6g} of {} samples, so that the fall is cut", needed, N),
       longer},
  });
}

Findings BrokenRules(const wave_def::CWaveDefSineBeatBurst& set, double fsamp) {
  using Set = wave_def::CWaveDefSineBeatBurst;
  const auto kind = set.GetWaveKind();
  const wave_def::PacketLayout layout = LayOut(set, fsamp);
  const bool complete =
      fsamp != 0.0 && set.GetFreq() != 0.0 && set.GetCycle() != 0 && set.GetFrame() != 0;
  const bool overlaps = set.GetRestTime() < 0.0 && set.GetFrame() > 1;
  const bool tapered = kind == Set::SINE_BURST && set.GetEdging();
  return Broken({
      NoRate(fsamp),
      {Fails, kind != Set::SINE_BEAT && kind != Set::SINE_BURST,
       "WaveKind is neither SINE_BEAT nor SINE_BURST"},
      {Fails, set.GetAmpl() == 0.0, "Ampl is 0"},
      {Fails, set.GetFreq() == 0.0, "Freq is 0"},
      {Fails, set.GetCycle() == 0, "Cycle is 0"},
      {Fails, set.GetFrame() == 0, "Frame is 0"},
      {Fails, complete && layout.packet == 0,
       format("a packet of {} cycles of {:g} Hz has no samples", set.GetCycle(), set.GetFreq())},
      {Fails, complete && layout.packet != 0 && !layout.total.IsPositive(),
       format("packets of {} and rests of {} samples leave none", static_cast<int64>(layout.packet),
              static_cast<int64>(layout.rest)),
       set.GetFreq() > 0.0 && fsamp > 0.0 ? std::vector<Remedy>{{"RestTime", 0.0}}
                                          : std::vector<Remedy>{}},
      OddRate(fsamp),
      {Warns,
       overlaps && complete && layout.total.IsPositive() && layout.total.Count() < layout.packet,
       format("RestTime is {:g} s, so that packets of {} samples overlap to nothing: the waveform "
              "is 0",
              set.GetRestTime(), layout.packet),
       {{"RestTime", 0.0}}},
      {Warns, set.GetFreq() < 0.0, format("Freq is {:g} Hz", set.GetFreq())},
      TooCoarse("a period", fsamp / set.GetFreq(), "Fsamp", fsamp),
      {Warns,
       overlaps,
       format("RestTime is {:g} s, so that packets overlap", set.GetRestTime()),
       {{"RestTime", 0.0}}},
      {Warns, tapered && uint64{set.GetEdgeRise()} + set.GetEdgeFall() > set.GetCycle(),
       format("tapers of {} and {} cycles overlap in a packet of {}", set.GetEdgeRise(),
              set.GetEdgeFall(), set.GetCycle())},
  });
}

// ---- Symmetry waves ----------------------------------------------------------------------------

Findings BrokenRules(const wave_def::CWaveDefSymmetry& set, double fsamp) {
  using namespace wave_def::wave_def_sub;
  const WAVE_KIND kind = set.GetWaveKind();
  const bool known = kind == HALF_SINE || kind == TRIANGLE || kind == HAVERSINE;
  const wave_def::SymmetryLayout layout = LayOut(set, fsamp);
  const bool complete = known && fsamp != 0.0 && set.GetPeak() != 0.0 && set.GetWidth() != 0.0;
  const bool positive = layout.total.IsPositive();
  const uint64 size = positive ? layout.total.Count() : 0;
  bool fits = PulseFits(set, layout.n, layout.main, size);
  for (const uint64 at : layout.Compensations()) fits = fits && PulseFits(set, layout.n, at, size);
  const bool peakOutside = kind == TRIANGLE && set.GetPeakPos() > 1.0;
  const double least = std::min({set.GetPreZero(), set.GetMidZero(), set.GetPostZero(),
                                 set.GetDevideComp() ? set.GetMidZeroBackward() : 0.0});
  return Broken({
      NoRate(fsamp),
      {Fails, !known, "WaveKind is not HALF_SINE, TRIANGLE or HAVERSINE"},
      {Fails, set.GetPeak() == 0.0, "Peak is 0"},
      {Fails, set.GetWidth() == 0.0, "Width is 0"},
      {Fails, complete && !positive, "pulses and silences have no samples"},
      {Fails,
       complete && positive && !fits && peakOutside,
       format("PeakPos is {:g}, behind the width", set.GetPeakPos()),
       {{"PeakPos", 1.0}}},
      {Fails, complete && positive && !fits && !peakOutside,
       format("a pulse of {} samples does not fit between the silences into {} samples",
              static_cast<int64>(layout.n), size)},
      OddRate(fsamp),
      {Warns, complete && layout.n == 0,
       format("Width is {:.3g} samples, so that there is no pulse", set.GetWidth() * fsamp)},
      TooCoarse("a pulse", set.GetWidth() * fsamp, "Fsamp", fsamp),
      {Warns, least < 0.0, format("a silence lasts {:g} s, so that pulses overlap", least)},
  });
}

// ---- Damped sines ------------------------------------------------------------------------------

namespace {

/// Where the components of a damped-sine definition begin.
struct Components {
  uint64 count = 0;      // that have an amplitude, without the compensating one
  uint64 outside = 0;    // of these, that begin outside the record
  double highest = 0.0;  // frequency [Hz]
  double last = 0.0;     // beginning of the last of these [s]
  double shift = 0.0;    // [s] of all, so that none begins before the record
  bool undamped = false;

  void Add(double freq, double ampl, double begin, double dt, uint64 nsamp) {
    if (ampl == 0.0) return;
    ++count;
    highest = std::max(highest, std::fabs(freq));
    if (FloorToIndex(begin / dt) < nsamp) return;
    ++outside;
    last = std::max(last, begin);
  }
};

Components ComponentsOf(const wave_def::CWaveDefDamping& set, double fsamp) {
  using namespace com_def::comdefconst;
  const wave_def::DampingComponents c(set.GetDefDampingElmList());
  const double dt = 1.0 / fsamp;
  const bool compensated = set.GetSyncWaveType() == SYNC_WAVE_DAMPED_SINE;
  const wave_def::CompensatingSine added =
      compensated ? wave_def::CalcCompensatingSine(0.0, c.freq.size(), c.freq.data(), c.ampl.data(),
                                                   c.zeta.data(), c.delay.data(), set.GetFreq(),
                                                   set.GetZeta())
                  : wave_def::CompensatingSine{};
  Components out;
  out.shift = added.shift;
  for (std::size_t i = 0; i < c.freq.size(); ++i) {
    out.Add(c.freq[i], c.ampl[i], c.delay[i] + added.shift, dt, set.GetNsamp());
    const bool decays = set.GetSyncWaveType() == SYNC_WAVE_WAVELET || c.zeta[i] > 0.0;
    out.undamped = out.undamped || (c.ampl[i] != 0.0 && !decays);
  }
  if (compensated) {
    out.highest = std::max(out.highest, std::fabs(set.GetFreq()));
    out.undamped = out.undamped || !(set.GetZeta() > 0.0);
  }
  return out;
}

}  // namespace

Findings BrokenRules(const wave_def::CWaveDefDamping& set, double fsamp) {
  using namespace com_def::comdefconst;
  const auto type = set.GetSyncWaveType();
  const bool isMethod = type == SYNC_WAVE_DAMPED_SINE || type == SYNC_WAVE_DAMPED_SINE_MODIFIED ||
                        type == SYNC_WAVE_WAVELET;
  const Components parts = ComponentsOf(set, fsamp);
  const double needed = std::floor(parts.last * fsamp) + 2.0;  // [sample] to see the last one
  std::vector<Remedy> longer;
  if (needed > static_cast<double>(set.GetNsamp()) && needed < 4e9)
    longer.push_back({"Nsamp", needed});
  const std::string shifted =
      parts.shift > 0.0 ? format(
                              " (all are delayed by {:.6g} s, so that the compensating one does "
                              "not begin before it)",
                              parts.shift)
                        : "";
  return Broken({
      NoRate(fsamp),
      {Fails, set.GetNsamp() == 0, "Nsamp is 0"},
      {Fails, set.GetElmNum() == 0, "there are no Elements"},
      {Fails, !isMethod, "SyncWaveType is not set"},
      OddRate(fsamp),
      {Warns, set.GetElmNum() != 0 && parts.count == 0, "no component has an amplitude"},
      {Warns, parts.count != 0 && parts.outside == parts.count,
       format("every component begins outside the record of {} samples{}", set.GetNsamp(), shifted),
       longer},
      {Warns, parts.outside != 0 && parts.outside < parts.count,
       format("{} of {} components begin outside the record of {} samples{}", parts.outside,
              parts.count, set.GetNsamp(), shifted),
       longer},
      {Warns, parts.undamped, "Zeta of a component is not above 0, so that it does not decay"},
      TooCoarse("the shortest period", fsamp / parts.highest, "Fsamp", fsamp),
  });
}

// ---- Measured waveforms ------------------------------------------------------------------------

Findings BrokenRules(const MeasuredSet& /*set*/, double fsamp) {
  return Broken({
      {Warns, fsamp == 0.0, "Fsamp is 0, so that the samples have no times"},
      OddRate(fsamp),
  });
}

// ---- All ---------------------------------------------------------------------------------------

namespace {

/// All rules but the one that has to try.
Findings FindingsWithoutTrying(const Definition& definition) {
  const double fsamp = definition.settings.GetFsamp();
  Findings findings =
      std::visit([&](const auto& set) { return BrokenRules(set, fsamp); }, definition.set);
  if (definition.GetFamily().type == CWaveDef::WAVE_TYPE_CLASSICAL) return findings;
  for (Finding& finding : BandRules(definition.settings)) findings.push_back(std::move(finding));
  return findings;
}

}  // namespace

bool HasFailure(const Findings& findings) {
  return !findings.empty() && findings.front().severity == Severity::Fails;
}

Findings BrokenRulesOf(const Definition& definition) {
  Findings findings = FindingsWithoutTrying(definition);
  const auto* const set = std::get_if<wave_def::CWaveDefClassical>(&definition.set);
  if (set == nullptr || HasFailure(findings)) return findings;
  Findings all = CompensationFindings(*set, definition.settings.GetFsamp());
  all.insert(all.end(), findings.begin(), findings.end());
  return all;
}

std::string GenerateOrExplain(const Definition& definition, CWaveDef* def) {
  try {
    return TryToGenerate(definition, def) ? std::string() : WhyRefused(definition);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  return "the waveform does not fit into memory";
}

Findings Check(const Definition& definition, CWaveDef* def) {
  CWaveDef own;
  if (def == nullptr) def = &own;
  Findings findings = FindingsWithoutTrying(definition);
  if (HasFailure(findings)) return findings;
  const std::string reason = GenerateOrExplain(definition, def);
  if (!reason.empty()) {
    findings.insert(findings.begin(), {Severity::Fails, reason, {}});
    return findings;
  }
  for (Finding& finding : VelocityFindings(definition, *def)) {
    findings.push_back(std::move(finding));
  }
  for (Finding& finding : CheckWave(*def)) findings.push_back(std::move(finding));
  return findings;
}

namespace {

/// The samples of which something is wrong.
struct Marked {
  uint64 count = 0;
  uint64 first = 0;

  void Add(uint64 i) {
    if (count == 0) first = i;
    ++count;
  }
};

}  // namespace

Findings CheckWave(const CWaveDef& def) {
  const double* const wave = def.GetWave().GetData();
  const double* const upper = def.GetTolU().GetData();
  const double* const lower = def.GetTolL().GetData();
  const uint64 N = def.GetNsamp();
  // What is lost to rounding where a band touches the waveform.
  const double slack = 1e-9 * std::fabs(def.GetWave().GetAbsMax(0, 0));
  // The bands of the others are a choice, and without their ratios there are none.
  const bool banded = def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL;
  Marked odd;
  Marked crossed;
  Marked outside;
  Marked flat;
  for (uint64 i = 0; i < N; ++i) {
    if (!std::isfinite(wave[i])) odd.Add(i);
    if (upper[i] < lower[i]) {
      crossed.Add(i);
    } else if (wave[i] > upper[i] + slack || wave[i] < lower[i] - slack) {
      outside.Add(i);
    } else if (banded && upper[i] - lower[i] <= slack) {
      flat.Add(i);
    }
  }
  return Broken({
      {Warns, odd.count != 0, format("{} of {} samples are no numbers", odd.count, N)},
      {Warns, crossed.count != 0,
       format("the upper band lies below the lower one at {} of {} samples, first at sample {}",
              crossed.count, N, crossed.first)},
      {Warns, flat.count != 0,
       format(
           "the bands have no width at {} of {} samples, first at sample {}, so that no measured "
           "pulse can pass",
           flat.count, N, flat.first)},
      {Warns, outside.count != 0,
       format("the waveform leaves its own bands at {} of {} samples, first at sample {}",
              outside.count, N, outside.first)},
  });
}

std::string WhyRefused(const Definition& definition) {
  const Findings findings = BrokenRulesOf(definition);
  if (!HasFailure(findings)) return "the parameters give no waveform";
  return FindingText(findings.front());
}

std::string FindingText(const Finding& finding) {
  std::string text = finding.text;
  for (const Remedy& remedy : finding.remedies) {
    text += &remedy == &finding.remedies.front() ? "; works with " : " or ";
    text += remedy.key + " " + NumberText(remedy.value);
  }
  return text;
}

std::string FindingsJson(const Findings& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json remedies = Json::array();
    for (const Remedy& remedy : finding.remedies) {
      remedies.push_back({{"Key", remedy.key}, {"Value", WriteValue(remedy.value)}});
    }
    list.push_back({{"Severity", finding.severity == Severity::Fails ? "fails" : "warns"},
                    {"Text", WriteValue(text::OneLine(finding.text))},
                    {"Remedies", remedies}});
  }
  return list.dump();
}

}  // namespace qarv::definition
