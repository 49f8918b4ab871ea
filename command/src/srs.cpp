// qarv-wave srs: the shock response spectrum of a waveform.
#include "srs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <span>
#include <vector>

#include "analysis/srs.h"
#include "common/numeric/constants.h"
#include "diagnostics.h"
#include "gnuplot.h"
#include "kinematics.h"
#include "progress.h"
#include "text.h"

namespace qarv::command {

using analysis::SrsPoint;
using analysis::SrsResponse;

namespace {

// Below it an oscillator feels that its input is made of straight lines between samples.
constexpr double kSamplesPerCycle = 10.0;

/// A response by name.
struct Response {
  const char* name;
  SrsResponse response;
  const char* title;
};

constexpr Response kPseudoVelocity{"pseudo-velocity", SrsResponse::PseudoVelocity,
                                   "pseudo velocity"};
constexpr std::array<Response, 3> kResponses{{
    {"acceleration", SrsResponse::AbsoluteAcceleration, "absolute acceleration"},
    {"displacement", SrsResponse::RelativeDisplacement, "relative displacement"},
    kPseudoVelocity,
}};

}  // namespace

std::string ResponseNames(const std::string& separator) {
  std::string names;
  for (const Response& response : kResponses) {
    if (!names.empty()) names += separator;
    names += response.name;
  }
  return names;
}

namespace {

/// What a run works with, checked.
struct Task {
  const Response* response;
  double zeta;
  std::vector<double> frequencies;
  double factor;     // of the results
  std::string unit;  // of the results
  bool known;        // whether motion is in m/s and mm
};

Task Prepare(const SrsOptions& options, const InputWave& wave) {
  Task task{};
  for (const Response& response : kResponses) {
    if (options.response == response.name) task.response = &response;
  }
  if (options.tripartite) task.response = &kPseudoVelocity;
  if (task.response == nullptr) {
    Fail("--response", "is none of " + ResponseNames(", "));
  }
  if (!(options.q > 0.5)) Fail("--q", "is not above 0.5");
  task.zeta = options.damping.value_or(0.5 / options.q);
  if (!(task.zeta >= 0.0 && task.zeta < 1.0)) Fail("--damping", "is not within 0 to 1");

  const double highest = 0.499 * wave.fsamp;
  const double to = options.to.value_or(wave.fsamp / kSamplesPerCycle);
  const double from = options.from.value_or(std::min(5.0, to / 10.0));
  if (!(from > 0.0 && from <= to)) Fail("--from, --to", "are not 0 < from <= to");
  if (!(to <= highest)) {
    Fail("--to", fmt::format("{:g} Hz is not below half the sampling frequency of {:g} Hz", to,
                             wave.fsamp));
  }
  double perOctave = options.perOctave;
  if (options.points) {
    if (*options.points < 1 || *options.points > 100000)
      Fail("--points", "is not within 1 to 100000");
    perOctave =
        *options.points > 1 && to > from ? (*options.points - 1) / std::log2(to / from) : 1.0;
  }
  task.frequencies = options.points == 1 ? std::vector<double>{from}
                                         : analysis::SrsFrequencies(from, to, perOctave);
  if (task.frequencies.empty()) Fail("--per-octave", "gives no frequencies");

  const MotionUnits units = MotionUnitsOf(wave.unit);
  switch (task.response->response) {
    case SrsResponse::AbsoluteAcceleration:
      task.factor = 1.0;
      task.unit = wave.unit;
      break;
    case SrsResponse::RelativeDisplacement:
      task.factor = units.displacement;
      task.unit = units.displacementUnit;
      break;
    case SrsResponse::PseudoVelocity:
      task.factor = units.velocity;
      task.unit = units.velocityUnit;
      break;
  }
  task.known = units.known;
  return task;
}

void WriteSpectrumCsv(const std::vector<SrsPoint>& points, double factor, const std::string& file) {
  fmt::memory_buffer text;
  const auto out = std::back_inserter(text);
  fmt::format_to(out,
                 "frequency,maximax,positive,negative,primary_positive,primary_negative,"
                 "residual_positive,residual_negative\n");
  for (const SrsPoint& p : points) {
    const analysis::SrsExtremes total = p.Total();
    fmt::format_to(out, "{}", p.frequency);
    for (const double v : {total.Maximax(), total.positive, total.negative, p.primary.positive,
                           p.primary.negative, p.residual.positive, p.residual.negative}) {
      fmt::format_to(out, ",{}", Plain(factor * v));
    }
    text.push_back('\n');
  }
  WriteFile(file, {text.data(), text.size()});
}

/// The lines of constant displacement and acceleration through a plot of pseudo velocity.
struct FourWay {
  std::string labels, curves;  // of the script
};

/// At powers of ten, in mm and g where the velocity is in m/s.
FourWay FourWayLines(const Task& task, double low, double high) {
  const bool known = task.known;
  const double displacement = common::kTwoPi * (known ? 1e-3 : 1.0);     // velocity over f, of 1
  const double acceleration = (known ? 9.80665 : 1.0) / common::kTwoPi;  // velocity times f, of 1
  const double from = task.frequencies.front();
  const double to = task.frequencies.back();
  // The two families of lines have their labels in different columns.
  const double left = from * std::pow(to / from, 0.25);
  const double right = from * std::pow(to / from, 0.75);
  FourWay out;
  const auto add = [&](const std::string& curve, double at, double v, const std::string& label) {
    out.curves +=
        fmt::format(", {} with lines linecolor rgb \"#b0b0b0\" linewidth 0.8 notitle", curve);
    if (v < low || v > high) return;
    out.labels += fmt::format("set label {} at {},{} textcolor rgb \"#707070\" font \",8\"\n",
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

void PlotSpectrum(const std::vector<SrsPoint>& points, const Task& task, const std::string& title,
                  bool tripartite, PlotFormat format, const std::string& file) {
  fmt::memory_buffer script;
  const auto out = std::back_inserter(script);
  script.append(Terminal(format, 1000, tripartite ? 800 : 600, file));
  double low = HUGE_VAL;
  double high = 0.0;
  for (const SrsPoint& p : points) {
    const double v = task.factor * p.Total().Maximax();
    if (!(v > 0.0 && std::isfinite(v))) continue;
    low = std::min(low, v);
    high = std::max(high, v);
  }
  if (low > high) low = high = 1.0;
  low = std::pow(10.0, std::floor(std::log10(low)));
  high = std::pow(10.0, std::ceil(std::log10(high) + 1e-9));
  fmt::format_to(out, "set logscale xy\nset title {}\nset xlabel \"Natural frequency [Hz]\"\n",
                 Quoted(title));
  const std::string unit = task.unit.empty() ? "" : " [" + task.unit + "]";
  fmt::format_to(out, "set ylabel {}\n", Quoted(std::string(task.response->title).append(unit)));
  const double from = points.front().frequency;
  const double to = std::max(points.back().frequency, from * 1.01);
  fmt::format_to(out, "set xrange [{}:{}]\nset yrange [{}:{}]\nset bmargin 5\n", from, to, low,
                 high > low ? high : 10 * low);
  fmt::format_to(
      out,
      "set grid xtics ytics mxtics mytics linetype 1 linewidth 0.5 linecolor rgb \"#d8d8d8\"\n"
      "set key at screen 0.5, 0.03 center horizontal\n$srs << EOD\n");
  for (const SrsPoint& p : points) {
    const auto positive = [&](double v) {
      return v > 0.0 ? fmt::format("{}", task.factor * v) : "NaN";
    };
    fmt::format_to(out, "{} {} {} {}\n", p.frequency, positive(p.Total().Maximax()),
                   positive(p.primary.Maximax()), positive(p.residual.Maximax()));
  }
  const FourWay fourWay = tripartite ? FourWayLines(task, low, high) : FourWay{};
  fmt::format_to(
      out,
      "EOD\n{}plot $srs using 1:3 with lines linecolor rgb \"#c0392b\" dashtype (7,4) title "
      "\"primary\","
      " $srs using 1:4 with lines linecolor rgb \"#d68910\" dashtype (7,4) title \"residual\","
      " $srs using 1:2 with lines linecolor rgb \"#1f4e9c\" linewidth 1.8 title \"maximax\"{}\n",
      fourWay.labels, fourWay.curves);
  RunGnuplot(fmt::to_string(script), file);
}

/// The samples up to the last one that is not 0: behind it the response is residual.
std::span<const double> ShockOf(const InputWave& wave) {
  std::span<const double> shock(wave.samples.begin(), wave.samples.end());
  while (shock.size() > 1 && shock.back() == 0.0) shock = shock.first(shock.size() - 1);
  return shock;
}

/// The spectrum, in pieces between which it can be said how far it has come.
std::vector<SrsPoint> Calculate(const Task& task, const InputWave& wave) {
  constexpr std::size_t kPiece = 64;  // [lines]
  const std::span<const double> frequencies(task.frequencies);
  Progress progress(frequencies.size());
  std::vector<SrsPoint> points;
  for (std::size_t i = 0; i < frequencies.size(); i += kPiece) {
    progress.Show(i, "lines of the spectrum");
    const auto piece = frequencies.subspan(i, std::min(kPiece, frequencies.size() - i));
    const auto more =
        analysis::CalcSrs(ShockOf(wave), wave.fsamp, piece, task.zeta, task.response->response);
    points.insert(points.end(), more.begin(), more.end());
  }
  return points;
}

}  // namespace

std::string WriteSpectrum(const SrsOptions& options, const InputWave& wave, OutputFiles* files) {
  if (wave.samples.GetSize() == 0) Fail(options.input, "has no samples");
  const Task task = Prepare(options, wave);
  const auto points = Calculate(task, wave);
  if (points.empty()) Fail(options.input, "its sampling frequency is not a positive number");
  if (!options.csv.empty()) WriteSpectrumCsv(points, task.factor, files->Reserve(options.csv));
  if (!options.plot.empty()) {
    const PlotFormat format = PlotFormatOf(options.plot);
    const std::string title =
        fmt::format("{}: shock response spectrum, damping {:.4g}",
                    std::filesystem::path(options.input).stem().string(), task.zeta);
    PlotSpectrum(points, task, title, options.tripartite, format, files->Reserve(options.plot));
  }
  const double highest = task.frequencies.back();
  if (highest * kSamplesPerCycle > wave.fsamp * (1.0 + 1e-9)) {
    Warn(options.input, fmt::format("fewer than {:g} samples per cycle above {:g} Hz: the spectrum is "
                                    "that of the straight lines between the samples",
                                    kSamplesPerCycle, wave.fsamp / kSamplesPerCycle));
  }
  const auto largest =
      std::max_element(points.begin(), points.end(), [](const SrsPoint& a, const SrsPoint& b) {
        return a.Total().Maximax() < b.Total().Maximax();
      });
  const std::string unit = task.unit.empty() ? "" : " " + task.unit;
  std::string text = fmt::format("response:  {}\n", task.response->title);
  text += fmt::format("damping:   {:.4g} (Q {:.4g})\n", task.zeta, 0.5 / task.zeta);
  text += fmt::format("lines:     {} from {:.6g} to {:.6g} Hz\n", points.size(),
                      task.frequencies.front(), highest);
  text += fmt::format("largest:   {:.6g}{} at {:.6g} Hz\n",
                      Plain(task.factor * largest->Total().Maximax()), unit, largest->frequency);
  return text;
}

void Srs(const SrsOptions& options) {
  const InputWave wave = LoadInputWave(options.input, options.fsamp);
  OutputFiles files;
  const std::string text = WriteSpectrum(options, wave, &files);
  files.Commit(text);
}

}  // namespace qarv::command
