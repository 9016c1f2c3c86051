#pragma once
// EOFs of the base table: the taxa-by-taxa matrix, its eigenvectors by power
// iteration with deflation, loadings, contributions and scores.
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// The whole analysis. The solver has fixed work and no tolerance, so the EOFs
// of a data set always come out the same, signs included. Ends with EofDone
// when N > 2; N < 3 is the subscript failure at the display axes.
void RunEofAnalysis(Session& s, Progress& progress);

// One cell of EofMatrix from columns i and j of the base table.
void CorrelatePair(Session& s, long i, long j);
void CovariancePair(Session& s, long i, long j);

// Power iteration on the left block of EigenWork into EigenVectors, one
// literal pass including the column sort. `pass` (1 to 3) only positions
// the progress report.
void PowerEigen(Session& s, int pass, Progress& progress);

// The sort of PowerEigen on the eigenvalue row alone: returns the column
// that ends in each place 0..n. Exposed for the tests.
void SortComponents(Array2<double>& vectors, long n);

// The stages of RunEofAnalysis that carry most of its arithmetic, exposed
// for the benchmarks: EofMatrix from the base table `X`, and every
// component of the left block of EigenWork (order EigenOrder) into
// EigenVectors with the deflated matrix left in EigenWork, before the sort.
void BuildEofMatrix(Session& s, const Array2<double>& X);
void PowerIterations(Session& s, Progress& progress);

// Steps after the eigenvectors, shared by every way of computing them.
void ComputeLoadings(Session& s);
void ComputeContributions(Session& s);
// Standardises the base table and scores it; `X` is the base table.
void ComputeBaseScores(Session& s, const Array2<double>& X);

// The base table: RefData with a reference base, FossilData otherwise.
const Array2<double>& BaseTable(const Session& s);

}  // namespace varnoth
