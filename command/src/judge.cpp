// qarv-wave judge: whether a measured record passes.
//
//   ratio   sampling frequency of the record over that of the definition
//   start   place of the definition's first sample in the record [sample of the definition]
#include "judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <span>
#include <vector>

#include "analysis/judge.h"
#include "analysis/resample.h"
#include "analysis/shock.h"
#include "common/numeric/index_conv.h"
#include "definition.h"
#include "entries.h"
#include "input_wave.h"
#include "kinematics.h"
#include "main_pulse.h"
#include "output_files.h"
#include "plot.h"

namespace qarv::command {

using analysis::Verdict;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

/// The measured record on the samples of the definition.
struct Overlay {
  Samples wave;             // as many as the definition has
  std::size_t first, last;  // [sample] that the record covers
  double start;             // [sample] of the definition's first sample in the record
  double correlation;
};

/// What a record is aligned by, in the definition.
struct Reference {
  std::size_t first, last;  // [sample]
};

bool IsClassical(const CWaveDef& def) { return def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL; }

Reference ReferenceOf(const CWaveDef& def) {
  const auto N = static_cast<std::size_t>(def.GetNsamp());
  if (!IsClassical(def)) return {0, N - 1};
  const MainPulse pulse = MainPulseOf(def);
  return {std::min(pulse.first, N - 1), std::min(pulse.last, N - 1)};
}

/// Brings a record that says its unit to the definition's.
void ConvertUnit(const CWaveDef& def, const std::string& file, InputWave* measured) {
  const std::string unit = def.GetUnitAmpl().GetText();
  if (measured->unit.empty() || unit.empty() || measured->unit == unit) return;
  const MotionUnits from = MotionUnitsOf(measured->unit);
  const MotionUnits to = MotionUnitsOf(unit);
  if (!from.known || !to.known) {
    Fail(file, fmt::format("its unit is {}, not {}", measured->unit, unit));
  }
  for (double& v : measured->samples) v *= from.velocity / to.velocity;
}

/// A record as the definition needs it: its sampling frequency, and its length in those samples.
struct Scaled {
  double ratio;
  bool sameRate;
  double end;  // [sample of the definition] place of the last sample
};

Scaled ScaleOf(const CWaveDef& def, const InputWave& measured, const std::string& file) {
  constexpr double kLongest = 1e9;  // [sample] that are worth an attempt
  const auto record = SpanOf(measured.samples);
  if (!std::all_of(record.begin(), record.end(), [](double v) { return std::isfinite(v); })) {
    Fail(file, "has samples that are no numbers");
  }
  const double ratio = measured.fsamp / SampleRateOf(def);
  const double end = static_cast<double>(record.size() - 1) / ratio;
  if (!(ratio > 0.0 && std::isfinite(ratio) && end < kLongest)) {
    Fail(file, fmt::format("a sampling frequency of {:g} Hz does not go with {:g} Hz",
                           measured.fsamp, SampleRateOf(def)));
  }
  return {ratio, std::fabs(ratio - 1.0) < 1e-9, end};
}

/// The record at every sample of the definition, whose first one lies at `start` in it.
Samples SampledAtDefinition(const CWaveDef& def, const Scaled& scaled, double start,
                            std::span<const double> record) {
  Samples wave(def.GetNsamp());
  if (!scaled.sameRate || start != std::round(start)) {
    const auto x = analysis::SampledAt(record, start * scaled.ratio, scaled.ratio, wave.GetSize());
    std::copy(x.begin(), x.end(), wave.begin());
    return wave;
  }
  // Nothing lies between the samples: they stay what they are.
  for (std::size_t j = 0; j < wave.GetSize(); ++j) {
    const double i = std::clamp(start + static_cast<double>(j), 0.0, scaled.end);
    wave[j] = record[static_cast<std::size_t>(common::TruncToIndex(i))];
  }
  return wave;
}

Overlay LayOver(const CWaveDef& def, const InputWave& measured, const std::string& file) {
  const auto record = SpanOf(measured.samples);
  const Scaled scaled = ScaleOf(def, measured, file);
  const auto length = static_cast<std::size_t>(common::TruncToIndex(scaled.end + 1e-6)) + 1;
  const std::vector<double> onGrid = scaled.sameRate
                                         ? std::vector<double>(record.begin(), record.end())
                                         : analysis::SampledAt(record, 0.0, scaled.ratio, length);
  const Reference reference = ReferenceOf(def);
  const analysis::Alignment found = analysis::Align(
      SpanOf(def.GetWave()).subspan(reference.first, reference.last - reference.first + 1), onGrid);
  if (!(found.correlation > 0.0)) {
    Fail(file, "does not show the waveform");
  }
  const double start = found.lag - static_cast<double>(reference.first);
  constexpr double kSlack = 1e-6;  // [sample] lost to rounding
  const double lastOfFrame = static_cast<double>(def.GetNsamp() - 1);
  const double first = std::max(std::ceil(-start - kSlack), 0.0);
  const double last = std::min(std::floor(scaled.end - start + kSlack), lastOfFrame);
  const bool whole =
      first <= static_cast<double>(reference.first) && last >= static_cast<double>(reference.last);
  if (!(first <= last) || (IsClassical(def) && !whole)) {
    Fail(file, "does not hold the whole pulse");
  }
  return {SampledAtDefinition(def, scaled, start, record),
          static_cast<std::size_t>(common::TruncToIndex(first)),
          static_cast<std::size_t>(common::TruncToIndex(last)), start, found.correlation};
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
    const bool outside = analysis::JudgeBands(SpanOf(overlay.wave), SpanOf(def.GetTolU()),
                                              SpanOf(def.GetTolL()), i, i)
                             .outside != 0;
    measured[i] = covered ? overlay.wave[i] : std::nan("");
    violations[i] = covered && outside ? overlay.wave[i] : std::nan("");
  }
  PlotPanels({{AmplitudeLabel(def),
               {{"upper band", Role::Upper, &def.GetTolU()},
                {"reference", Role::Reference, &def.GetWave()},
                {"measured", Role::Wave, &measured},
                {"lower band", Role::Lower, &def.GetTolL()},
                {"outside", Role::Violation, &violations}}}},
             SampleRateOf(def), title, format, file);
}

