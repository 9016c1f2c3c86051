#pragma once
// Deterministic synthetic pollen tables for benchmarks: random compositions
// with many zeros, each row summing to 100, written as the program's tables.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "state/Format.h"

namespace varnoth::bench {

// A small fixed generator (splitmix64), so every run builds the same table.
class SplitMix {
 public:
  explicit SplitMix(std::uint64_t seed) : state_(seed) {}
  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  double Uniform() { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }

 private:
  std::uint64_t state_;
};

// rows x taxa percentages (row-major, 0-based), about 70 % zeros, rounded to
// two decimals like a counted table; each row sums to 100 before rounding.
inline std::vector<double> SyntheticPercentages(int rows, int taxa, std::uint64_t seed) {
  SplitMix rng(seed);
  std::vector<double> v(static_cast<std::size_t>(rows) * taxa, 0.0);
  for (int i = 0; i < rows; ++i) {
    double* row = v.data() + static_cast<std::size_t>(i) * taxa;
    double sum = 0;
    for (int j = 0; j < taxa; ++j) {
      // A few taxa dominate: the weight falls with the taxon's rank.
      if (rng.Uniform() < 0.7 && j > 0) continue;
      double w = rng.Uniform() * 10.0 / (1.0 + 0.05 * j);
      row[j] = w * w;
      sum += row[j];
    }
    if (sum == 0) row[0] = sum = 1;
    for (int j = 0; j < taxa; ++j) row[j] = std::nearbyint(row[j] / sum * 10000.0) / 100.0;
  }
  return v;
}

// The table as the program reads it: a header of taxon names, then one row
// per site or sample with a text label (or the depth, for a fossil table).
inline std::string SyntheticTable(int rows, int taxa, std::uint64_t seed, bool depthLabels) {
  std::vector<double> v = SyntheticPercentages(rows, taxa, seed);
  std::string out = depthLabels ? "Depth" : "Site";
  for (int j = 1; j <= taxa; ++j) out += ",Taxon" + std::to_string(j);
  out += "\r\n";
  for (int i = 0; i < rows; ++i) {
    out += depthLabels ? std::to_string(10 * i) : "S" + std::to_string(i + 1);
    for (int j = 0; j < taxa; ++j) {
      out += ',';
      out += FormatGeneral(v[static_cast<std::size_t>(i) * taxa + j]);
    }
    out += "\r\n";
  }
  return out;
}

}  // namespace varnoth::bench
