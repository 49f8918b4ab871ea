// Whether a measured record keeps within the bands of a definition.
#include "assess/judgement.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "analysis/shock.h"
#include "assess/motion.h"
#include "assess/transient.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/main_pulse.h"
#include "overlay.h"

namespace qarv::assess {

using analysis::Verdict;
using definition::IsClassical;
using definition::MainPulse;
using definition::MainPulseOf;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// What the sampling of a record cannot show; empty if it shows enough.
std::string SamplingGap(const CWaveDef& def, const Record& measured) {
  constexpr double kClock = 1e-3;  // that two clocks may differ
  const double rate = SampleRateOf(def);
  if (measured.fsamp < rate * (1.0 - kClock)) {
    return fmt::format(
        "is sampled at {:g} Hz, below the {:g} Hz of the definition: ringing above {:g} Hz is not "
        "seen",
        measured.fsamp, rate, measured.fsamp / 2.0);
  }
  if (!IsClassical(def)) return {};
  const double samples = def.GetDefClassical().GetMainWidth() * std::min(measured.fsamp, rate);
  if (samples >= definition::kLeastSamples) return {};
  return fmt::format("has {:.3g} samples in the pulse, fewer than {:g}", samples,
                     definition::kLeastSamples);
}

/// A compensated pulse is reshaped within its bands, so that the waveform and not the nominal pulse
/// is what the shaker had to do.
VelocityVerdict JudgeVelocity(const CWaveDef& def, const Overlay& overlay,
                              const JudgeSettings& settings) {
  const MainPulse pulse = MainPulseOf(def);
  const auto change = [&](const Samples& wave) {
    return analysis::VelocityChange(SpanOf(wave), SampleRateOf(def), pulse.first, pulse.last);
  };
  const double measured = change(overlay.wave);
  const auto against = [&](double defined, const char* reference) {
    const double deviation = 100.0 * (measured / defined - 1.0);
    return VelocityVerdict{measured, defined, deviation, std::fabs(deviation) <= settings.dvTol,
                           reference};
  };
  const auto nominal = [&] { return against(pulse.velocityChange, "nominal pulse"); };
  const auto waveform = [&] { return against(change(def.GetWave()), "waveform"); };
  switch (settings.dvOf) {
    case VelocityReference::Nominal:
      return nominal();
    case VelocityReference::Waveform:
      return waveform();
    case VelocityReference::Both:
      return std::fabs(nominal().deviation) > std::fabs(waveform().deviation) ? nominal()
                                                                              : waveform();
    case VelocityReference::Usual:
      break;
  }
  return definition::IsCompensated(def) ? waveform() : nominal();
}

Judgement JudgeAt(const CWaveDef& def, const GridRecord& record, double start,
                  const JudgeSettings& settings) {
  Judgement out{LayOver(def, record, start), {}, {}, 0.0, {}, {}};
  const Overlay& overlay = out.overlay;
  out.bands = analysis::JudgeBands(SpanOf(overlay.wave), SpanOf(def.GetTolU()),
                                   SpanOf(def.GetTolL()), overlay.first, overlay.last);
  if (IsClassical(def)) out.velocity = JudgeVelocity(def, overlay, settings);
  return out;
}

/// A judgement and how it was come to.
struct Outcome {
  Location found;
  Judgement judgement;
  std::optional<analysis::BandFit> nearest;  // where bands that had to be moved fit best
};

/// The standards let the bands be laid over the record where they fit best.  Where they fit nowhere
/// the judgement is that of the best correlation, which shows people what is wrong.
Outcome JudgeWhereItFits(const CWaveDef& def, const GridRecord& record,
                         const JudgeSettings& settings) {
  const Location found = Locate(def, record);
  Outcome out{found, JudgeAt(def, record, found.start, settings), {}};
  if (!IsClassical(def) || out.judgement.bands.outside == 0) return out;
  out.nearest = analysis::FitBands(record.samples, SpanOf(def.GetTolU()), SpanOf(def.GetTolL()),
                                   PlacesAround(def, record, found.start, settings.move / 100.0));
  Judgement moved = JudgeAt(def, record, out.nearest->place, settings);
  if (moved.bands.outside == 0) out.judgement = std::move(moved);
  return out;
}

/// The list of results while it grows.
class EntryList {
 public:
  void Add(const char* key, const char* label, const Value& value, const std::string& unit = "") {
    entries_.push_back({key, label, value, unit});
  }
  void Add(const Entry& entry) { entries_.push_back(entry); }
  const Entries& Get() const { return entries_; }

