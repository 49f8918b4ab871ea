// Shock response spectra as pictures, drawn by gnuplot.
#include "pictures/spectrum_plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

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

/// The range of the curves that set it, from tick to tick, and at least a decade.
LogRange RangeOf(const std::vector<SpectrumCurve>& curves) {
  double low = HUGE_VAL;
  double high = 0.0;
  for (const SpectrumCurve& curve : curves) {
    if (!curve.setsRange) continue;
    for (const auto& [frequency, v] : curve.points) {
      if (!(v >= 1e-290 && v <= 1e290)) continue;  // ticks around it are numbers
      low = std::min(low, v);
      high = std::max(high, v);
    }
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
FourWay FourWayLines(bool known, const LogRange& frequencies, double low, double high) {
  const double displacement = common::kTwoPi * (known ? 1e-3 : 1.0);     // velocity over f, of 1
  const double acceleration = (known ? 9.80665 : 1.0) / common::kTwoPi;  // velocity times f, of 1
  const double from = frequencies.low;
  const double to = frequencies.high;
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

/// A spectrum's response by frequency, in its unit.
template <class F>
SpectrumCurve CurveOf(const Spectrum& spectrum, const std::string& title, const std::string& style,
                      F response) {
  SpectrumCurve curve{title, style, {}};
  for (const SrsPoint& p : spectrum.points) {
    curve.points.push_back({p.frequency, spectrum.factor * response(p)});
  }
  return curve;
}

constexpr auto kMaximax = [](const SrsPoint& p) { return p.Total().Maximax(); };

/// Levels over the lines of an ensemble.
SpectrumCurve CurveOf(const assess::Ensemble& ensemble, const std::vector<double>& levels,
                      const std::string& title, const std::string& style) {
  SpectrumCurve curve{title, style, {}};
  for (std::size_t i = 0; i < levels.size(); ++i) {
    curve.points.push_back({ensemble.members.front().points[i].frequency, levels[i]});
  }
  return curve;
}

std::string QTitle(const Spectrum& spectrum) {
  return fmt::format("Q {:.4g}", 0.5 / spectrum.zeta);
}

/// Told apart by eyes that see no red too; the limits of a requirement are red.
std::string StyleOfSeveral(std::size_t i) {
  constexpr std::array<const char*, 6> kColors{"#1f3f7c", "#e08e0b", "#2e8b57",
                                               "#7b4fa3", "#17a2b8", "#6b6b6b"};
  return fmt::format("linecolor rgb \"{}\" linewidth 2.2{}", kColors[i % kColors.size()],
                     i < kColors.size() ? "" : " dashtype (4,3)");
}

}  // namespace

std::string SpectrumTitle(const Spectrum& spectrum) {
  const std::string q =
      spectrum.zeta > 0.0 ? fmt::format(" (Q {:.4g})", 0.5 / spectrum.zeta) : std::string();
  return fmt::format("Shock response spectrum, damping {:.4g}{}", spectrum.zeta, q);
}

void PlotCurves(const SpectrumPicture& picture, PlotFormat format, const std::string& file) {
  fmt::memory_buffer script;
  const auto out = std::back_inserter(script);
  const bool isFourWay = picture.axes == Axes::FourWay;
  script.append(Terminal(format, 1000, isFourWay ? 800 : 600, file));
  const auto& first = picture.curves.front().points;
  const LogRange x{first.front()[0], std::max(first.back()[0], first.front()[0] * 1.01)};
  const LogRange y = RangeOf(picture.curves);
  constexpr double kEdge = 1.0001;  // rounding would lose ticks at the very ends
  fmt::format_to(out, "set logscale xy\nset title {}\nset ylabel {}\n",
                 picture.title.empty()
                     ? Quoted("")
                     : Quoted(picture.title) + ".\"\\n\"." + Quoted(picture.subtitle),
                 Quoted(picture.label));
  fmt::format_to(out, "set xlabel \"Natural frequency [Hz]\"\n{}{}", LogTicks("x", x),
                 LogTicks("y", y));
  fmt::format_to(out, "set xrange [{}:{}]\nset yrange [{}:{}]\nset bmargin 6\n", x.low / kEdge,
                 x.high * kEdge, y.low / kEdge, y.high * kEdge);
  fmt::format_to(
      out,
      "set grid xtics ytics mxtics mytics linetype 1 linewidth 0.7 linecolor rgb \"#c8c8c8\", "
      "linetype 1 linewidth 0.4 linecolor rgb \"#e4e4e4\"\n"
      "set key at screen 0.5, 0.04 center horizontal samplen 6\n");
  std::string plots;
  for (const SpectrumCurve& curve : picture.curves) {
    const std::string block = fmt::format("$srs{}", &curve - picture.curves.data());
    fmt::format_to(out, "{} << EOD\n", block);
    for (const auto& [frequency, v] : curve.points) {
      fmt::format_to(out, "{} {}\n", frequency, v > 0.0 ? fmt::format("{}", v) : "NaN");
    }
    fmt::format_to(out, "EOD\n");
    plots +=
        fmt::format("{}{} using 1:2 with lines {} {}", plots.empty() ? "" : ", ", block,
                    curve.style, curve.title.empty() ? "notitle" : "title " + Quoted(curve.title));
  }
  const FourWay fourWay =
      isFourWay ? FourWayLines(picture.known, {first.front()[0], first.back()[0]}, y.low, y.high)
                : FourWay{};
  fmt::format_to(out, "{}plot {}{}\n", fourWay.labels, plots, fourWay.curves);
  RunGnuplot(fmt::to_string(script), file);
}

SpectrumPicture PictureOf(const Spectrum& spectrum, const std::string& title, Axes axes) {
  SpectrumPicture picture{title, SpectrumTitle(spectrum), ResponseLabel(spectrum),
                          axes,  spectrum.known,          {}};
  // The maximax is wide and light and drawn first, because one of the others always lies on it.
  picture.curves = {
      CurveOf(spectrum, "maximax", "linecolor rgb \"#8fb4e6\" linewidth 6", kMaximax),
      CurveOf(spectrum, "primary", "linecolor rgb \"#1f3f7c\" linewidth 1.8",
              [](const SrsPoint& p) { return p.primary.Maximax(); }),
      CurveOf(spectrum, "residual", "linecolor rgb \"#c0392b\" dashtype (9,5) linewidth 1.8",
              [](const SrsPoint& p) { return p.residual.Maximax(); })};
  picture.curves[1].setsRange = picture.curves[2].setsRange = false;
  return picture;
}

SpectrumPicture PictureOf(const std::vector<Spectrum>& spectra, const std::string& title,
                          Axes axes) {
  SpectrumPicture picture{title,
                          "Shock response spectra, maximax",
                          ResponseLabel(spectra.front()),
                          axes,
                          spectra.front().known,
                          {}};
  for (std::size_t i = 0; i < spectra.size(); ++i) {
    picture.curves.push_back(CurveOf(spectra[i], QTitle(spectra[i]), StyleOfSeveral(i), kMaximax));
  }
  return picture;
}

SpectrumPicture PictureOf(const std::vector<assess::Ensemble>& ensembles, const std::string& title,
                          Axes axes) {
  const assess::Ensemble& only = ensembles.front();
  const Spectrum& first = only.members.front();
  SpectrumPicture picture{title, SpectrumTitle(first), ResponseLabel(first), axes, first.known, {}};
  if (ensembles.size() > 1) {
    picture.subtitle = "Envelopes of shock response spectra";
    for (std::size_t i = 0; i < ensembles.size(); ++i) {
      const assess::Ensemble& one = ensembles[i];
      picture.curves.push_back(
          CurveOf(one, one.envelope, QTitle(one.members.front()), StyleOfSeveral(i)));
    }
    return picture;
  }
  for (const Spectrum& member : only.members) {
    const bool named = &member == only.members.data();  // one stands for all in the legend
    picture.curves.push_back(CurveOf(member, named ? "records" : "",
                                     "linecolor rgb \"#b8c4d6\" linewidth 1.2", kMaximax));
  }
  picture.curves.push_back(
      CurveOf(only, only.envelope, "envelope", "linecolor rgb \"#1f3f7c\" linewidth 2.2"));
  picture.curves.push_back(
      CurveOf(only, only.mean, "mean", "linecolor rgb \"#2e8b57\" linewidth 1.8"));
  if (!only.p9550.empty()) {
    picture.curves.push_back(CurveOf(only, only.p9550, "P95/50",
                                     "linecolor rgb \"#c0392b\" dashtype (9,5) linewidth 1.8"));
  }
  return picture;
}

void AddRequirement(const synthesis::SrsRequirement& requirement, SpectrumPicture* picture) {
  constexpr double kDrawn = 48.0;  // lines per octave
  SpectrumCurve required{"required", "linecolor rgb \"#202020\" linewidth 1.4", {}};
  const std::string dashed = "linecolor rgb \"#c0392b\" dashtype (9,5) linewidth 1.4";
  SpectrumCurve lower{"tolerance", dashed, {}};
  SpectrumCurve upper{"", dashed, {}};
  for (const synthesis::SrsLine& line :
       synthesis::RequiredLines(requirement, std::max(kDrawn, requirement.perOctave))) {
    required.points.push_back({line.frequency, line.level});
    lower.points.push_back({line.frequency, line.level * synthesis::RatioOf(line.lower)});
    upper.points.push_back({line.frequency, line.level * synthesis::RatioOf(line.upper)});
  }
  for (SpectrumCurve* curve : {&required, &lower, &upper}) {
    picture->curves.push_back(std::move(*curve));
  }
}

void PlotSpectrum(const Spectrum& spectrum, const std::string& title, Axes axes, PlotFormat format,
                  const std::string& file) {
  PlotCurves(PictureOf(spectrum, title, axes), format, file);
}

}  // namespace qarv::command
