#pragma once
// The calibration state the benchmarks share: 2000 leave-one-out pairs on a
// range of 0..30 with a spread growing along it, and a fitted error model.
#include <random>

#include "calibration/CalibState.h"
#include "calibration/PairSets.h"
#include "state/Dialogs.h"

namespace varnoth::bench {

inline constexpr long kCalibPairs = 2000;

class Quiet final : public Dialogs {
 public:
  std::optional<std::string> OpenFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> SaveFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void Message(const std::string&, const std::string&) override {}
  bool Question(const std::string&, const std::string&) override { return false; }
};

inline CalibState MakeCalibState() {
  CalibState c;
  Quiet quiet;
  c.Text1 = "0";
  c.Text2 = "30";
  SetRange(c, quiet);
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> x(-2.0f, 32.0f);
  std::normal_distribution<float> e(0.0f, 1.5f);
  for (long s = 1; s <= kCalibPairs; ++s) {
    const float v = x(rng);
    c.PairData(0, s, 1) = v;
    c.PairData(0, s, 2) = v + e(rng) * (0.5f + v / 30);
  }
  c.FitSlope[1] = 0.98f;
  c.FitIntercept[1] = 0.3f;
  c.FitStdDev[1] = 1.2f;
  return c;
}

}  // namespace varnoth::bench
