// Waveforms and their bands as pictures, drawn by gnuplot.
#include "pictures/plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "assess/motion.h"
#include "common/numeric/index_conv.h"
#include "definition/main_pulse.h"
#include "definition/title.h"
#include "files/definition_file.h"

namespace qarv::command {

using assess::Kinematics;
using assess::KinematicsOf;
using assess::MotionUnitsOf;
using common::uint64;
using definition::IsCompensated;
using definition::MainPulse;
using definition::MainPulseOf;
using definition::SampleRateOf;
using definition::TitleOf;
using wave_def::CWaveDef;
using Samples = common::CDataArrayFloatT<double>;

namespace {

constexpr uint64 kColumns = 1500;       // of the picture that hold data; finer detail is not seen
constexpr double kLongInSeconds = 2.0;  // a shorter waveform has its time in ms

struct Range {
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  void Add(double v) {
    if (!std::isfinite(v)) return;
    low = std::min(low, v);
    high = std::max(high, v);
  }
};

/// A panel, or a stretch of it, as it stands in the picture.
struct View {
  const Panel* panel;
  Stretch stretch;
  double top, bottom;     // [share of the picture's height]
  std::string timeLabel;  // none where the view below has the same axis
};

/// How a curve is drawn.
const char* StyleOf(Role role) {
  switch (role) {
    case Role::Upper:
      return "lines linecolor rgb \"#c0392b\" dashtype (10,5) linewidth 1.5";
    case Role::Lower:
      return "lines linecolor rgb \"#d68910\" dashtype (10,5) linewidth 1.5";
    case Role::Reference:
      return "lines linecolor rgb \"#909090\" linewidth 1.2";
    case Role::Before:
      return "lines linecolor rgb \"#9db8e0\" linewidth 1.2";
    case Role::Violation:
      return "points pointtype 7 pointsize 0.6 linecolor rgb \"#e00000\"";
    case Role::Wave:
      break;
  }
  return "lines linecolor rgb \"#1f4e9c\" linewidth 2";
}

constexpr const char* kLimitStyle = "lines linecolor rgb \"#7d3c98\" dashtype (3,4) linewidth 1.5";

/// The range of the vertical axis: all that is finite, and some air.  A limit that is over three
/// times as far away as the curves stays out of the picture.
Range AxisOf(const View& view) {
  Range range;
  for (const Curve& curve : view.panel->curves) {
    const auto end = std::min<std::size_t>(view.stretch.last + 1, curve.samples->GetSize());
    for (std::size_t i = view.stretch.first; i < end; ++i) range.Add((*curve.samples)[i]);
  }
  if (range.low > range.high) return {-1.0, 1.0};
  constexpr double kFar = 3.0;
  const double largest = std::max(std::fabs(range.high), std::fabs(range.low));
  for (const double limit : view.panel->limits) {
    if (std::fabs(limit) <= kFar * largest) range.Add(limit);
  }
  const double air = (range.high / 20 - range.low / 20);
  const double least = std::max(std::fabs(range.high), std::fabs(range.low)) / 10;
  const double margin = std::max({air, air > 0.0 ? 0.0 : least, 1e-300});
  return {std::max(range.low - margin, -1e308), std::min(range.high + margin, 1e308)};
}

/// A curve as a gnuplot data block.  Where several samples share a column of the picture, their
/// least and largest are drawn, so that no peak is lost.
/// @param[in] step  from one sample to the next on the time axis
void AppendBlock(const std::string& name, const Samples& samples, const Stretch& stretch,
                 double step, fmt::memory_buffer* script) {
  const auto out = std::back_inserter(*script);
  const double* const x = samples.GetData();
  const uint64 first = stretch.first;
  const uint64 end = std::min<uint64>(stretch.last + 1, samples.GetSize());
  const auto point = [&](uint64 i, double v) {
    fmt::format_to(out, "{} {}\n", static_cast<double>(i) * step,
                   std::isfinite(v) ? fmt::format("{}", v) : "NaN");
  };
  fmt::format_to(out, "${} << EOD\n", name);
  const uint64 share = end > first ? (end - first) / kColumns : 0;
  if (share <= 2) {
    for (uint64 i = first; i < end; ++i) point(i, x[i]);
  } else {
    for (uint64 begin = first; begin < end; begin += share) {
      Range range;
      for (uint64 i = begin; i < std::min(begin + share, end); ++i) range.Add(x[i]);
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

// ---- Layout
// --------------------------------------------------------------------------------------

// Heights [pixel].
constexpr double kAlone = 470.0;   // of a view: the only one
constexpr double kMain = 350.0;    // of several, the first panel's
constexpr double kOther = 210.0;   // of the other panels
constexpr double kGap = 44.0;      // below a view, for the numbers of its axis
constexpr double kLabel = 30.0;    // below an axis that is named
constexpr double kFoot = 40.0;     // of the legend
constexpr double kRow = 20.0;      // of its second row
constexpr std::size_t kInRow = 5;  // curves that a row has room for
constexpr double kTitle = 48.0;
constexpr double kNoTitle = 14.0;
constexpr int kWidth = 1000;

struct Layout {
  std::vector<View> views;
  int height;   // [pixel]
  double foot;  // [share of the height] middle of the legend
};

/// The panels one below the other, the zoomed one after the first.
Layout LayoutOf(const Picture& picture, const std::string& timeUnit) {
  const std::size_t n = picture.panels.front().curves.front().samples->GetSize();
  const Stretch whole{0, n == 0 ? 0 : n - 1};
  const std::string time = "Time [" + timeUnit + "]";
  std::vector<View> views;
  for (const Panel& panel : picture.panels) {
    views.push_back({&panel, whole, 0.0, 0.0, ""});
    if (!picture.zoom || views.size() != 1) continue;
    views.back().timeLabel = time;
    views.push_back({&panel, *picture.zoom, 0.0, 0.0, "Main pulse: time [" + timeUnit + "]"});
  }
  if (views.back().timeLabel.empty()) views.back().timeLabel = time;
  double y = picture.title.empty() ? kNoTitle : kTitle;
  for (View& view : views) {
    view.top = y;
    const bool main = view.panel == &picture.panels.front();
    y += views.size() == 1 ? kAlone : main ? kMain : kOther;
    view.bottom = y;
    y += kGap + (view.timeLabel.empty() ? 0.0 : kLabel);
  }
  const double foot = kFoot + (picture.panels.front().curves.size() > kInRow ? kRow : 0.0);
  const double height = y + foot;
  for (View& view : views) {
    view.top = 1.0 - view.top / height;
    view.bottom = 1.0 - view.bottom / height;
  }
  return {views, static_cast<int>(height), 0.5 * foot / height};
}

std::string Script(const Picture& picture, PlotFormat format, const std::string& file) {
  const double n = static_cast<double>(picture.panels.front().curves.front().samples->GetSize());
  const double duration = n / picture.fsamp;
  const bool hasDuration = std::isfinite(duration) && duration > 0.0;
  const bool isShort = hasDuration && duration < kLongInSeconds;
  const double step = (isShort ? 1000.0 : 1.0) / picture.fsamp;
  const Layout layout = LayoutOf(picture, isShort ? "ms" : "s");
  fmt::memory_buffer script;
  const auto out = std::back_inserter(script);
  script.append(Terminal(format, kWidth, layout.height, file));
  fmt::format_to(out,
                 "set grid linetype 1 linewidth 0.5 linecolor rgb \"#c8c8c8\"\n"
                 "set xzeroaxis linetype 1 linewidth 0.8 linecolor rgb \"#808080\"\n"
                 "set format \"%g\"\nset lmargin at screen 0.1\nset rmargin at screen 0.97\n");
  const auto name = [&](const View& view, const Curve& curve) {
    return fmt::format("view{}curve{}", &view - layout.views.data(),
                       &curve - view.panel->curves.data());
  };
  for (const View& view : layout.views) {
    for (const Curve& curve : view.panel->curves) {
      AppendBlock(name(view, curve), *curve.samples, view.stretch, step, &script);
    }
  }
  const auto edge = [&](std::size_t i) { return static_cast<double>(i) * step; };
  const bool hasLimits = std::any_of(picture.panels.begin(), picture.panels.end(),
                                     [](const Panel& panel) { return !panel.limits.empty(); });
  fmt::format_to(out, "set multiplot\n");
  for (const View& view : layout.views) {
    const bool first = &view == &layout.views.front();
    const bool zoomed = picture.zoom && &view == &layout.views[1];
    const Range axis = AxisOf(view);
    fmt::format_to(out, "set title {}\nset ylabel {}\nset yrange [{}:{}]\n",
                   Quoted(first ? picture.title : ""), Quoted(view.panel->label), axis.low,
                   axis.high);
    fmt::format_to(out, "set xlabel {}\nset tmargin at screen {}\nset bmargin at screen {}\n",
                   Quoted(view.timeLabel), view.top, view.bottom);
    const double left = zoomed ? edge(view.stretch.first) : 0.0;
    const double right = zoomed ? edge(view.stretch.last) : hasDuration ? n * step : 1.0;
    fmt::format_to(
        out, "set xrange [{}:{}]\n{}\n", left, right,
        first ? fmt::format("set key at screen 0.5, {} center horizontal maxrows 1 samplen 3",
                            layout.foot)
              : "unset key");
    // The frame shows where the zoomed stretch lies.
    fmt::format_to(out, "{}\nplot",
                   first && picture.zoom
                       ? fmt::format("set object 1 rectangle from {},graph 0 to {},graph 1 behind "
                                     "fillcolor rgb \"#e8eef8\" fillstyle solid noborder",
                                     edge(picture.zoom->first), edge(picture.zoom->last))
                       : "unset object");
    for (const Curve& curve : view.panel->curves) {
      fmt::format_to(out, "{} ${} with {} title {}",
                     &curve == &view.panel->curves.front() ? "" : ",", name(view, curve),
                     StyleOf(curve.role), Quoted(curve.label));
    }
    for (const double limit : view.panel->limits) {
      fmt::format_to(out, ", {} with {} notitle", limit, kLimitStyle);
    }
    // The legend is that of the first panel, whichever has limits.
    if (first && hasLimits) {
      fmt::format_to(out, ", NaN with {} title \"limit of the machine\"", kLimitStyle);
    }
    fmt::format_to(out, "\n");
  }
  return fmt::to_string(script);
}

/// The lines that a machine's limits are in the three panels.
struct LimitLines {
  std::vector<double> acceleration, velocity, displacement;
};

LimitLines LinesOf(const std::optional<assess::Machine>& machine, const CWaveDef& def) {
  LimitLines out;
  if (!machine) return out;
  const assess::MachineLimits limits = assess::LimitsOf(*machine, def.GetUnitAmpl().GetText());
  const auto add = [](const std::optional<double>& up, const std::optional<double>& down,
                      std::vector<double>* lines) {
    if (up && down) *lines = {*up, -*down};
  };
  add(limits.acceleration, limits.acceleration, &out.acceleration);
  add(limits.velocity, limits.velocity, &out.velocity);
  add(limits.up, limits.down, &out.displacement);
  return out;
}

}  // namespace

std::optional<Stretch> ZoomOf(const CWaveDef& def) {
  constexpr double kAround = 0.4;  // pulse widths to each side, where the bands' fronts lie
  if (def.GetWaveType() != CWaveDef::WAVE_TYPE_CLASSICAL || def.GetNsamp() < 2) return {};
  const MainPulse pulse = MainPulseOf(def);
  const auto last = static_cast<std::size_t>(def.GetNsamp()) - 1;
  const std::size_t width = pulse.last - pulse.first;
  if (width == 0 || pulse.last > last || 3 * width >= last + 1) return {};
  const auto around =
      static_cast<std::size_t>(common::RoundToIndex(kAround * static_cast<double>(width)));
  return Stretch{pulse.first - std::min(pulse.first, around), std::min(last, pulse.last + around)};
}

std::string AmplitudeLabel(const CWaveDef& def) {
  const std::string unit = def.GetUnitAmpl().GetText();
  const std::string quantity = MotionUnitsOf(unit).known ? "Acceleration" : "Amplitude";
  return unit.empty() ? quantity : quantity + " [" + unit + "]";
}

void Plot(const Picture& picture, PlotFormat format, const std::string& file) {
  RunGnuplot(Script(picture, format, file), file);
}

void PlotDefinition(const CWaveDef& def, const std::string& name, PlotFormat format,
                    const std::string& file) {
  const Motion motion = IsCompensated(def) ? Motion::Shown : Motion::Hidden;
  PlotWave(def, name + ": " + TitleOf(def), motion, format, file);
}

void PlotWave(const CWaveDef& def, const std::string& title, Motion motion, PlotFormat format,
              const std::string& file, const std::optional<assess::Machine>& machine) {
  const LimitLines limits = LinesOf(machine, def);
  Picture picture{title,
                  SampleRateOf(def),
                  ZoomOf(def),
                  {{AmplitudeLabel(def),
                    {{"upper band", Role::Upper, &def.GetTolU()},
                     {"waveform", Role::Wave, &def.GetWave()},
                     {"lower band", Role::Lower, &def.GetTolL()}},
                    limits.acceleration}}};
  const Kinematics k = motion == Motion::Shown ? KinematicsOf(def) : Kinematics{};
  if (motion == Motion::Shown) {
    picture.panels.push_back(
        {"Velocity [" + k.velocityUnit + "]", {{"", Role::Wave, &k.velocity}}, limits.velocity});
    picture.panels.push_back({"Displacement [" + k.displacementUnit + "]",
                              {{"", Role::Wave, &k.displacement}},
                              limits.displacement});
  }
  Plot(picture, format, file);
}

}  // namespace qarv::command
