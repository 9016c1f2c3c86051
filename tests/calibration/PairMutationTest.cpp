// Mutated copies of a pair file: each import ends, completed or not, and a
// completed one counts exactly the complete pairs it stored. Never a crash.
#include <gtest/gtest.h>

#include "CalibSupport.h"
#include "state/Format.h"
#include "support/Mutation.h"

using namespace varnoth;
using namespace varnoth::test;

TEST(PairFile, MutatedFilesNeverCrashAndCompletedOnesCountTheirPairs) {
  TempDir dir;
  std::string base = "Vest,Vobs\r\n";
  for (int i = 0; i < 60; ++i)
    base += FormatGeneral(i * 0.25) + "," + FormatGeneral(i * 0.25 + (i % 5) * 0.1) + "\r\n";
  Xorshift rng{77};
  int completed = 0;
  const float unread = 12345.5f;
  for (int round = 0; round < 400; ++round) {
    CalibState c;
    for (long s = 1; s <= 200; ++s) c.PairData(1, s, 1) = c.PairData(1, s, 2) = unread;
    if (!ImportPairFile(c, 1, dir.Write("m.csv", Mutate(base, rng)))) continue;
    ++completed;
    long complete = 0;
    for (long s = 1; s <= 200 && c.PairData(1, s, 1) != unread; ++s)
      if (c.PairData(1, s, 1) != -9999.0f && c.PairData(1, s, 2) != -9999.0f) ++complete;
    EXPECT_EQ(std::to_string(complete), c.Labels.Label12[1]);
  }
  EXPECT_GT(completed, 50);
}
