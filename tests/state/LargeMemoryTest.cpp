// Arrays of several megabytes come from the system on huge pages: they must
// still come zeroed, keep what they hold through a change of size, and go
// back without harm.
#include <gtest/gtest.h>

#include <cstdint>

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