 private:
  Entries entries_;
};

/// Where and by how much the record leaves the bands.
/// @param[in] sign  of the record's own values
void AddViolation(const CWaveDef& def, const GridRecord& record, const Outcome& outcome,
                  double sign, EntryList* out) {
  const Verdict& bands = outcome.judgement.bands;
  if (bands.outside == 0) return;
  const std::string unit = def.GetUnitAmpl().GetText();
  const double peak = std::fabs(analysis::PeakOf(SpanOf(def.GetWave())).value);
  const auto inFrame = static_cast<double>(bands.worst);
  out->Add("worst_time", "worst violation at", inFrame / record.fsamp, "s");
  out->Add("worst_record_time", "  in the record's own time",
           record.begin + (outcome.judgement.overlay.start + inFrame) / record.fsamp, "s");
  out->Add("worst_value", "  value", sign * bands.value, unit);
  out->Add("worst_limit", "  limit", sign * bands.limit, unit);
  out->Add("worst_excess", "  beyond it", 100.0 * std::fabs(bands.value - bands.limit) / peak,
           "% of the peak");
  if (!outcome.nearest) return;
  out->Add("least_excess", "least violation where it is moved",
           100.0 * outcome.nearest->beyond / peak, "% of the peak");
  out->Add("least_excess_shift", "  moved by",
           (outcome.nearest->place - outcome.found.start) / record.fsamp, "s");
}

void AddVelocity(const CWaveDef& def, const VelocityVerdict& velocity,
                 const JudgeSettings& settings, EntryList* out) {
  const double sign = settings.mirrored ? -1.0 : 1.0;
  const MotionUnits motion = MotionUnitsOf(def.GetUnitAmpl().GetText());
  out->Add("velocity_change", "velocity change of the pulse",
           sign * motion.velocity * velocity.measured, motion.velocityUnit);
  out->Add("velocity_change_defined", "  of the definition",
           sign * motion.velocity * velocity.defined, motion.velocityUnit);
  out->Add("velocity_change_reference", "  that is, of its", velocity.reference);
  out->Add("velocity_change_deviation", "  deviation", velocity.deviation, "%");
  out->Add("velocity_change_tolerance", "  tolerance", settings.dvTol, "%");
}

/// The shock itself, whatever its bands are.
void AddShock(const CWaveDef& def, const Judgement& judgement, double sign, EntryList* out) {
  const std::string unit = def.GetUnitAmpl().GetText();
  const auto wave = SpanOf(judgement.overlay.wave);
  const double fsamp = SampleRateOf(def);
  out->Add("peak", "peak", sign * analysis::PeakOf(wave).value, unit);
  if (IsClassical(def)) {
    out->Add("pulse_width", "pulse width at 10 % of the peak",
             analysis::WidthAtLevel(wave, 0.1) / fsamp, "s");
  }
  for (const Entry& entry : TransientEntries(wave, fsamp, unit)) out->Add(entry);
}

Entries EntriesOf(const CWaveDef& def, const GridRecord& record, const Outcome& outcome,
                  const JudgeSettings& settings) {
  const Judgement& judgement = outcome.judgement;
  const double sign = settings.mirrored ? -1.0 : 1.0;
  const double start = judgement.overlay.start;
  EntryList out;
  out.Add("verdict", "verdict", judgement.Passes() ? "pass" : "fail");
  if (!judgement.Passes()) out.Add("failed", "  by", judgement.Failed());
  out.Add("correlation", "correlation with the waveform", outcome.found.correlation);
  out.Add("start", "start of the frame in the record", record.begin + start / record.fsamp, "s");
  out.Add("shift", "  moved to fit the bands", (start - outcome.found.start) / record.fsamp, "s");
  out.Add("judged", "samples judged", judgement.bands.judged);
  out.Add("missing", "samples of the frame not recorded", def.GetNsamp() - judgement.bands.judged);
  out.Add("outside", "samples outside the bands", judgement.bands.outside);
  AddViolation(def, record, outcome, sign, &out);
  if (judgement.velocity) AddVelocity(def, *judgement.velocity, settings, &out);
  AddShock(def, judgement, sign, &out);
  return out.Get();
}

/// The part of the frame that the record does not cover.
std::string MissingText(const CWaveDef& def, const Overlay& overlay) {
  const std::size_t N = def.GetNsamp();
  const std::size_t before = overlay.first;
  const std::size_t behind = N - 1 - overlay.last;
  const auto part = [](std::size_t count, const char* where) {
    return count == 0 ? std::string() : fmt::format(", {} are missing {}", count, where);
  };
  return fmt::format("covers {} of the {} samples of the frame{}{}", N - before - behind, N,
                     part(before, "before it"), part(behind, "behind it"));
}

/// A compensated pulse leaves the table at rest: what its record says of that.  Empty if it does.
std::string Drift(const CWaveDef& def, const Overlay& overlay) {
  constexpr double kHome = 0.1;    // of the largest velocity
  constexpr double kWhole = 0.95;  // of the frame
  const std::size_t covered = overlay.last - overlay.first + 1;
  const bool whole = static_cast<double>(covered) >= kWhole * static_cast<double>(def.GetNsamp());
  if (!definition::IsCompensated(def) || !whole) return {};
  const auto wave = SpanOf(overlay.wave).subspan(overlay.first, covered);
  const analysis::Motion motion = analysis::MotionOf(wave, SampleRateOf(def));
  if (!(std::fabs(motion.residualVelocity) > kHome * motion.peakVelocity)) return {};
  return fmt::format("drifts: the velocity ends at {:.3g} % of its largest",
                     100.0 * std::fabs(motion.residualVelocity) / motion.peakVelocity);
}

}  // namespace

