#pragma once
// Zeroed memory for large arrays, on huge pages where the system has them.
#include <cstddef>

namespace varnoth {

// Blocks of this size or more come from ZeroedLarge; smaller ones from calloc.
constexpr std::size_t kLargeBlock = std::size_t{4} << 20;
constexpr std::size_t kHugePage = std::size_t{2} << 20;

// A zeroed block of `bytes` (at least kLargeBlock) that starts on a 2 MB
// boundary and asks for huge pages: the first writes to an array of tens of
// megabytes then cost a few page faults instead of one every 4 KB, and its
// reads miss the address cache far less. A block of the same size given
// back shortly before is used again, zeroed here. Throws std::bad_alloc when
// the system has no memory for it.
void* ZeroedLarge(std::size_t bytes);
// The same without the zeroing, for a buffer that is written before it is
// read: a block given back shortly before is used again as it stands.
void* LargeBlock(std::size_t bytes);
// Gives back a block of ZeroedLarge or LargeBlock with the same `bytes`.
void FreeLarge(void* p, std::size_t bytes) noexcept;

// A buffer of at least `bytes`, not initialised, for text read or written:
// from LargeBlock from one huge page on, when `bytes` is rounded up to whole
// huge pages (all of them usable), and from malloc below. Throws
// std::bad_alloc when the system has no memory for it.
char* TextBuffer(std::size_t& bytes);
// Gives back a buffer of TextBuffer with the `bytes` it returned.
void FreeTextBuffer(char* p, std::size_t bytes) noexcept;

}  // namespace varnoth
