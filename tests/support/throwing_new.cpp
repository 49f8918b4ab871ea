// operator new that throws where the address sanitizer's own ends the process instead, so that
// tests can ask for more memory than there is.
#include <cstdlib>
#include <new>

void* operator new(std::size_t n) {
  constexpr std::size_t kMost = std::size_t{1}
                                << 38;  // above it the sanitizer's allocator gives up
  void* const p = n <= kMost ? std::malloc(n == 0 ? 1 : n) : nullptr;
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
void* operator new(std::size_t n, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(n == 0 ? 1 : n);
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
