// The tops of one oscillator's response between samples, several at a time: first by bounds, of
// which the highest leave few, then by Newton's steps.
//
// The ends of an interval and the slopes there tell the whole response between them.  All of it is
// done with bottoms too, mirrored.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "numeric/instruction_set.h"
#include "srs/oscillator.h"

namespace qarv::analysis {

inline constexpr std::size_t kTogether = 16;
using Several = std::array<double, kTogether>;

/// Intervals over which a response first rises and then falls.
struct Arches {
  std::size_t size = 0;
  alignas(64) Several y0{}, slope0{}, y1{}, slope1{};
  std::array<bool, kTogether> mirrored{};

  void Add(double y, double slope, double nextY, double nextSlope) {
    const bool down = slope < 0.0;
    const double sign = down ? -1.0 : 1.0;
    mirrored[size] = down;
    y0[size] = sign * y;
    slope0[size] = sign * slope;
    y1[size] = sign * nextY;
    slope1[size++] = sign * nextSlope;
  }
};

/// What is known of the tops of arches.
struct Bounds {
  alignas(64) Several t;            // about where the top lies
  alignas(64) Several least, most;  // and how high
};

/// By cubics through the ends, which are within 1/384 of the fourth derivative.
QARV_LANES_INLINE void Bound(const Oscillator& o, const Arches& arches, Bounds* bounds) {
  constexpr double kTiny = 1e-300;  // above 0 where nothing moves
  constexpr double kSlack = 1.0 + 1e-6;
  constexpr double kRounding = 1e-13;
  const Oscillator::BendRule rule = o.bendRule;
  const double h2 = o.h2;
  const double s2 = o.s2;
  for (std::size_t j = 0; j < kTogether; ++j) {
    const double y = arches.y0[j];
    const double p = arches.slope0[j];
    const double q = arches.slope1[j];
    const double rise = arches.y1[j] - y;
    const double lead = rise - p;
    const double turn = q - p;
    const double bend = rule.bendByLead * lead + rule.bendByTurn * turn;
    const double third = rule.thirdByLead * lead + rule.thirdByTurn * turn;
    // Each derivative is a free response with the next one as its slope, and stays below the sum
    // of both.
    const double fourth = -s2 * third - h2 * bend;
    const double fifth = -s2 * fourth - h2 * third;
    const double error = kSlack / 384.0 * (std::fabs(fourth) + std::fabs(fifth)) +
                         kRounding * (std::fabs(y) + std::fabs(arches.y1[j]) + p - q);
    // y + p t + b t^2 + c t^3
    const double b = 3.0 * rise - 2.0 * p - q;
    const double c = p + q - 2.0 * rise;
    const double t = p / (std::sqrt(std::fabs(b * b - 3.0 * c * p)) - b + kTiny);
    const double top = y + t * (p + t * (b + t * c));
    bounds->t[j] = t;
    bounds->least[j] = top - error;
    bounds->most[j] = top + error;
  }
}

/// Tops that may be the highest of all.
struct Tops {
  std::size_t size = 0;
  alignas(64) Several y{}, slope{}, lead{}, turn{}, t{}, most{};

  void Add(const Arches& arches, const Bounds& bounds, std::size_t j) {
    y[size] = arches.y0[j];
    slope[size] = arches.slope0[j];
    lead[size] = arches.y1[j] - arches.y0[j] - arches.slope0[j];
    turn[size] = arches.slope1[j] - arches.slope0[j];
    t[size] = bounds.t[j];
    most[size++] = bounds.most[j];
  }
  /// Leaves those that may be above @p height.
  void KeepAbove(double height) {
    std::size_t kept = 0;
    for (std::size_t j = 0; j < size; ++j) {
      if (!(most[j] > height)) continue;
      for (Several* v : {&y, &slope, &lead, &turn, &t, &most}) (*v)[kept] = (*v)[j];
      ++kept;
    }
    size = kept;
  }
};

/// Derivatives at the start, and heights of tops; 0 in `sure` where Newton's steps have not
/// arrived.
struct Heights {
  alignas(64) Several bend, third, top, sure;
};

QARV_LANES_INLINE void Climb(const Oscillator& o, const Tops& tops, Heights* heights) {
  constexpr double kArrived = 1e-6;  // of an interval: of a height an error of its third power
  const Oscillator::Series& byBend = o.ByBend();
  const Oscillator::Series& byThird = o.ByThird();
  const std::size_t terms = o.Terms();
  const Oscillator::BendRule rule = o.bendRule;
  for (std::size_t j = 0; j < kTogether; ++j) {
    heights->bend[j] = rule.bendByLead * tops.lead[j] + rule.bendByTurn * tops.turn[j];
    heights->third[j] = rule.thirdByLead * tops.lead[j] + rule.thirdByTurn * tops.turn[j];
  }
  Several t = tops.t;
  for (int round = 0; round < 3; ++round) {
    Several value{}, slope{}, halfBend{};
    for (std::size_t n = terms; n-- > 2;) {
      const double a = byBend[n];
      const double b = byThird[n];
      for (std::size_t j = 0; j < kTogether; ++j) {
        halfBend[j] = halfBend[j] * t[j] + slope[j];
        slope[j] = slope[j] * t[j] + value[j];
        value[j] = value[j] * t[j] + (a * heights->bend[j] + b * heights->third[j]);
      }
    }
    for (std::size_t j = 0; j < kTogether; ++j) {
      // The last two powers of t.
      halfBend[j] = halfBend[j] * t[j] + slope[j];
      slope[j] = slope[j] * t[j] + value[j];
      value[j] = value[j] * t[j] + tops.slope[j];
      const double bend = 2.0 * (halfBend[j] * t[j] + slope[j]);
      const double steep = slope[j] * t[j] + value[j];
      const double step = steep / bend;
      const double size = std::fabs(step);
      heights->top[j] = tops.y[j] + (value[j] * t[j] - 0.5 * steep * step);
      heights->sure[j] = bend < 0.0 && size < kArrived ? 1.0 : 0.0;
      const double next = t[j] - step;
      t[j] = next > 0.0 && next < 1.0 ? next : 0.5;
    }
  }
}

}  // namespace qarv::analysis
