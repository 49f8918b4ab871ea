// Shock response spectra as pictures, drawn by gnuplot.
#include "pictures/spectrum_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "common/numeric/constants.h"

namespace qarv::command {

using analysis::SrsPoint;
using assess::Spectrum;

namespace {

/// A range of a logarithmic axis, from one of its ticks to another.
struct LogRange {
  double low, high;
};

// The numbers of a decade that are ticks; a range begins and ends with one of them.
constexpr std::array<int, 3> kTicks{1, 2, 5};

/// The ticks about a value: the last one that is not above it, and the first one that is not below.
LogRange TicksAbout(double v) {
  constexpr double kSlack = 1e-9;  // ratio that is lost to rounding
  const double decade = std::pow(10.0, std::floor(std::log10(v)));
  LogRange about{decade, 10.0 * decade};
  for (const int tick : kTicks) {
    if (tick * decade <= v * (1.0 + kSlack)) about.low = tick * decade;
  }
  for (const int tick : kTicks) {
    if (tick * decade < v * (1.0 - kSlack)) continue;
    about.high = tick * decade;
    break;
  }
  return about;
}

/// The range of the responses: the maximax, from tick to tick, and at least a decade.
LogRange RangeOf(const Spectrum& spectrum) {
  double low = HUGE_VAL;
  double high = 0.0;
  for (const SrsPoint& p : spectrum.points) {
    const double v = spectrum.factor * p.Total().Maximax();
    if (!(v >= 1e-290 && v <= 1e290)) continue;  // ticks around it are numbers
    low = std::min(low, v);
    high = std::max(high, v);
  }
  if (low > high) return {0.1, 1.0};
  const double top = TicksAbout(high * 1.05).high;  // some air above the curve
  return {std::min(TicksAbout(low).low, TicksAbout(top / 10.0).low), top};
}

/// The lines that set the ticks of a logarithmic axis: 1, 2 and 5 of every decade with their
/// numbers, the others without.  Where there is no room for that, powers of ten have numbers.
std::string LogTicks(const char* axis, const LogRange& range) {
  constexpr double kLeast = 0.7;      // decades; gnuplot finds ticks for less
  constexpr double kRoom = 4.5;       // decades with three numbers
  constexpr double kMostPowers = 12;  // numbers, where only powers of ten have one
  const double decades = std::log10(range.high / range.low);
  if (decades < kLeast) return "";
  const bool each = decades <= kRoom;
  const int stride = std::max(1, static_cast<int>(std::ceil(decades / kMostPowers)));
  const int first = static_cast<int>(std::floor(std::log10(range.low)));
  const int last = static_cast<int>(std::ceil(std::log10(range.high)));
  std::string ticks;
  for (int power = first; power <= last; ++power) {
    for (int number = 1; number <= 9; ++number) {
      const bool isTick = std::find(kTicks.begin(), kTicks.end(), number) != kTicks.end();
      const bool named = each ? isTick : number == 1 && power % stride == 0;
      const double v = number * std::pow(10.0, power);
      if (!named && stride > 1) continue;
      ticks += fmt::format("{}\"{}\" {} {}", ticks.empty() ? "" : ", ",
                           named ? fmt::format("{:g}", v) : "", v, named ? 0 : 1);
    }
  }
  return fmt::format("set {}tics ({})\n", axis, ticks);
}

/// The lines of constant displacement and acceleration through a plot of pseudo velocity.
struct FourWay {
  std::string labels, curves;  // of the script
};

/// At powers of ten, in mm and g where the velocity is in m/s.
FourWay FourWayLines(const Spectrum& spectrum, double low, double high) {
  const bool known = spectrum.known;
  const double displacement = common::kTwoPi * (known ? 1e-3 : 1.0);     // velocity over f, of 1
  const double acceleration = (known ? 9.80665 : 1.0) / common::kTwoPi;  // velocity times f, of 1
  const double from = spectrum.points.front().frequency;
  const double to = spectrum.points.back().frequency;
  // The two families of lines have their labels in different columns.
  const double left = from * std::pow(to / from, 0.25);
  const double right = from * std::pow(to / from, 0.75);
  FourWay out;
  const auto add = [&](const std::string& curve, double at, double v, const std::string& label) {
    out.curves +=
        fmt::format(", {} with lines linecolor rgb \"#b0b0b0\" linewidth 0.8 notitle", curve);
    if (v < 1.1 * low || v > high / 1.1) return;
    out.labels += fmt::format("set label {} at {},{} textcolor rgb \"#707070\" font \",10\"\n",
                              Quoted(label), at, v);
  };
  for (int power = -9; power <= 9; ++power) {
    const double one = std::pow(10.0, power);
    const double d = one * displacement;
    const double a = one * acceleration;
    if (d * to >= low && d * from <= high) {
      add(fmt::format("{} * x", d), left, d * left,
          fmt::format("{:g}{}", one, known ? " mm" : " x s"));
    }
    if (a / from >= low && a / to <= high) {
      add(fmt::format("{} / x", a), right, a / right,
          fmt::format("{:g}{}", one, known ? " g" : " / s"));
    }
  }
  return out;
}

/// The response with its unit, as the label of an axis.
std::string ResponseLabel(const Spectrum& spectrum) {
  std::string label = spectrum.response;
  // ASCII, whatever the locale.
  if (!label.empty() && label[0] >= 'a' && label[0] <= 'z') label[0] = label[0] - 'a' + 'A';
  return spectrum.unit.empty() ? label : label + " [" + spectrum.unit + "]";
}

}  // namespace

std::string SpectrumTitle(const Spectrum& spectrum) {
  const std::string q =
      spectrum.zeta > 0.0 ? fmt::format(" (Q {:.4g})", 0.5 / spectrum.zeta) : std::string();
  return fmt::format("Shock response spectrum, damping {:.4g}{}", spectrum.zeta, q);
}

void PlotSpectrum(const Spectrum& spectrum, const std::string& title, Axes axes, PlotFormat format,
                  const std::string& file) {
  fmt::memory_buffer script;
  const auto out = std::back_inserter(script);
  script.append(Terminal(format, 1000, axes == Axes::FourWay ? 800 : 600, file));
  const double from = spectrum.points.front().frequency;
  const LogRange x{from, std::max(spectrum.points.back().frequency, from * 1.01)};
  const LogRange y = RangeOf(spectrum);
  constexpr double kEdge = 1.0001;  // rounding would lose ticks at the very ends
  fmt::format_to(
      out, "set logscale xy\nset title {}\nset ylabel {}\n",
      title.empty() ? Quoted("") : Quoted(title) + ".\"\\n\"." + Quoted(SpectrumTitle(spectrum)),
      Quoted(ResponseLabel(spectrum)));
  fmt::format_to(out, "set xlabel \"Natural frequency [Hz]\"\n{}{}", LogTicks("x", x),
                 LogTicks("y", y));
  fmt::format_to(out, "set xrange [{}:{}]\nset yrange [{}:{}]\nset bmargin 6\n", x.low / kEdge,
                 x.high * kEdge, y.low / kEdge, y.high * kEdge);
  fmt::format_to(
      out,
      "set grid xtics ytics mxtics mytics linetype 1 linewidth 0.7 linecolor rgb \"#c8c8c8\", "
      "linetype 1 linewidth 0.4 linecolor rgb \"#e4e4e4\"\n"
      "set key at screen 0.5, 0.04 center horizontal samplen 6\n$srs << EOD\n");
  for (const SrsPoint& p : spectrum.points) {
    const auto positive = [&](double v) {
      return v > 0.0 ? fmt::format("{}", spectrum.factor * v) : "NaN";
    };
    fmt::format_to(out, "{} {} {} {}\n", p.frequency, positive(p.Total().Maximax()),
                   positive(p.primary.Maximax()), positive(p.residual.Maximax()));
  }
  const FourWay fourWay = axes == Axes::FourWay ? FourWayLines(spectrum, y.low, y.high) : FourWay{};
  // The maximax is wide and light and drawn first, because one of the others always lies on it.
  fmt::format_to(
      out,
      "EOD\n{}plot $srs using 1:2 with lines linecolor rgb \"#8fb4e6\" linewidth 6 title "
      "\"maximax\","
      " $srs using 1:3 with lines linecolor rgb \"#1f3f7c\" linewidth 1.8 title \"primary\","
      " $srs using 1:4 with lines linecolor rgb \"#c0392b\" dashtype (9,5) linewidth 1.8 title "
      "\"residual\"{}\n",
      fourWay.labels, fourWay.curves);
  RunGnuplot(fmt::to_string(script), file);
}

}  // namespace qarv::command
