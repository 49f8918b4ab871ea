// qarv-wave generate: a definition becomes a waveform with its bands.
#include "jobs/generate.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "analysis/shock.h"
#include "assess/motion.h"
#include "definition/check.h"
#include "definition/main_pulse.h"
#include "diagnostics.h"
#include "files/definition_file.h"
#include "files/export_files.h"
#include "files/output_files.h"
#include "pictures/plot.h"
#include "text/text.h"

namespace qarv::command {

using assess::Kinematics;
using assess::KinematicsOf;
using definition::FamilyOf;
using definition::Finding;
using definition::IsCompensated;
using definition::SampleRateOf;
using definition::SpanOf;
using text::Plain;

using common::uint64;
using wave_def::CWaveDef;

namespace {

/// What was found for a compensated pulse, and what it asks of the shaker.
std::string CompensationSummary(const CWaveDef& def) {
  const wave_def::CWaveDefClassical& set = def.GetDefClassical();
  const Kinematics k = KinematicsOf(def);
  const uint64 last = def.GetNsamp() - 1;
  std::string text = fmt::format("levels:    {:.4g} before, {:.4g} after the pulse\n",
                                 Plain(set.GetCmpU1()), Plain(set.GetCmpU2()));
  text += fmt::format("shares:    {:.4g} before, {:.4g} after the pulse\n", Plain(set.GetCmpRgm1()),
                      Plain(set.GetCmpRgm2()));
  text += fmt::format("gain:      {:.4g}\n", Plain(set.GetCmpCparam()));
  text += fmt::format("shift:     {:.6g} samples\n",
                      Plain(std::round(set.GetWaveShift() * static_cast<double>(def.GetNsamp()))));
  text += fmt::format("velocity:  {:.6g} {} at most, {:.1e} at the end\n",
                      k.velocity.GetAbsMax(0, 0), k.velocityUnit, Plain(k.velocity[last]));
  text +=
      fmt::format("stroke:    {:.6g} {} at most to one side, {:.1e} at the end\n",
                  k.displacement.GetAbsMax(0, 0), k.displacementUnit, Plain(k.displacement[last]));
  return text;
}

std::string Summary(const CWaveDef& def) {
  const double fsamp = SampleRateOf(def);
  const auto seconds = [&](uint64 samples) {
    return fmt::format("{:.6g} s", Plain(static_cast<double>(samples) / fsamp));
  };
  const std::string unitText = def.GetUnitAmpl().GetText();
  const std::string unit = unitText.empty() ? "" : " " + unitText;
  const uint64 n = def.GetNsamp();
  std::string text = fmt::format("family:    {}\n", FamilyOf(def).title);
  text += fmt::format("samples:   {} at {:.6g} Hz\n", n, Plain(fsamp));
  text += fmt::format("duration:  {}\n", seconds(n));
  if (n == 0) return text;
  const auto peak = analysis::PeakOf(SpanOf(def.GetWave()));
  const uint64 i = peak.index;
  text += fmt::format("peak:      {:.6g}{} at {}\n", Plain(peak.value), unit, seconds(i));
  text += fmt::format("band:      {:.6g} to {:.6g}{} at the peak\n", Plain(def.GetTolL()[i]),
                      Plain(def.GetTolU()[i]), unit);
  return IsCompensated(def) ? text + CompensationSummary(def) : text;
}

}  // namespace

void Generate(const GenerateOptions& options) {
  CWaveDef def = LoadDefinition(options.definition);
  const std::string name = std::filesystem::path(options.definition).stem().string();
  OutputFiles files;
  if (!options.csv.empty()) WriteWaveCsv(def, files.Reserve(options.csv));
  if (!options.npy.empty()) WriteNpy(def, files.Reserve(options.npy));
  if (!options.wav.empty()) WriteWav(def, options.definition, files.Reserve(options.wav));
  if (!options.uff.empty()) WriteUff(def, name, files.Reserve(options.uff));
  if (!options.record.empty()) WriteRecord(def, files.Reserve(options.record));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    PlotDefinition(def, name, format, files.Reserve(options.plot));
  }
  // Of a waveform that nobody wants.
  for (const Finding& finding : definition::CheckWave(def)) Warn(options.definition, finding.text);
  files.Commit(Summary(def));
}

}  // namespace qarv::command
