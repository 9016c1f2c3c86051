// Arrays of several megabytes come from the system on huge pages: they must
// still come zeroed, keep what they hold through a change of size, and go
// back without harm.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "state/Array.h"
#include "state/LargeMemory.h"

using namespace varnoth;

namespace {

constexpr long kLargeRows = 3000, kLargeCols = 300;  // 7.2 MB of doubles

TEST(LargeMemory, ALargeBlockComesZeroedOnATwoMegabyteBoundary) {
  const std::size_t bytes = kLargeBlock + 12345;
  auto* p = static_cast<unsigned char*>(ZeroedLarge(bytes));
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % (std::uintptr_t{2} << 20), 0u);
  std::size_t nonzero = 0;
  for (std::size_t i = 0; i < bytes; ++i) nonzero += p[i] != 0;
  EXPECT_EQ(nonzero, 0u);
  // Every byte may be written, the last one too.
  p[0] = 1;
  p[bytes - 1] = 2;
  EXPECT_EQ(p[bytes - 1], 2);
  FreeLarge(p, bytes);
}

TEST(LargeMemory, ALargeArrayStartsAtZeroAfterAnotherWasFreed) {
  {
    Array2<double> a(kLargeRows, kLargeCols);
    for (long i = 0; i <= kLargeRows; ++i)
      for (long j = 0; j <= kLargeCols; ++j) a(i, j) = 7;
  }
  Array2<double> b(kLargeRows, kLargeCols);
  double sum = 0;
  for (long i = 0; i <= kLargeRows; ++i)
    for (long j = 0; j <= kLargeCols; ++j) sum += b(i, j);
  EXPECT_EQ(sum, 0);
}

// Freed blocks are kept for reuse, some of them at a time: whichever block
// a request gets, every byte it asked for is zero.
TEST(LargeMemory, BlocksOfManySizesComeZeroedWhateverWasFreedBefore) {
  const std::size_t sizes[] = {kLargeBlock, kLargeBlock + 1, 3 * kLargeBlock - 7,
                               5 * kLargeBlock / 2, 9 * kLargeBlock};
  std::vector<std::pair<unsigned char*, std::size_t>> live;
  for (int round = 0; round < 40; ++round) {
    const std::size_t bytes = sizes[(round * 7) % 5];
    auto* p = static_cast<unsigned char*>(ZeroedLarge(bytes));
    std::size_t nonzero = 0;
    for (std::size_t i = 0; i < bytes; i += 509) nonzero += p[i] != 0;
    nonzero += p[bytes - 1] != 0;
    ASSERT_EQ(nonzero, 0u) << "round " << round << ", " << bytes << " bytes";
    std::memset(p, 0xA5, bytes);
    live.emplace_back(p, bytes);
    // Give back all but the newest now and then, in another order.
    if (round % 3 == 2) {
      while (live.size() > 1) {
        FreeLarge(live.front().first, live.front().second);
        live.erase(live.begin());
      }
    }
  }
  for (auto& [p, bytes] : live) FreeLarge(p, bytes);
}

TEST(LargeMemory, APreservedResizeAcrossTheLargeSizeKeepsTheCells) {
  Array2<double> a(10, 10);
  for (long i = 1; i <= 10; ++i)
    for (long j = 1; j <= 10; ++j) a(i, j) = i * 100 + j;
  a.ReDimPreserve(kLargeRows, kLargeCols);  // small to large
  EXPECT_EQ(a(3, 7), 307);
  EXPECT_EQ(a(10, 10), 1010);
  EXPECT_EQ(a(kLargeRows, kLargeCols), 0);
  a(kLargeRows, kLargeCols) = 5;
  a.ReDimPreserve(20, 20);  // large to small
  EXPECT_EQ(a(3, 7), 307);
  EXPECT_EQ(a(20, 20), 0);
  Array1<float> v(static_cast<long>(kLargeBlock / sizeof(float)) + 10);
  v(1) = 1;
  v.ReDimPreserve(5);
  EXPECT_EQ(v(1), 1);
  v.ReDimPreserve(static_cast<long>(kLargeBlock / sizeof(float)) * 2);
  EXPECT_EQ(v(1), 1);
  EXPECT_EQ(v(static_cast<long>(kLargeBlock / sizeof(float)) * 2), 0);
}

}  // namespace
