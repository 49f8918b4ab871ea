// The exact values of the elementary functions, from MPFR, and arguments to compare them at.
#pragma once

#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "numeric/elementary.h"

namespace qarv::test {

/// The distance of y from the exact f(x), in units in the last place of the exact value.
class ExactValue {
 public:
  using Function = int (*)(mpfr_t, const mpfr_t, mpfr_rnd_t);

  ExactValue() {
    mpfr_init2(x_, 53);
    mpfr_init2(exact_, 180);
    mpfr_init2(difference_, 180);
  }
  ExactValue(const ExactValue&) = delete;
  ExactValue& operator=(const ExactValue&) = delete;
  ~ExactValue() { mpfr_clears(x_, exact_, difference_, static_cast<mpfr_ptr>(nullptr)); }

  double Error(Function f, double x, double y) {
    Evaluate(f, x);
    if (mpfr_nan_p(exact_) != 0 || std::isnan(y)) {
      return mpfr_nan_p(exact_) != 0 && std::isnan(y) ? 0.0 : kWrong;
    }
    const double nearest = Nearest();
    if (std::isinf(nearest) || std::isinf(y)) return nearest == y ? 0.0 : kWrong;
    mpfr_sub_d(difference_, exact_, y, MPFR_RNDN);
    if (mpfr_zero_p(difference_) != 0) return std::signbit(nearest) == std::signbit(y) ? 0 : kWrong;
    const long exponent = std::max<long>(mpfr_get_exp(exact_), -1021);
    mpfr_mul_2si(difference_, difference_, 53 - exponent, MPFR_RNDN);
    return std::fabs(mpfr_get_d(difference_, MPFR_RNDN));
  }
  /// How far the exact f(x) lies from the middle between two doubles [unit in the last place]: the
  /// less, the harder it is to round.
  double FromTie(Function f, double x) {
    Evaluate(f, x);
    return 0.5 - Error(f, x, Nearest());
  }
  double Value(Function f, double x) {
    Evaluate(f, x);
    return Nearest();
  }

 private:
  static constexpr double kWrong = std::numeric_limits<double>::infinity();
  void Evaluate(Function f, double x) {
    mpfr_set_d(x_, x, MPFR_RNDN);
    f(exact_, x_, MPFR_RNDN);
  }
  double Nearest() const { return mpfr_get_d(exact_, MPFR_RNDN); }

  mpfr_t x_, exact_, difference_;
};

/// A function, its exact twin, and the ranges of its arguments.
struct ElementaryFunction {
  using Range = std::function<double(std::mt19937_64&)>;
  std::string name;
  double (*one)(double);
  ExactValue::Function exact;
  std::vector<Range> ranges;
};

inline ElementaryFunction::Range Uniform(double low, double high) {
  return [=](std::mt19937_64& random) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
}
/// Any size between two powers of two, either sign.
inline ElementaryFunction::Range AnySize(int lowest, int highest) {
  return [=](std::mt19937_64& random) {
    const double size = std::ldexp(std::uniform_real_distribution<double>(1.0, 2.0)(random),
                                   std::uniform_int_distribution<int>(lowest, highest)(random));
    return random() % 2 == 0 ? size : -size;
  };
}
/// A whole multiple of a step, up to count steps: phases as the generators make them.
inline ElementaryFunction::Range Multiples(double step, std::int64_t count) {
  return [=](std::mt19937_64& random) {
    return static_cast<double>(std::uniform_int_distribution<std::int64_t>(-count, count)(random)) *
           step;
  };
}
/// The sum of a number and something small of any size.
inline ElementaryFunction::Range Near(double centre, int lowest, int highest) {
  return [centre, any = AnySize(lowest, highest)](std::mt19937_64& random) {
    return centre + any(random);
  };
}
inline ElementaryFunction::Range Positive(ElementaryFunction::Range range) {
  return [range](std::mt19937_64& random) { return std::fabs(range(random)); };
}

inline std::vector<ElementaryFunction> ElementaryFunctions() {
  using namespace common::elementary;
  constexpr double kStep = 0.02454369260617026;       // pi / 128, as the reductions use it
  constexpr double kLogStep = 0.0027076061740622863;  // ln 2 / 256
  const std::vector angles{Uniform(-4.0, 4.0),
                           Uniform(-0.05, 0.05),
                           Uniform(-1000.0, 1000.0),
                           Uniform(-1.25e7, 1.25e7),
                           Uniform(1.2e7, 1.3e7),
                           Uniform(1e7, 1e12),
                           AnySize(-1074, -30),
                           AnySize(-60, 0),
                           AnySize(0, 1023),
                           Multiples(1.5707963267948966, 100000),
                           Multiples(kStep, std::int64_t{1} << 30),
                           Multiples(6.283185307179586 / 97.3, 1000000)};
  const std::vector powers{Uniform(-1.0, 1.0),
                           Uniform(-0.01, 0.01),
                           Uniform(-746.0, 710.0),
                           Uniform(-746.0, -707.0),
                           Uniform(708.0, 710.0),
                           Near(-745.1332191019412, -40, -8),
                           Near(709.782712893384, -40, -8),
                           AnySize(-1074, 10),
                           AnySize(-60, 0),
                           Multiples(kLogStep, 260000),
                           Multiples(1.0, 745),
                           Uniform(-30.0, 30.0)};
  const std::vector logs{Uniform(0.5, 2.0),
                         Uniform(0.98, 1.02),
                         Near(1.0, -53, -6),
                         Uniform(0.983, 0.986),
                         Uniform(1.014, 1.017),
                         Uniform(0.0, 1e6),
                         Uniform(0.7, 0.72),
                         Uniform(1.4, 1.42),
                         Positive(AnySize(-1074, -1022)),
                         Positive(AnySize(-1022, 1023))};
  const std::vector tangents{Uniform(-4.0, 4.0),  Uniform(-0.05, 0.05),  Near(1.0, -50, -4),
                             AnySize(-1074, -28), AnySize(-30, 0),       AnySize(0, 60),
                             AnySize(60, 1023),   Uniform(-100.0, 100.0)};
  return {{"Sin", Sin, mpfr_sin, angles},
          {"Cos", Cos, mpfr_cos, angles},
          {"Exp", Exp, mpfr_exp, powers},
          {"Log", Log, mpfr_log, logs},
          {"Atan", Atan, mpfr_atan, tangents}};
}

}  // namespace qarv::test
