#pragma once
// Calibration states for the tests: a range, pair set 0 from a list of
// pairs and a model, built the way the tool builds them.
#include <random>
#include <utility>
#include <vector>

#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "support/TestSupport.h"

namespace varnoth::test {

inline void SetTestRange(CalibState& c, const std::string& t1, const std::string& t2) {
  FakeDialogs dialogs;
  c.Text1 = t1;
  c.Text2 = t2;
  SetRange(c, dialogs);
}

inline long SetPairs(CalibState& c, const std::vector<std::pair<float, float>>& pairs) {
  long s = 0;
  for (const auto& [x, y] : pairs) {
    ++s;
    c.PairData(0, s, 1) = x;
    c.PairData(0, s, 2) = y;
  }
  return s;
}

// Pairs around the diagonal of 0..10, with a spread that varies along it.
inline std::vector<std::pair<float, float>> NoisyPairs(int count, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> x(-0.5f, 10.5f);
  std::normal_distribution<float> e(0.0f, 0.6f);
  std::vector<std::pair<float, float>> out;
  for (int i = 0; i < count; ++i) {
    const float v = x(rng);
    out.emplace_back(v, v + e(rng) * (0.5f + v / 10));
  }
  return out;
}

// A whole chain with a generated model on the range 0..10.
inline void RunGenerated(CalibState& c, CalibSettings& st, long sites) {
  NoProgress progress;
  st.Check4 = true;
  UseGeneratedModel(c, st, progress);
  ChainContext ctx;
  ctx.RefSiteCount = sites;
  StartChain(c, st, ctx);
}

}  // namespace varnoth::test
