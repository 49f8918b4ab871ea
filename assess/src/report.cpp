// What a waveform asks of the shaker, and how it lies in its bands.
#include "assess/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "analysis/shock.h"
#include "assess/motion.h"
#include "assess/transient.h"
#include "definition/definition.h"
#include "definition/main_pulse.h"

namespace qarv::assess {

using analysis::SampleAt;
using definition::FamilyOf;
using definition::MainPulse;
using definition::MainPulseOf;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;
using wave_def::CWaveDefClassical;

namespace {

/// Rate and units of a waveform.
struct Scale {
  double fsamp;
  std::string unit;  // of the amplitude
  MotionUnits motion;
};

Scale ScaleOf(const CWaveDef& def) {
  const std::string unit = def.GetUnitAmpl().GetText();
  return {SampleRateOf(def), unit, MotionUnitsOf(unit)};
}

void AddWave(const CWaveDef& def, const Scale& scale, Entries* out) {
  const auto wave = SpanOf(def.GetWave());
  const SampleAt peak = analysis::PeakOf(wave);
  out->push_back({"family", "family", FamilyOf(def).title, ""});
  out->push_back({"samples", "samples", def.GetNsamp(), ""});
  const auto odd =
      std::count_if(wave.begin(), wave.end(), [](double v) { return !std::isfinite(v); });
  if (odd != 0)
    out->push_back(
        {"no_numbers", "samples that are no numbers", static_cast<common::uint64>(odd), ""});
  out->push_back({"sampling_frequency", "sampling frequency", scale.fsamp, "Hz"});
  out->push_back({"duration", "duration", static_cast<double>(def.GetNsamp()) / scale.fsamp, "s"});
  out->push_back({"peak", "peak", peak.value, scale.unit});
  out->push_back(
      {"peak_time", "time of the peak", static_cast<double>(peak.index) / scale.fsamp, "s"});
  const auto margin = [&](const char* side, const SampleAt& least) {
    const double percent = 100.0 * least.value / std::fabs(peak.value);
    out->push_back({fmt::format("{}_margin", side),
                    fmt::format("least margin to the {} band", side), percent, "% of the peak"});
    out->push_back({fmt::format("{}_margin_time", side), "  at",
                    static_cast<double>(least.index) / scale.fsamp, "s"});
  };
  margin("upper", analysis::MarginToUpper(wave, SpanOf(def.GetTolU())));
  margin("lower", analysis::MarginToLower(wave, SpanOf(def.GetTolL())));
}

void AddMotion(const CWaveDef& def, const Scale& scale, Entries* out) {
  const analysis::Motion motion = analysis::MotionOf(SpanOf(def.GetWave()), scale.fsamp);
  const auto velocity = [&](const char* key, const char* label, double v) {
    out->push_back({key, label, scale.motion.velocity * v, scale.motion.velocityUnit});
  };
  const auto displacement = [&](const char* key, const char* label, double v) {
    out->push_back({key, label, scale.motion.displacement * v, scale.motion.displacementUnit});
  };
  velocity("peak_velocity", "peak velocity", motion.peakVelocity);
  displacement("peak_displacement", "peak displacement", motion.peakDisplacement);
  displacement("peak_to_peak_displacement", "peak-to-peak displacement",
               motion.peakToPeakDisplacement);
  velocity("residual_velocity", "velocity at the end", motion.residualVelocity);
  displacement("residual_displacement", "displacement at the end", motion.residualDisplacement);
}

void AddClassical(const CWaveDef& def, const Scale& scale, Entries* out) {
  const CWaveDefClassical& set = def.GetDefClassical();
  const auto wave = SpanOf(def.GetWave());
  const MainPulse pulse = MainPulseOf(def);
  const double change =
      scale.motion.velocity * analysis::VelocityChange(wave, scale.fsamp, pulse.first, pulse.last);
  const double nominal = scale.motion.velocity * pulse.velocityChange;
  out->push_back({"pulse_width", "pulse width at 10 % of the peak",
                  analysis::WidthAtLevel(wave, 0.1) / scale.fsamp, "s"});
  out->push_back(
      {"velocity_change", "velocity change of the pulse", change, scale.motion.velocityUnit});
  out->push_back({"velocity_change_nominal", "  nominal", nominal, scale.motion.velocityUnit});
  out->push_back(
      {"velocity_change_deviation", "  deviation", 100.0 * (change / nominal - 1.0), "%"});
  out->push_back({"level_outside", "largest level outside the pulse",
                  analysis::LargestOutside(wave, pulse.first, pulse.last).value, scale.unit});
  if (!set.GetAddCmp()) return;
  const auto add = [&](const char* key, const char* label, double v, const char* unit) {
    out->push_back({key, label, v, unit});
  };
  add("compensation_level_pre", "compensation level before", set.GetCmpU1(), "of the peak");
  add("compensation_level_post", "compensation level after", set.GetCmpU2(), "of the peak");
  add("compensation_share_pre", "share of the area before", set.GetCmpRgm1(), "");
  add("compensation_share_post", "share of the area after", set.GetCmpRgm2(), "");
  add("compensation_gain", "gain", set.GetCmpCparam(), "");
  add("compensation_shift", "shift of the pulse", std::round(set.GetWaveShift() * set.GetNsamp()),
      "samples");
}

}  // namespace

Entries ReportOf(const CWaveDef& def, const std::optional<Machine>& machine) {
  const Scale scale = ScaleOf(def);
  Entries entries;
  AddWave(def, scale, &entries);
  if (def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL) AddClassical(def, scale, &entries);
  AddMotion(def, scale, &entries);
  Append(TransientEntries(SpanOf(def.GetWave()), scale.fsamp, scale.unit), &entries);
  if (machine) Append(MachineEntries(CompareWithMachine(def, *machine)), &entries);
  return entries;
}

}  // namespace qarv::assess
