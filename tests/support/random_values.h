// Arbitrary parameters from a fixed seed: mostly usable, now and then hostile.
#pragma once

#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>

namespace qarv::test {

class RandomValues {
 public:
  explicit RandomValues(unsigned int seed) : engine_(seed) {}

  bool OneIn(unsigned int n) { return Below(n) == 0; }
  /// 0 .. n - 1
  unsigned int Below(unsigned int n) { return static_cast<unsigned int>(engine_() % n); }
  double Between(double low, double high) {
    return low + (high - low) * (static_cast<double>(engine_() >> 11) * 0x1p-53);
  }
  template <class T>
  T Pick(std::initializer_list<T> values) {
    return *std::next(values.begin(),
                      static_cast<std::ptrdiff_t>(Below(static_cast<unsigned int>(values.size()))));
  }
  /// A value that no engineer enters.
  double Hostile() {
    using Limits = std::numeric_limits<double>;
    constexpr double kInf = Limits::infinity();
    return Pick({0.0, -0.0, -1.0, 1.0, 1e-300, -1e-300, Limits::denorm_min(), 1e9, -1e9, 1e30,
                 -1e30, 1e308, -1e308, 9.3e18, 1.9e19, kInf, -kInf, Limits::quiet_NaN()});
  }
  /// Within the range, or hostile once in a while.
  double Value(double low, double high) { return OneIn(15) ? Hostile() : Between(low, high); }

 private:
  std::mt19937_64 engine_;
};

}  // namespace qarv::test
