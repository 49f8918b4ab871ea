// qarv-wave judge: whether a measured record passes.
#include "judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "analysis/band_fit.h"
#include "analysis/judge.h"
#include "analysis/shock.h"
#include "definition.h"
#include "diagnostics.h"
#include "entries.h"
#include "input_wave.h"
#include "kinematics.h"
#include "main_pulse.h"
#include "output_files.h"
#include "overlay.h"
#include "plot.h"
#include "rules/rule_table.h"
#include "text/text.h"
#include "title.h"

namespace qarv::command {

using text::OneLine;

using analysis::Verdict;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// What the bands are of.  A definition that the library refuses is no reason to fail a record.
CWaveDef LoadReference(const std::string& file) {
  const CWaveDef def = [&] {
    try {
      return LoadDefinitionOrRecord(file);
    } catch (const CommandError& e) {
      throw CommandError(kBadInput, e.what());
    }
  }();
  RequireBands(def, file);
  return def;
}

/// A remark on a file.
struct Warning {
  std::string file, text;
};
using Warnings = std::vector<Warning>;

/// What the sampling of a record cannot show; empty if it shows enough.
std::string SamplingGap(const CWaveDef& def, const InputWave& measured) {
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
  if (samples >= kLeastSamples) return {};
  return fmt::format("has {:.3g} samples in the pulse, fewer than {:g}", samples, kLeastSamples);
}

/// The velocity change of the measured pulse.
struct VelocityVerdict {
  double measured, defined, deviation;  // [amplitude unit x s], [%] of the defined one
  bool passes;
};

/// A compensated pulse is reshaped within its bands, so that the waveform and not the nominal pulse
/// is what the shaker had to do.
VelocityVerdict JudgeVelocity(const CWaveDef& def, const Overlay& overlay, double tolerance) {
  const MainPulse pulse = MainPulseOf(def);
  const auto change = [&](const Samples& wave) {
    return analysis::VelocityChange(SpanOf(wave), SampleRateOf(def), pulse.first, pulse.last);
  };
  const double measured = change(overlay.wave);
  const double defined = change(def.GetWave());
  const double deviation = 100.0 * (measured / defined - 1.0);
  return {measured, defined, deviation, std::fabs(deviation) <= tolerance};
}

void PlotVerdict(const CWaveDef& def, const Overlay& overlay, const std::string& title,
                 PlotFormat format, const std::string& file) {
  const std::size_t N = overlay.wave.GetSize();
  Samples measured(N);
  Samples violations(N);
  for (std::size_t i = 0; i < N; ++i) {
    const bool covered = i >= overlay.first && i <= overlay.last;
    const bool outside =
        analysis::Beyond(overlay.wave[i], def.GetTolU()[i], def.GetTolL()[i]) > 0.0;
    measured[i] = covered ? overlay.wave[i] : std::nan("");
    violations[i] = covered && outside ? overlay.wave[i] : std::nan("");
  }
  Plot({title,
        SampleRateOf(def),
        ZoomOf(def),
        {{AmplitudeLabel(def),
          {{"upper band", Role::Upper, &def.GetTolU()},
           {"reference", Role::Reference, &def.GetWave()},
           {"measured", Role::Wave, &measured},
           {"lower band", Role::Lower, &def.GetTolL()},
           {"outside", Role::Violation, &violations}}}}},
       format, file);
}

/// What the record shows where the bands lie over it.
struct Judgement {
  Overlay overlay;
  Verdict bands;
  std::optional<VelocityVerdict> velocity;  // of a classical pulse

