#pragma once
// Sessions for the reconstruction tests, built directly from small tables of
// proportions and climate values.
#include <random>
#include <string>
#include <vector>

#include "state/Session.h"

namespace varnoth::test {

using Rows = std::vector<std::vector<double>>;

inline void SetReference(Session& s, const Rows& rows) {
  const long n = static_cast<long>(rows.at(0).size());
  s.RefSiteCount = static_cast<Count>(rows.size());
  s.RefTaxaCount = s.TaxaCount = static_cast<Count>(n);
  s.RefProportion.ReDim(s.RefSiteCount, n);
  s.RefSiteNames.ReDim(s.RefSiteCount);
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    s.RefSiteNames(i) = "S" + std::to_string(i);
    for (long k = 1; k <= n; ++k) s.RefProportion(i, k) = rows[i - 1][k - 1];
  }
}

inline void SetFossil(Session& s, const Rows& rows, bool textLabels = false) {
  const long n = static_cast<long>(rows.at(0).size());
  s.FossilSampleCount = static_cast<Count>(rows.size());
  s.FossilTaxaCount = static_cast<Count>(n);
  s.FossilProportion.ReDim(s.FossilSampleCount, n);
  s.FossilLabels.ReDim(s.FossilSampleCount);
  s.FossilEmptySample.ReDim(s.FossilSampleCount);
  s.FossilLabelsAreText = textLabels;
  for (long j = 1; j <= s.FossilSampleCount; ++j) {
    s.FossilLabels(j) = textLabels ? "L" + std::to_string(j) : std::to_string(10 * (j - 1));
    double sum = 0;
    for (long k = 1; k <= n; ++k) {
      s.FossilProportion(j, k) = rows[j - 1][k - 1];
      sum += rows[j - 1][k - 1] * rows[j - 1][k - 1];
    }
    s.FossilEmptySample(j) = sum == 0;
  }
}

inline void SetClimate(Session& s, const Rows& rows, const std::vector<std::string>& names) {
  const long m = static_cast<long>(names.size());
  s.ClimateParamCount = static_cast<Count>(m);
  s.ClimateParamNames.ReDim(m);
  s.ClimateParamNames(0) = "Site";
  for (long q = 1; q <= m; ++q) s.ClimateParamNames(q) = names[q - 1];
  s.ClimateData.ReDim(static_cast<long>(rows.size()), m);
  s.ClimateSiteNames.ReDim(static_cast<long>(rows.size()));
  for (long i = 1; i <= static_cast<long>(rows.size()); ++i) {
    s.ClimateSiteNames(i) = "S" + std::to_string(i);
    for (long q = 1; q <= m; ++q) s.ClimateData(i, q) = rows[i - 1][q - 1];
  }
  s.ClimateLoaded = true;
}

// Random compositions on a coarse grid, so that many distances tie, with a
// few exact copies of other rows and of reference sites.
inline Rows GridRows(std::mt19937& rng, int rows, int taxa, int levels) {
  std::uniform_int_distribution<int> cell(0, levels);
  Rows out(rows, std::vector<double>(taxa));
  for (auto& r : out)
    for (auto& v : r) v = cell(rng) / static_cast<double>(levels) / taxa;
  return out;
}

}  // namespace varnoth::test
