// CDataArrayFloatT: the array of samples that waveforms, bands and working buffers are.
#pragma once

#include <type_traits>

#include "common/data_array/data_array.h"

namespace qarv::common {

/// An owning array of floating-point samples; DataArray has its operations.
template <class T>
class CDataArrayFloatT : public DataArray<T> {
  static_assert(std::is_floating_point_v<T>);

 public:
  using DataArray<T>::DataArray;
};

}  // namespace qarv::common
