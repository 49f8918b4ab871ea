// Waveforms and their bands as pictures, drawn by gnuplot.
#include "plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "definition.h"
#include "gnuplot.h"
#include "kinematics.h"
#include "text.h"

namespace qarv::command {

using common::uint64;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

constexpr uint64 kColumns = 1500;  // of the picture that hold data; finer detail is not seen

struct Range {
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  void Add(double v) {
    if (!std::isfinite(v)) return;
    low = std::min(low, v);
    high = std::max(high, v);
  }
};

/// How a curve is drawn.
const char* StyleOf(Role role) {
  switch (role) {
    case Role::Upper:
      return "lines linecolor rgb \"#c0392b\" dashtype (7,4) linewidth 1.4";
    case Role::Lower:
      return "lines linecolor rgb \"#d68910\" dashtype (7,4) linewidth 1.4";
    case Role::Reference:
      return "lines linecolor rgb \"#909090\" linewidth 1.2";
    case Role::Violation:
      return "points pointtype 7 pointsize 0.6 linecolor rgb \"#e00000\"";
    case Role::Wave:
      break;
  }
  return "lines linecolor rgb \"#1f4e9c\" linewidth 1.8";
}

/// The range of the vertical axis: all that is finite, and some air.
Range AxisOf(const Panel& panel) {
  Range range;
  for (const Curve& curve : panel.curves) {
    for (const double v : *curve.samples) range.Add(v);
  }
  if (range.low > range.high) return {-1.0, 1.0};
  const double air = (range.high / 20 - range.low / 20);
  const double least = std::max(std::fabs(range.high), std::fabs(range.low)) / 10;
  const double margin = std::max({air, air > 0.0 ? 0.0 : least, 1e-300});
  return {std::max(range.low - margin, -1e308), std::min(range.high + margin, 1e308)};
}

/// A curve as a gnuplot data block.  Where several samples share a column of the picture, their
/// least and largest are drawn, so that no peak is lost.
void AppendBlock(const std::string& name, const Samples& samples, double fsamp,
                 fmt::memory_buffer* script) {
  const auto out = std::back_inserter(*script);
  const double* const x = samples.GetData();
  const uint64 n = samples.GetSize();
  const auto point = [&](uint64 i, double v) {
    fmt::format_to(out, "{} {}\n", static_cast<double>(i) / fsamp,
                   std::isfinite(v) ? fmt::format("{}", v) : "NaN");
  };
  fmt::format_to(out, "${} << EOD\n", name);
  const uint64 share = n / kColumns;
  if (share <= 2) {
    for (uint64 i = 0; i < n; ++i) point(i, x[i]);
  } else {
    for (uint64 begin = 0; begin < n; begin += share) {
      const uint64 end = std::min(begin + share, n);
      Range range;
      for (uint64 i = begin; i < end; ++i) range.Add(x[i]);
      if (range.low > range.high) {
        point(begin, std::nan(""));
      } else {
        point(begin, range.low);
        point(begin, range.high);
      }
    }
  }
  fmt::format_to(out, "EOD\n");
}

std::string Script(const std::vector<Panel>& panels, double fsamp, const std::string& title,
                   PlotFormat format, const std::string& file) {
  const uint64 n = panels.front().curves.front().samples->GetSize();
  const double duration = static_cast<double>(n) / fsamp;
  const bool hasDuration = std::isfinite(duration) && duration > 0.0;
  fmt::memory_buffer script;
  const auto out = std::back_inserter(script);
  script.append(Terminal(format, 1000, panels.size() == 1 ? 600 : 1000, file));
  fmt::format_to(out, "set xrange [0:{}]\n", hasDuration ? duration : 1.0);
  fmt::format_to(out,
                 "set grid linetype 1 linewidth 0.5 linecolor rgb \"#c8c8c8\"\n"
                 "set lmargin 10\n");
  const auto name = [&](const Panel& panel, const Curve& curve) {
    return fmt::format("panel{}curve{}", &panel - panels.data(), &curve - panel.curves.data());
  };
  for (const Panel& panel : panels) {
    for (const Curve& curve : panel.curves) {
      AppendBlock(name(panel, curve), *curve.samples, fsamp, &script);
    }
  }
  if (panels.size() > 1) {
    fmt::format_to(out, "set multiplot layout {},1\n", panels.size());
  }
  for (const Panel& panel : panels) {
    const bool first = &panel == &panels.front();
    const bool last = &panel == &panels.back();  // has the time axis, and the legend below it
    const Range axis = AxisOf(panel);
    fmt::format_to(out, "set title {}\nset ylabel {}\nset yrange [{}:{}]\n",
                   Quoted(first ? title : ""), Quoted(panel.label), axis.low, axis.high);
    fmt::format_to(out, "set xlabel {}\nset bmargin {}\n", Quoted(last ? "Time [s]" : ""),
                   last ? 5 : 2);
    fmt::format_to(out, "{}\nplot",
                   first ? fmt::format("set key at screen 0.5, {} center horizontal",
                                       panels.size() == 1 ? 0.03 : 0.012)
                         : "unset key");
    for (const Curve& curve : panel.curves) {
      fmt::format_to(out, "{} ${} with {} title {}", &curve == &panel.curves.front() ? "" : ",",
                     name(panel, curve), StyleOf(curve.role), Quoted(curve.label));
    }
    fmt::format_to(out, "\n");
  }
  return fmt::to_string(script);
}

}  // namespace

std::string AmplitudeLabel(const CWaveDef& def) {
  const std::string unit = def.GetUnitAmpl().GetText();
  return unit.empty() ? "Amplitude" : "Amplitude [" + unit + "]";
}

void PlotPanels(const std::vector<Panel>& panels, double fsamp, const std::string& title,
                PlotFormat format, const std::string& file) {
  RunGnuplot(Script(panels, fsamp, title, format, file), file);
}

void PlotDefinition(const CWaveDef& def, const std::string& name, PlotFormat format,
                    const std::string& file) {
  const Motion motion = IsCompensated(def) ? Motion::Shown : Motion::Hidden;
  PlotWave(def, name + ": " + FamilyOf(def).title, motion, format, file);
}

void PlotWave(const CWaveDef& def, const std::string& title, Motion motion, PlotFormat format,
              const std::string& file) {
  std::vector<Panel> panels{{AmplitudeLabel(def),
                             {{"upper band", Role::Upper, &def.GetTolU()},
                              {"waveform", Role::Wave, &def.GetWave()},
                              {"lower band", Role::Lower, &def.GetTolL()}}}};
  const Kinematics k = motion == Motion::Shown ? KinematicsOf(def) : Kinematics{};
  if (motion == Motion::Shown) {
    panels.push_back({"Velocity [" + k.velocityUnit + "]", {{"", Role::Wave, &k.velocity}}});
    panels.push_back(
        {"Displacement [" + k.displacementUnit + "]", {{"", Role::Wave, &k.displacement}}});
  }
  PlotPanels(panels, SampleRateOf(def), title, format, file);
}

}  // namespace qarv::command
