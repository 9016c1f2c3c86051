#include "state/LargeMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace varnoth {

namespace {
constexpr std::size_t kHugePage = std::size_t{2} << 20;

std::size_t Rounded(std::size_t bytes) { return (bytes + kHugePage - 1) / kHugePage * kHugePage; }
}  // namespace

#if defined(__linux__)

void* ZeroedLarge(std::size_t bytes) {
  const std::size_t size = Rounded(bytes);
  // Anonymous memory comes zeroed. One huge page more than asked for, so
  // that a 2 MB boundary lies inside; the ends around it are given back.
  void* mapped =
      ::mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  const auto start = reinterpret_cast<std::uintptr_t>(mapped);
  const std::uintptr_t aligned = (start + kHugePage - 1) / kHugePage * kHugePage;
  if (aligned > start) ::munmap(mapped, aligned - start);
  const std::size_t tail = start + size + kHugePage - (aligned + size);
  if (tail > 0) ::munmap(reinterpret_cast<void*>(aligned + size), tail);
  void* p = reinterpret_cast<void*>(aligned);
  ::madvise(p, size, MADV_HUGEPAGE);
  return p;
}

void FreeLarge(void* p, std::size_t bytes) noexcept {
  if (p) ::munmap(p, Rounded(bytes));
}

#else

void* ZeroedLarge(std::size_t bytes) {
  void* p = std::calloc(bytes, 1);
  if (!p) throw std::bad_alloc();
  return p;
}

void FreeLarge(void* p, std::size_t) noexcept { std::free(p); }

#endif

}  // namespace varnoth
