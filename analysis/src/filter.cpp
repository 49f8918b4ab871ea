// Filters without a shift in time.
//
//   p    a pole of the analog low pass, in the upper half plane or on the axis [rad/s]
//   W    the cutoff as the bilinear transform sees it: tan(pi cutoff / fsamp)
//   s    (1 - 1/z) / (1 + 1/z)
#include "analysis/filter.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/numeric/constants.h"
#include "common/numeric/index_conv.h"
#include "numeric/elementary.h"

namespace qarv::analysis {

namespace {

struct Pole {
  double real, imaginary;  // 0 on the axis, otherwise one of two
};

// The zeros of the reverse Bessel polynomials, for a delay of 1 s: the upper half plane.
// clang-format off
constexpr std::array<std::array<Pole, 4>, kMostFilterOrder> kBesselPoles{{
  {{{-1.0,                0.0               }}},                                                                                                                                                            // 1
  {{{-1.5,                0.8660254037844387}}},                                                                                                                                                            // 2
  {{{-2.322185354626086,  0.0               }, {-1.8389073226869577, 1.7543809597837217}}},                                                                                                                // 3
  {{{-2.8962106028203727, 0.867234128934502 }, {-2.103789397179628,  2.657418041856752 }}},                                                                                                                // 4
  {{{-3.646738595329636,  0.0               }, {-3.351956399153532,  1.742661416183199 }, {-2.32467430318165,  3.571022920337977}}},                                                                       // 5
  {{{-4.248359395863374,  0.8675096732313645}, {-3.735708356325815,  2.6262723114471234}, {-2.5159322478108224, 4.492672953653949}}},                                                                      // 6
  {{{-4.971786858527961,  0.0               }, {-4.758290528154632,  1.7392860611305554}, {-4.070139163638149, 3.5171740477097546}, {-2.685676878943261, 5.420694130716743}}},                             // 7
  {{{-5.587886043263075,  0.8676144453532486}, {-5.204840790637152,  2.6161751526424144}, {-4.368289217202352, 4.414442500471471 }, {-2.8389839488976385, 6.353911298604877}}},                            // 8
}};
// clang-format on

std::vector<Pole> PolesOf(FilterShape shape, int order) {
  std::vector<Pole> poles;
  const int count = (order + 1) / 2;
  for (int k = 0; k < count; ++k) {
    if (shape == FilterShape::Bessel) {
      poles.push_back(
          kBesselPoles[static_cast<std::size_t>(order - 1)][static_cast<std::size_t>(k)]);
    } else {
      // On the unit circle; the last one of an odd order lies on the axis.
      const bool real = 2 * k + 1 == order;
      const double angle = common::kPi * (2 * k + 1) / (2.0 * order);
      poles.push_back(real ? Pole{-1.0, 0.0}
                           : Pole{-common::elementary::Sin(angle), common::elementary::Cos(angle)});
    }
  }
  return poles;
}

/// The square of the gain of the analog low pass.
double SquaredGain(const std::vector<Pole>& poles, double w) {
  double gain = 1.0;
  for (const Pole& p : poles) {
    const double size = p.real * p.real + p.imaginary * p.imaginary;
    if (p.imaginary == 0.0) {
      gain *= size / (size + w * w);
    } else {
      const double re = size - w * w;
      const double im = 2.0 * p.real * w;
      gain *= size * size / (re * re + im * im);
    }
  }
  return gain;
}

/// Where one pass of the analog low pass has that squared gain, which falls all the way.  [rad/s]
double FrequencyOfGain(const std::vector<Pole>& poles, double squaredGain) {
  double low = 0.0;
  double high = 1.0;
  while (SquaredGain(poles, high) > squaredGain) high *= 2.0;
  for (int step = 0; step < 60; ++step) {
    const double middle = 0.5 * (low + high);
    (SquaredGain(poles, middle) > squaredGain ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

/// A section of one pole on the axis, or of a pair.  A high pass is the low pass of 1 / s.
FilterSection SectionOf(Pole p, double scale, FilterPass pass) {
  const double size = p.real * p.real + p.imaginary * p.imaginary;
  const bool high = pass == FilterPass::High;
  const double real = high ? p.real / size * scale : p.real * scale;
  const double imaginary = high ? p.imaginary / size * scale : p.imaginary * scale;
  if (imaginary == 0.0) {
    const double a0 = 1.0 - real;
    const double b = high ? 1.0 / a0 : -real / a0;
    return {b, high ? -b : b, 0.0, (-real - 1.0) / a0, 0.0};
  }
  const double square = real * real + imaginary * imaginary;
  const double a0 = 1.0 - 2.0 * real + square;
  const double b = high ? 1.0 / a0 : square / a0;
  return {b, high ? -2.0 * b : 2.0 * b, b, (2.0 * square - 2.0) / a0,
          (1.0 + 2.0 * real + square) / a0};
}

/// @param[in] squaredGain  of one pass at the cutoff
FilterSections Design(const std::vector<Pole>& poles, FilterPass pass, double cutoff, double fsamp,
                      double squaredGain) {
  const double W = common::elementary::Tan(common::kPi * cutoff / fsamp);
  const double w = FrequencyOfGain(poles, squaredGain);
  FilterSections sections;
  for (const Pole& p : poles) {
    sections.push_back(SectionOf(p, pass == FilterPass::High ? W * w : W / w, pass));
  }
  return sections;
}

bool IsBelowHalf(double cutoff, double fsamp) {
  return cutoff > 0.0 && std::isfinite(fsamp) && cutoff < 0.5 * fsamp;
}

/// One pass, from the state that a signal of `before` for ever has left.
void Pass(const FilterSection& s, double before, std::vector<double>* wave) {
  const double gain = (s.b0 + s.b1 + s.b2) / (1.0 + s.a1 + s.a2);
  double x1 = before;
  double x2 = before;
  double y1 = gain * before;
  double y2 = y1;
  for (double& v : *wave) {
    const double y = s.b0 * v + s.b1 * x1 + s.b2 * x2 - s.a1 * y1 - s.a2 * y2;
    x2 = x1;
    x1 = v;
    y2 = y1;
    y1 = y;
    v = y;
  }
}

/// How many samples it takes until nothing is left of a step.
std::size_t TailOf(const FilterSections& filter) {
  constexpr double kGone = 36.0;  // e-folds to the last bit of a double
  double slowest = 0.0;           // radius of a pole
  for (const FilterSection& s : filter) {
    const double root = s.a1 * s.a1 - 4.0 * s.a2;
    const double radius = root < 0.0 ? std::sqrt(s.a2) : 0.5 * (std::fabs(s.a1) + std::sqrt(root));
    slowest = std::max(slowest, radius);
  }
  constexpr double kLongest = 1e7;
  const double tail = slowest < 1.0 ? kGone / (1.0 - slowest) : kLongest;
  return static_cast<std::size_t>(common::TruncToIndex(std::min(tail, kLongest)));
}

}  // namespace

FilterSections DesignFilter(FilterShape shape, FilterPass pass, int order, double cutoff,
                            double fsamp) {
  if (order < 1 || order > kMostFilterOrder || !IsBelowHalf(cutoff, fsamp)) return {};
  return Design(PolesOf(shape, order), pass, cutoff, fsamp, 1.0 / std::sqrt(2.0));
}

FilterSections CfcFilter(double cfc, double fsamp) {
  const double cutoff = 2.0775 * cfc;
  if (!IsBelowHalf(cutoff, fsamp)) return {};
  return Design(PolesOf(FilterShape::Butterworth, 2), FilterPass::Low, cutoff, fsamp, 0.5);
}

std::vector<double> ZeroPhase(std::span<const double> x, const FilterSections& filter) {
  std::vector<double> wave(x.begin(), x.end());
  if (x.empty() || filter.empty()) return wave;
  // What the first pass leaves behind the last sample comes back in the second.
  wave.resize(x.size() + TailOf(filter), x.back());
  double before = x.front();
  for (const FilterSection& section : filter) {
    Pass(section, before, &wave);
    before *= (section.b0 + section.b1 + section.b2) / (1.0 + section.a1 + section.a2);
  }
  std::reverse(wave.begin(), wave.end());
  for (const FilterSection& section : filter) Pass(section, wave.front(), &wave);
  std::reverse(wave.begin(), wave.end());
  wave.resize(x.size());
  return wave;
}

}  // namespace qarv::analysis
