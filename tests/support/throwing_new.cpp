// operator new that throws where the address sanitizer's own ends the process instead, so that
// tests can ask for more memory than there is, or have it run out at any allocation.
#include "throwing_new.h"

#include <cstdlib>
#include <new>

namespace {

bool counting = false;
bool onwards = false;
unsigned long long failing = 0;
unsigned long long asked = 0;

/// Whether there is to be no memory for this allocation.
bool RunsOut() {
  if (!counting) return false;
  ++asked;
  return asked == failing || (onwards && asked > failing);
}

}  // namespace

namespace qarv::test {

Starved::Starved(unsigned long long number, How how) {
  failing = number;
  onwards = how == How::FromThenOn;
  asked = 0;
  counting = true;
}
Starved::~Starved() { counting = false; }

unsigned long long AllocationsSoFar() { return asked; }

}  // namespace qarv::test

void* operator new(std::size_t n) {
  constexpr std::size_t kMost = std::size_t{1}
                                << 38;  // above it the sanitizer's allocator gives up
  void* const p = n <= kMost && !RunsOut() ? std::malloc(n == 0 ? 1 : n) : nullptr;
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
void* operator new(std::size_t n, const std::nothrow_t& /*tag*/) noexcept {
  return RunsOut() ? nullptr : std::malloc(n == 0 ? 1 : n);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
