// Samples as NumPy arrays: read-only views of what an object holds, and arrays that are handed in.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <span>
#include <vector>

namespace qarv::python {

/// An array of doubles, one behind the other.
using DoubleArray =
    pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;

/// A read-only array over samples, without a copy.
/// @param[in] owner  of the samples; the array keeps it alive
pybind11::array ViewOf(std::span<const double> samples, pybind11::handle owner);

/// A new array with those values.
pybind11::array ArrayOf(std::span<const double> values);

/// Samples that are handed in; copied only if they are no doubles or not one behind the other.
/// @param[in] name  of the argument
/// @throws TypeError if they are no real numbers, ValueError if they have not one dimension
DoubleArray SamplesIn(pybind11::handle samples, const char* name);

/// The samples of an array that was taken in.
std::span<const double> SpanOf(const DoubleArray& samples);

}  // namespace qarv::python
