// Memory for the tables of a transform, and for what one needs while it is made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/int_types.h"

namespace qarv::common {

/// Doubles, not initialised, that begin with a line of the cache: a load of a whole line that lies
/// across two costs twice.
class FftTable {
 public:
  FftTable() = default;
  explicit FftTable(uint64 size) : memory_(new double[static_cast<std::size_t>(size + kLine)]) {
    const auto address = reinterpret_cast<std::uintptr_t>(memory_.get()) / sizeof(double);
    begin_ = memory_.get() + (kLine - address % kLine) % kLine;
  }

  double* Get() const { return begin_; }

 private:
  static constexpr uint64 kLine = 64 / sizeof(double);

  std::unique_ptr<double[]> memory_;
  double* begin_ = nullptr;
};

}  // namespace qarv::common