  bool Passes() const { return bands.outside == 0 && (!velocity || velocity->passes); }
  /// What fails, for people; empty if nothing does.
  std::string Failed() const {
    const bool outside = bands.outside != 0;
    const bool off = velocity && !velocity->passes;
    return outside && off ? "bands and velocity change"
           : outside      ? "bands"
           : off          ? "velocity change"
                          : "";
  }
};

Judgement JudgeAt(const CWaveDef& def, const GridRecord& record, double start, double dvTol) {
  Judgement out{LayOver(def, record, start), {}, {}};
  const Overlay& overlay = out.overlay;
  out.bands = analysis::JudgeBands(SpanOf(overlay.wave), SpanOf(def.GetTolU()),
                                   SpanOf(def.GetTolL()), overlay.first, overlay.last);
  if (IsClassical(def)) out.velocity = JudgeVelocity(def, overlay, dvTol);
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
Outcome JudgeWhereItFits(const CWaveDef& def, const GridRecord& record, double dvTol) {
  const Location found = Locate(def, record);
  Outcome out{found, JudgeAt(def, record, found.start, dvTol), {}};
  if (!IsClassical(def) || out.judgement.bands.outside == 0) return out;
  out.nearest = analysis::FitBands(record.samples, SpanOf(def.GetTolU()), SpanOf(def.GetTolL()),
                                   PlacesAround(def, record, found.start));
  Judgement moved = JudgeAt(def, record, out.nearest->place, dvTol);
  if (moved.bands.outside == 0) out.judgement = std::move(moved);
  return out;
}

/// The list of results while it grows.
class EntryList {
 public:
  void Add(const char* key, const char* label, const Json& value, const std::string& unit = "") {
    entries_.push_back({key, label, value, unit});
  }
  const Entries& Get() const { return entries_; }

 private:
  Entries entries_;
};

/// Where and by how much the record leaves the bands.
void AddViolation(const CWaveDef& def, const GridRecord& record, const Outcome& outcome,
                  EntryList* out) {
  const Verdict& bands = outcome.judgement.bands;
  if (bands.outside == 0) return;
  const std::string unit = def.GetUnitAmpl().GetText();
  const double peak = std::fabs(analysis::PeakOf(SpanOf(def.GetWave())).value);
  const auto inFrame = static_cast<double>(bands.worst);
  out->Add("worst_time", "worst violation at", WriteValue(inFrame / record.fsamp), "s");
  out->Add("worst_record_time", "  in the record's own time",
           WriteValue(record.begin + (outcome.judgement.overlay.start + inFrame) / record.fsamp),
           "s");
  out->Add("worst_value", "  value", WriteValue(bands.value), unit);
  out->Add("worst_limit", "  limit", WriteValue(bands.limit), unit);
  out->Add("worst_excess", "  beyond it",
           WriteValue(100.0 * std::fabs(bands.value - bands.limit) / peak), "% of the peak");
  if (!outcome.nearest) return;
  out->Add("least_excess", "least violation where it is moved",
           WriteValue(100.0 * outcome.nearest->beyond / peak), "% of the peak");
  out->Add("least_excess_shift", "  moved by",
           WriteValue((outcome.nearest->place - outcome.found.start) / record.fsamp), "s");
}

void AddVelocity(const CWaveDef& def, const VelocityVerdict& velocity, double dvTol,
                 EntryList* out) {
  const MotionUnits motion = MotionUnitsOf(def.GetUnitAmpl().GetText());
  out->Add("velocity_change", "velocity change of the pulse",
           WriteValue(motion.velocity * velocity.measured), motion.velocityUnit);
  out->Add("velocity_change_defined", "  of the definition",
           WriteValue(motion.velocity * velocity.defined), motion.velocityUnit);
  out->Add("velocity_change_deviation", "  deviation", WriteValue(velocity.deviation), "%");
  out->Add("velocity_change_tolerance", "  tolerance", WriteValue(dvTol), "%");
}

Entries EntriesOf(const CWaveDef& def, const GridRecord& record, const Outcome& outcome,
                  double dvTol) {
  const Judgement& judgement = outcome.judgement;
  const double start = judgement.overlay.start;
  EntryList out;
  out.Add("verdict", "verdict", judgement.Passes() ? "pass" : "fail");
  if (!judgement.Passes()) out.Add("failed", "  by", judgement.Failed());
  out.Add("correlation", "correlation with the waveform", WriteValue(outcome.found.correlation));
  out.Add("start", "start of the frame in the record",
          WriteValue(record.begin + start / record.fsamp), "s");
  out.Add("shift", "  moved to fit the bands",
          WriteValue((start - outcome.found.start) / record.fsamp), "s");
  out.Add("judged", "samples judged", judgement.bands.judged);
  out.Add("missing", "samples of the frame not recorded", def.GetNsamp() - judgement.bands.judged);
  out.Add("outside", "samples outside the bands", judgement.bands.outside);
  AddViolation(def, record, outcome, &out);
  if (judgement.velocity) AddVelocity(def, *judgement.velocity, dvTol, &out);
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

Json AsArray(const Warnings& warnings) {
  Json array = Json::array();
  for (const Warning& warning : warnings) array.push_back(OneLine(warning.text));
  return array;
}

}  // namespace

ExitCode Judge(const JudgeOptions& options) {
  if (!(options.dvTol >= 0.0)) Fail("--dv-tol", "is not 0 or above");
  const CWaveDef def = LoadReference(options.definition);
  Warnings warnings;
  for (const Finding& finding : FindingsOf(def)) {
    warnings.push_back({options.definition, finding.text});
  }
  const InputWave measured = LoadMeasured(options.measured, options.fsamp);
  const GridRecord record = OnGridOf(def, measured, options.measured);
  const std::string gap = SamplingGap(def, measured);
  if (!gap.empty() && !options.force) {
    Fail(options.measured, gap + "; --force judges it all the same");
  }
  if (!gap.empty()) warnings.push_back({options.measured, gap});
  const Outcome outcome = JudgeWhereItFits(def, record, options.dvTol);
  const Judgement& judgement = outcome.judgement;
  if (judgement.bands.judged < def.GetNsamp()) {
    warnings.push_back({options.measured, MissingText(def, judgement.overlay)});
  }
  if (!judgement.Passes() && outcome.found.turned > outcome.found.correlation) {
    warnings.push_back({options.measured, fmt::format("correlates better upside down ({:.3f})",
                                                      -outcome.found.turned)});
  }
  Entries entries = EntriesOf(def, record, outcome, options.dvTol);
  const std::string text = AsText(entries);
  entries.push_back({"warnings", "warnings", AsArray(warnings), ""});

  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), AsJson(entries));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string title =
        fmt::format("{}: {} ({})", std::filesystem::path(options.measured).stem().string(),
                    judgement.Passes() ? "pass" : "fail", TitleOf(def));
    PlotVerdict(def, judgement.overlay, title, format, files.Reserve(options.plot));
  }
  for (const Warning& warning : warnings) Warn(warning.file, warning.text);
  files.Commit(text);
  return judgement.Passes() ? kDone : kRefused;
}

}  // namespace qarv::command
