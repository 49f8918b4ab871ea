// Memory that runs out on request: which allocation fails, and how many were asked for.
#pragma once

namespace qarv::test {

/// While it lives, the allocation of the given number, counted from 1 on, throws std::bad_alloc, or
/// every one from it on.  One at a time, on one thread.
class Starved {
 public:
  enum class How { Once, FromThenOn };

  Starved(unsigned long long number, How how);
  Starved(const Starved&) = delete;
  Starved& operator=(const Starved&) = delete;
  ~Starved();
};

/// The allocations that were asked for since the last Starved began.
unsigned long long AllocationsSoFar();

/// The allocations that a call asks for.
template <class Call>
unsigned long long AllocationsOf(Call call) {
  const Starved never(~0ULL, Starved::How::Once);
  call();
  return AllocationsSoFar();
}

}  // namespace qarv::test