std::string Judgement::Failed() const {
  const bool outside = bands.outside != 0;
  const bool off = velocity && !velocity->passes;
  return outside && off ? "bands and velocity change"
         : outside      ? "bands"
         : off          ? "velocity change"
                        : "";
}

void RequireSampling(const CWaveDef& def, const Record& measured, const JudgeSettings& settings) {
  const std::string gap = SamplingGap(def, measured);
  if (!gap.empty() && !settings.force) throw Error("", gap + "; --force judges it all the same");
}

Judgement Judge(const CWaveDef& def, const Record& measured, const JudgeSettings& settings) {
  if (!(settings.dvTol >= 0.0)) throw Error("dv-tol", "is not 0 or above");
  if (!definition::HasBands(def)) throw Error("", "the definition has no samples with bands");
  if (!(settings.move >= 0.0 && settings.move <= 100.0)) {
    throw Error("move", "is not within 0 to 100");
  }
  RequireSampling(def, measured, settings);
  const GridRecord record = OnGridOf(def, measured, settings.search);
  std::vector<std::string> warnings;
  if (std::string gap = SamplingGap(def, measured); !gap.empty()) {
    warnings.push_back(std::move(gap));
  }
  Outcome outcome = JudgeWhereItFits(def, record, settings);
  Judgement& out = outcome.judgement;
  if (out.bands.judged < def.GetNsamp()) warnings.push_back(MissingText(def, out.overlay));
  if (!out.Passes() && outcome.found.turned > outcome.found.correlation) {
    warnings.push_back(
        fmt::format("correlates better upside down ({:.3f})", -outcome.found.turned));
  }
  if (const std::string drift = Drift(def, out.overlay); !drift.empty()) warnings.push_back(drift);
  out.correlation = outcome.found.correlation;
  out.entries = EntriesOf(def, record, outcome, settings);
  out.begin = record.begin + out.overlay.start / record.fsamp;
  out.warnings = std::move(warnings);
  return std::move(out);
}

}  // namespace qarv::assess
