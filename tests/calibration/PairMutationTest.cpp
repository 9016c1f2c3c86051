// Mutated copies of a pair file: each import ends, completed or not, and a
// completed one counts exactly the complete pairs it stored. Never a crash.
#include <gtest/gtest.h>

#include "CalibSupport.h"
#include "state/Format.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

struct Xorshift {
  std::uint32_t state;
  std::uint32_t Next() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
  }
};

std::string Mutate(std::string text, Xorshift& rng) {
  static const char* const pieces[] = {",",  "\n",   "\"",   " ",        "1e400", "-9999", "abc",
                                       ",,", "\r\n", "12.0", "\x01\xff", "-",     "1e38"};
  const int edits = 1 + static_cast<int>(rng.Next() % 4);
  for (int e = 0; e < edits && !text.empty(); ++e) {
    const std::size_t at = rng.Next() % text.size();
    switch (rng.Next() % 4) {
      case 0:
        text.erase(at, 1 + rng.Next() % 20);
        break;
      case 1:
        text.insert(at, pieces[rng.Next() % std::size(pieces)]);
        break;
      case 2:
        text[at] = static_cast<char>(rng.Next() & 0xFF);
        break;
      default:
        text.resize(at);
    }
  }
  return text;
}

}  // namespace

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
