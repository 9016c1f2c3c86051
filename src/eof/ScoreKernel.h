#pragma once
// Scores of standardised rows on the eigenvectors: raw(i, c) = the sum over
// j = 1..n, in that order, of (Z(i, j) - centre(j)) * E(j, c).
#include <functional>
#include <vector>

#include "state/Array.h"

namespace varnoth {

void ProjectRows(const Array2<double>& Z, long rows, long n, const std::vector<double>& centre,
                 const Array2<double>& E, Array2<double>& raw);

// The same sums for rows that `centred(i, c)` writes, already centred, into
// c[0..n-1] for i = 1..rows: a table that is only scored need not be held.
void ScoreRows(long rows, long n, const std::function<void(long, double*)>& centred,
               const Array2<double>& E, Array2<double>& raw);

}  // namespace varnoth
