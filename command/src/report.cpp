// qarv-wave report: what a waveform asks of the shaker, and how it lies in its bands.
//
// The report is one list of entries; text, JSON and a page are three ways to write it.
#include "report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <span>
#include <vector>

#include "analysis/shock.h"
#include "command_error.h"
#include "definition.h"
#include "entries.h"
#include "html.h"
#include "input_file.h"
#include "input_wave.h"
#include "kinematics.h"
#include "main_pulse.h"
#include "plot.h"
#include "srs.h"
#include "text/text.h"
#include "title.h"

namespace qarv::command {

using text::Trimmed;

using analysis::SampleAt;
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
  if (odd != 0) out->push_back({"no_numbers", "samples that are no numbers", odd, ""});
  out->push_back({"sampling_frequency", "sampling frequency", WriteValue(scale.fsamp), "Hz"});
  out->push_back(
      {"duration", "duration", WriteValue(static_cast<double>(def.GetNsamp()) / scale.fsamp), "s"});
  out->push_back({"peak", "peak", WriteValue(peak.value), scale.unit});
  out->push_back({"peak_time", "time of the peak",
                  WriteValue(static_cast<double>(peak.index) / scale.fsamp), "s"});
  const auto margin = [&](const char* side, const SampleAt& least) {
    const double percent = 100.0 * least.value / std::fabs(peak.value);
    out->push_back({fmt::format("{}_margin", side),
                    fmt::format("least margin to the {} band", side), WriteValue(percent),
                    "% of the peak"});
    out->push_back({fmt::format("{}_margin_time", side), "  at",
                    WriteValue(static_cast<double>(least.index) / scale.fsamp), "s"});
  };
  margin("upper", analysis::MarginToUpper(wave, SpanOf(def.GetTolU())));
  margin("lower", analysis::MarginToLower(wave, SpanOf(def.GetTolL())));
}

void AddMotion(const CWaveDef& def, const Scale& scale, Entries* out) {
  const analysis::Motion motion = analysis::MotionOf(SpanOf(def.GetWave()), scale.fsamp);
  const auto velocity = [&](const char* key, const char* label, double v) {
    out->push_back({key, label, WriteValue(scale.motion.velocity * v), scale.motion.velocityUnit});
  };
  const auto displacement = [&](const char* key, const char* label, double v) {
    out->push_back(
        {key, label, WriteValue(scale.motion.displacement * v), scale.motion.displacementUnit});
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
                  WriteValue(analysis::WidthAtLevel(wave, 0.1) / scale.fsamp), "s"});
  out->push_back({"velocity_change", "velocity change of the pulse", WriteValue(change),
                  scale.motion.velocityUnit});
  out->push_back(
      {"velocity_change_nominal", "  nominal", WriteValue(nominal), scale.motion.velocityUnit});
  out->push_back({"velocity_change_deviation", "  deviation",
                  WriteValue(100.0 * (change / nominal - 1.0)), "%"});
  out->push_back({"level_outside", "largest level outside the pulse",
                  WriteValue(analysis::LargestOutside(wave, pulse.first, pulse.last).value),
                  scale.unit});
  if (!set.GetAddCmp()) return;
  const auto add = [&](const char* key, const char* label, double v, const char* unit) {
    out->push_back({key, label, WriteValue(v), unit});
  };
  add("compensation_level_pre", "compensation level before", set.GetCmpU1(), "of the peak");
  add("compensation_level_post", "compensation level after", set.GetCmpU2(), "of the peak");
  add("compensation_share_pre", "share of the area before", set.GetCmpRgm1(), "");
  add("compensation_share_post", "share of the area after", set.GetCmpRgm2(), "");
  add("compensation_gain", "gain", set.GetCmpCparam(), "");
  add("compensation_shift", "shift of the pulse", std::round(set.GetWaveShift() * set.GetNsamp()),
      "samples");
}

/// A picture as an element of a page.
/// @param[in] draw  draws it as .svg into a file
template <class Draw>
std::string Figure(const std::string& beside, OutputFiles* files, Draw draw) {
  const std::string file = files->Scratch(beside);
  draw(file);
  const std::vector<unsigned char> bytes = ReadFile(file);
  std::string svg(bytes.begin(), bytes.end());
  svg.erase(0, svg.find("<svg"));
  // What stands in every picture must not stand twice in the page: the names of parts, and the
  // symbols of points, of which there are none.
  const auto eraseAll = [&](const std::string& first, const std::string& last) {
    for (auto begin = svg.find(first); begin != std::string::npos; begin = svg.find(first, begin)) {
      const auto end = svg.find(last, begin + first.size());
      if (end == std::string::npos) return;
      svg.erase(begin, end + last.size() - begin);
    }
  };
  eraseAll("<defs>", "</defs>");
  eraseAll("<title>", "</title>");
  eraseAll(" id=\"gnuplot_", "\"");
  return "<figure>\n" + svg + "</figure>\n";
}

/// The numbers as a table.
std::string Table(const Entries& entries) {
  std::string rows;
  for (const Entry& entry : entries) {
    const bool part = entry.label.starts_with("  ");  // of the line above
    rows += fmt::format("<tr><th{}>{}</th><td>{}</td></tr>\n", part ? " class=\"part\"" : "",
                        HtmlText(std::string(Trimmed(entry.label))), HtmlText(ValueText(entry)));
  }
  return "<table>\n" + rows + "</table>\n";
}

}  // namespace

Entries ReportOf(const CWaveDef& def) {
  const Scale scale = ScaleOf(def);
  Entries entries;
  AddWave(def, scale, &entries);
  if (def.GetWaveType() == CWaveDef::WAVE_TYPE_CLASSICAL) AddClassical(def, scale, &entries);
  AddMotion(def, scale, &entries);
  return entries;
}

void WriteReportPage(const CWaveDef& def, const std::optional<Spectrum>& spectrum,
                     const std::string& name, const std::string& target, OutputFiles* files) {
  const std::string page = files->Reserve(target);
  std::string body = "<h2>Waveform and motion</h2>\n";
  body += Figure(target, files, [&](const std::string& file) {
    PlotWave(def, "", Motion::Shown, PlotFormat::Svg, file);
  });
  if (spectrum) {
    body += fmt::format("<h2>{}</h2>\n", HtmlText(SpectrumTitle(*spectrum)));
    body += Figure(target, files, [&](const std::string& file) {
      PlotSpectrum(*spectrum, "", Axes::Plain, PlotFormat::Svg, file);
    });
  }
  body += "<h2>Numbers</h2>\n" + Table(ReportOf(def));
  WriteFile(page, HtmlPage(name + ": " + TitleOf(def), body));
}

void Report(const ReportOptions& options) {
  const CWaveDef def = LoadDefinitionOrRecord(options.input);
  RequireBands(def, options.input);
  const Entries entries = ReportOf(def);
  OutputFiles files;
  if (!options.json.empty()) WriteFile(files.Reserve(options.json), AsJson(entries));
  if (!options.html.empty()) {
    const std::string name = std::filesystem::path(options.input).stem().string();
    WriteReportPage(def, SpectrumOf(def, name), name, options.html, &files);
  }
  files.Commit(AsText(entries));
}

}  // namespace qarv::command
