// The integer types of the libraries: one 64-bit spelling, the platform's other one accepted.
#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>

namespace qarv::common {

/// A signed whole number of 64 bits.
using int64 = long long;
/// An unsigned whole number of 64 bits: sizes, counts, indices.
using uint64 = unsigned long long;
static_assert(sizeof(int64) == 8 && sizeof(uint64) == 8);

/// The unsigned 64-bit type that is not `uint64`: `unsigned long` where that has 64 bits.
/// std::uint64_t is one or the other, so overloads and pointers must take both.
template <class T>
concept OtherUint64 = std::same_as<T, unsigned long> && sizeof(T) == sizeof(uint64);

/// A result place for an unsigned 64-bit value, in either spelling, or a null pointer.
template <class P>
concept Uint64Place = std::same_as<P, uint64*> || std::same_as<P, std::nullptr_t> ||
    (std::is_pointer_v<P>&& OtherUint64<std::remove_pointer_t<P>>);

/// A result place in the other spelling.
template <class P>
concept OtherUint64Place = std::is_pointer_v<P> && OtherUint64<std::remove_pointer_t<P>>;

}  // namespace qarv::common
