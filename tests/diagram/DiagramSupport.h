#pragma once
// A fossil core built in memory for the diagram tests.
#include <string>
#include <vector>

#include "state/Session.h"

namespace varnoth::test {

// rows[i] are the proportions of sample i + 1 (a row of zeros is an empty
// sample); labels are the sample labels, numbers unless `text`.
inline Session Core(const std::vector<std::vector<double>>& rows,
                    const std::vector<std::string>& labels, bool text) {
  Session s;
  const long n = static_cast<long>(rows.size());
  const long m = rows.empty() ? 1 : static_cast<long>(rows[0].size());
  s.FossilSampleCount = static_cast<Count>(n);
  s.FossilTaxaCount = s.TaxaCount = static_cast<Count>(m);
  s.FossilLabelsAreText = text;
  s.FossilLabels.ReDim(n);
  s.FossilProportion.ReDim(n, m);
  s.FossilEmptySample.ReDim(n);
  s.SampleIsOut.ReDim(n);
  s.FossilTaxaNames.ReDim(m);
  for (long i = 1; i <= n; ++i) {
    s.FossilLabels(i) = labels[static_cast<std::size_t>(i - 1)];
    double sum = 0;
    for (long k = 1; k <= m; ++k) {
      s.FossilProportion(i, k) =
          rows[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(k - 1)];
      sum += s.FossilProportion(i, k);
    }
    s.FossilEmptySample(i) = sum == 0;
  }
  for (long k = 1; k <= m; ++k) s.FossilTaxaNames(k) = "Taxon" + std::to_string(k);
  return s;
}

inline std::vector<std::string> TextLabels(long n) {
  std::vector<std::string> l;
  for (long i = 1; i <= n; ++i) l.push_back("L" + std::to_string(i));
  return l;
}

}  // namespace varnoth::test
