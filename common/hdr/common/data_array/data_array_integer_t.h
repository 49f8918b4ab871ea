// CDataArrayIntegerT: the integer sibling of the sample array, for counts and indices.
#pragma once

#include <type_traits>

#include "common/data_array/data_array.h"

namespace qarv::common {

/// An owning array of integers; DataArray has its operations.
template <class T>
class CDataArrayIntegerT : public DataArray<T> {
  static_assert(std::is_integral_v<T>);

 public:
  using DataArray<T>::DataArray;
};

}  // namespace qarv::common
