#include "state/LargeMemory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace varnoth {

namespace {
std::size_t Rounded(std::size_t bytes) { return (bytes + kHugePage - 1) / kHugePage * kHugePage; }
}  // namespace

#if defined(__linux__)

namespace {

// Blocks given back are kept for a while: an analysis run again, or a table
// freed while another of its size is made, then reuses memory whose pages
// are already there, and zeroing them costs a fraction of the system's
// faulting in fresh ones. Blocks the cache has no room for go back to the
// system.
class BlockCache {
 public:
  // A kept block of exactly `size` bytes, or nullptr.
  void* Take(std::size_t size) {
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < kept_.size(); ++i)
      if (kept_[i].Size == size) {
        void* p = kept_[i].Start;
        kept_.erase(kept_.begin() + static_cast<std::ptrdiff_t>(i));
        held_ -= size;
        return p;
      }
    return nullptr;
  }
  // Keeps the block unless that would hold too much; the oldest goes first.
  bool Keep(void* p, std::size_t size) {
    if (size > kMostHeld) return false;
    std::vector<Block> gone;
    {
      std::lock_guard lock(mutex_);
      while (!kept_.empty() && (held_ + size > kMostHeld || kept_.size() >= kMostBlocks)) {
        gone.push_back(kept_.front());
        held_ -= kept_.front().Size;
        kept_.erase(kept_.begin());
      }
      kept_.push_back({p, size});
      held_ += size;
    }
    for (const Block& b : gone) ::munmap(b.Start, b.Size);
    return true;
  }

 private:
  struct Block {
    void* Start;
    std::size_t Size;
  };
  static constexpr std::size_t kMostHeld = std::size_t{256} << 20;
  static constexpr std::size_t kMostBlocks = 8;
  std::mutex mutex_;
  std::vector<Block> kept_;
  std::size_t held_ = 0;
};

// Never destroyed: blocks may be given back while the program ends.
BlockCache& Cache() {
  static BlockCache* cache = new BlockCache;
  return *cache;
}

}  // namespace

namespace {

// Anonymous memory comes zeroed. One huge page more than asked for, so that
// a 2 MB boundary lies inside; the ends around it are given back.
void* FreshBlock(std::size_t size) {
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

}  // namespace

void* ZeroedLarge(std::size_t bytes) {
  const std::size_t size = Rounded(bytes);
  if (void* kept = Cache().Take(size)) {
    std::memset(kept, 0, bytes);
    return kept;
  }
  return FreshBlock(size);
}

void* LargeBlock(std::size_t bytes) {
  const std::size_t size = Rounded(bytes);
  if (void* kept = Cache().Take(size)) return kept;
  return FreshBlock(size);
}

void FreeLarge(void* p, std::size_t bytes) noexcept {
  if (!p) return;
  const std::size_t size = Rounded(bytes);
  try {
    if (Cache().Keep(p, size)) return;
  } catch (...) {
    // No room to note it: it goes back at once.
  }
  ::munmap(p, size);
}

#else

void* ZeroedLarge(std::size_t bytes) {
  void* p = std::calloc(bytes, 1);
  if (!p) throw std::bad_alloc();
  return p;
}

void* LargeBlock(std::size_t bytes) {
  void* p = std::malloc(bytes);
  if (!p) throw std::bad_alloc();
  return p;
}

void FreeLarge(void* p, std::size_t) noexcept { std::free(p); }

#endif

char* TextBuffer(std::size_t& bytes) {
  if (bytes >= kHugePage) {
    bytes = Rounded(bytes);
    return static_cast<char*>(LargeBlock(bytes));
  }
  char* p = static_cast<char*>(std::malloc(bytes));
  if (!p) throw std::bad_alloc();
  return p;
}

void FreeTextBuffer(char* p, std::size_t bytes) noexcept {
  if (bytes >= kHugePage)
    FreeLarge(p, bytes);
  else
    std::free(p);
}

}  // namespace varnoth
