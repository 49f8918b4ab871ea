// Prints how three figures of the trapezoid's band take a pulse that is early or late, as the table
// for docs/trapezoid_band.md.
//   trapezoid_table
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "band/band_pen.h"
#include "classical/classical_pipeline.h"
#include "common/data_array/data_array_float_t.h"
#include "common/numeric/index_conv.h"

namespace {

using namespace qarv::wave_def;
using qarv::common::TruncToIndex;
using qarv::common::uint64;
using Samples = qarv::common::CDataArrayFloatT<double>;
using Wave = std::vector<double>;

/// The levels of TOL_FIXED_2 in signed ratios to the peak; IsTheLibrarys tells if they are.
struct Levels {
  double left, begin, slope, plateau, right;
};
constexpr Levels kUpper{0.05, 0.15, 0.15, 1.15, 0.2};
constexpr Levels kLower{-0.05, -0.15, -0.15, 0.85, -0.3};
constexpr double kFront = 0.3;  // [width]

/// A trapezoid of peak 1 whose rise and fall take n samples and its flat top 8 n, amid a frame five
/// times as long.
struct Pulse {
  int n;
  int Width() const { return 10 * n; }
  int Start() const { return 2 * Width(); }
  int End() const { return Start() + Width(); }
  int Frame() const { return 5 * Width(); }
  double At(double t) const { return std::clamp(std::min(t - Start(), End() - t) / n, 0.0, 1.0); }
};

/// One band of a figure that looks `reach` samples to either side of each: 0 for A, a time for B, a
/// sample for C.  All have the same left level, front line up to the pulse's start and right level.
Wave BandOf(const Pulse& p, const Levels& b, int reach, bool upper) {
  Wave out(static_cast<std::size_t>(p.Frame()));
  const auto limit = [&](int i) {
    // The pulse has one top, so that the ends of the reach and its middle hold its extremes.
    const double first = p.At(i - reach);
    const double last = p.At(i + reach);
    const double nominal =
        upper ? std::max({first, p.At(i), last}) : std::min({first, p.At(i), last});
    return std::min(nominal + b.slope, b.plateau);
  };
  const int from = upper ? p.Start() - reach : p.Start();
  const int to = upper ? p.End() + reach : p.End();
  for (int i = from; i <= to; ++i) out[static_cast<std::size_t>(i)] = limit(i);
  const auto start = static_cast<uint64>(p.Start());
  const auto front = TruncToIndex(kFront * p.Width());
  const BandPen pen(out, upper);
  const bool drawn = pen.Level(0, start, b.left) &&
                     pen.Line({start - front, b.left}, {start, b.begin}) &&
                     pen.Level(static_cast<uint64>(p.End()), out.size() - 1, b.right);
  return drawn ? out : Wave();
}

struct Figure {
  Wave upper, lower;
};

Figure FigureOf(const Pulse& p, int reach) {
  return {BandOf(p, kUpper, reach, true), BandOf(p, kLower, reach, false)};
}

/// Whether the figure is the band that the library draws.
bool IsTheLibrarys(const Figure& figure, const Pulse& p) {
  CWaveDefClassical def;
  def.SetWaveKind(wave_def_sub::TRAPEZOID);
  def.SetTolKind(CWaveDefClassical::TOL_FIXED_2);
  def.SetMainAmpl(1);
  def.SetFmax(1000 / 2.56);
  def.SetMainWidth(p.Width() / 1000.0);
  def.SetNsamp(static_cast<unsigned int>(p.Frame()));
  Samples wave;
  Samples upper;
  Samples lower;
  if (!GenerateClassical(def, 0.0, &wave, &upper, &lower, false)) return false;
  const auto near = [](double a, double b) { return std::fabs(a - b) < 1e-12; };
  return std::equal(upper.begin(), upper.end(), figure.upper.begin(), figure.upper.end(), near) &&
         std::equal(lower.begin(), lower.end(), figure.lower.begin(), figure.lower.end(), near);
}

/// By how much the pulse leaves the figure when it is `move` samples early and late, in peaks.
double Outside(const Figure& figure, const Pulse& p, double move) {
  double most = 0;
  for (int i = 0; i < p.Frame(); ++i) {
    for (const double moved : {p.At(i - move), p.At(i + move)}) {
      most = std::max({most, moved - figure.upper[static_cast<std::size_t>(i)],
                       figure.lower[static_cast<std::size_t>(i)] - moved});
    }
  }
  return most;
}

/// The largest move, in steps of 0.05 samples, that stays inside like every smaller one.
double Passes(const Figure& figure, const Pulse& p) {
  int step = 0;
  while (Outside(figure, p, (step + 1) / 20.0) < 1e-9) ++step;
  return step / 20.0;
}

/// The area between the two bands over the pulse, in areas of the pulse.
double Area(const Figure& figure, const Pulse& p) {
  double between = 0;
  double pulse = 0;
  for (int i = p.Start(); i <= p.End(); ++i) {
    const auto k = static_cast<std::size_t>(i);
    between += figure.upper[k] - figure.lower[k];
    pulse += p.At(i);
  }
  return between / pulse;
}

void PrintCells(const Figure& figure, const Pulse& p) {
  const double outside = 100 * Outside(figure, p, 1);
  if (outside < 1e-9) {
    std::printf(" 0 |");
  } else {
    std::printf(" %.1f |", outside);
  }
  std::printf(" %.2f | %.3f |", Passes(figure, p), Area(figure, p));
}

}  // namespace

int main() {
  std::printf(
      "| samples per rise | A outside | A passes | A area | B outside | B passes | B area | "
      "C outside | C passes | C area |\n"
      "|---|---|---|---|---|---|---|---|---|---|\n");
  for (const int n : {2, 4, 6, 8, 16, 64}) {
    const Pulse p{n};
    const Figure c = FigureOf(p, 1);
    if (!IsTheLibrarys(c, p)) {
      std::fprintf(stderr, "trapezoid_table: C is not the band that the library draws\n");
      return 1;
    }
    std::printf("| %d |", n);
    PrintCells(FigureOf(p, 0), p);
    PrintCells(FigureOf(p, p.Width() / 20), p);
    PrintCells(c, p);
    std::printf("\n");
  }
}