/// What the record shows, and what of it counts.
struct Judgement {
  Verdict bands;
  std::optional<VelocityVerdict> velocity;  // of a classical pulse

  bool Passes() const { return bands.outside == 0 && (!velocity || velocity->passes); }
};

Entries EntriesOf(const CWaveDef& def, const Overlay& overlay, const Judgement& judgement,
                  double dvTol) {
  const double fsamp = SampleRateOf(def);
  const std::string unit = def.GetUnitAmpl().GetText();
  const Verdict& bands = judgement.bands;
  Entries entries{{"verdict", "verdict", judgement.Passes() ? "pass" : "fail", ""}};
  const auto add = [&](const char* key, const char* label, const Json& v, const std::string& of) {
    entries.push_back({key, label, v, of});
  };
  add("correlation", "correlation with the waveform", WriteValue(overlay.correlation), "");
  add("start", "start of the frame in the record", WriteValue(overlay.start / fsamp), "s");
  add("judged", "samples judged", bands.judged, "");
  add("outside", "samples outside the bands", bands.outside, "");
  if (bands.outside != 0) {
    const double peak = std::fabs(analysis::PeakOf(SpanOf(def.GetWave())).value);
    const double excess = 100.0 * std::fabs(bands.value - bands.limit) / peak;
    const double time = static_cast<double>(bands.worst) / fsamp;
    add("worst_time", "worst violation at", WriteValue(time), "s");
    add("worst_value", "  value", WriteValue(bands.value), unit);
    add("worst_limit", "  limit", WriteValue(bands.limit), unit);
    add("worst_excess", "  beyond it", WriteValue(excess), "% of the peak");
  }
  if (const auto& velocity = judgement.velocity) {
    const MotionUnits motion = MotionUnitsOf(unit);
    const double factor = motion.velocity;
    add("velocity_change", "velocity change of the pulse", WriteValue(factor * velocity->measured),
        motion.velocityUnit);
    add("velocity_change_defined", "  of the definition", WriteValue(factor * velocity->defined),
        motion.velocityUnit);
    add("velocity_change_deviation", "  deviation", WriteValue(velocity->deviation), "%");
    add("velocity_change_tolerance", "  tolerance", WriteValue(dvTol), "%");
  }
  return entries;
}

}  // namespace

ExitCode Judge(const JudgeOptions& options) {
  if (!(options.dvTol >= 0.0)) Fail("--dv-tol", "is not 0 or above");
  const CWaveDef def = LoadDefinitionOrRecord(options.definition);
  RequireBands(def, options.definition);
  InputWave measured = LoadMeasured(options.measured, options.fsamp);
  ConvertUnit(def, options.measured, &measured);
  const Overlay overlay = LayOver(def, measured, options.measured);
  Judgement judgement{analysis::JudgeBands(SpanOf(overlay.wave), SpanOf(def.GetTolU()),
                                           SpanOf(def.GetTolL()), overlay.first, overlay.last),
                      {}};
  if (IsClassical(def)) judgement.velocity = JudgeVelocity(def, overlay, options.dvTol);
  const Entries entries = EntriesOf(def, overlay, judgement, options.dvTol);

  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), AsJson(entries));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string title = std::filesystem::path(options.measured).stem().string() +
                              (judgement.Passes() ? ": pass" : ": fail");
    PlotVerdict(def, overlay, title, format, files.Reserve(options.plot));
  }
  if (judgement.bands.judged < def.GetNsamp()) {
    fmt::print(stderr, "qarv-wave: warning: {}: covers {} of the {} samples of the frame\n",
               OneLine(options.measured), judgement.bands.judged, def.GetNsamp());
  }
  Print(AsText(entries));
  files.Commit();
  return judgement.Passes() ? kDone : kRefused;
}

}  // namespace qarv::command
