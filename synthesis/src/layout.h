// Where the components lie before their amplitudes are fitted.
#pragma once

#include "common/int_types.h"
#include "model.h"
#include "synthesis/requirement.h"

namespace qarv::synthesis {

/// Numbers from 0 to below 1 that follow from a seed alone (splitmix64).
class Draws {
 public:
  explicit Draws(common::uint64 seed) : state_(seed) {}
  double Next();
  /// 0 .. n - 1
  std::size_t Below(std::size_t n);

 private:
  common::uint64 state_;
};

enum class Order { HighFirst, LowFirst, Together, Random };
enum class Signs { Alternating, Equal, Random };

struct LayoutRule {
  Order order = Order::HighFirst;
  unsigned int halves = 11;  // [half cycles] where the record has room for them
  Signs signs = Signs::Alternating;
  double spread = 1.0;  // between the starts, of what a sweep takes
  double room = 0.9;    // [frame] that a wavelet may last
  common::uint64 seed = 1;
};

/// The components of a requirement, with amplitudes that have about the required spectrum.
Model MakeLayout(const SrsRequirement& requirement, Method method, double fsamp,
                 common::uint64 nsamp, const LayoutRule& rule);

}  // namespace qarv::synthesis
