#include "diagram/Coniss.h"

#include <cstring>

#include "diagram/DiagramLayout.h"
#include "state/Finite.h"

namespace varnoth {

namespace {

// Squared distance between two rows of ConissData over taxa 1..m, summed
// in double in taxon order.
double Distance(const Array2<float>& data, long a, long b, long m) {
  const float* x = data.Row(a, m);
  const float* y = data.Row(b, m);
  double sum = 0;
  for (long k = 1; k <= m; ++k) {
    const double d = static_cast<double>(x[k]) - static_cast<double>(y[k]);
    sum += d * d;
  }
  return sum;
}

// The start: the proportions as singles, the positions on the depth axis,
// all levels 0.
void Start(Session& s, Progress& progress) {
  const long n = s.FossilSampleCount, m = s.TaxaCount;
  s.ConissData.ReDim(n, m);
  s.ConissPos.ReDim(n);
  s.ConissDist.ReDim(n);
  s.ConissSum.ReDim(n);
  s.ConissLeft.ReDim(n);
  s.ConissRight.ReDim(n);
  s.ConissHeight.ReDim(n);
  if (n > 0) s.FossilProportion.Require(n, m);
  for (long i = 1; i <= n; ++i) {
    const double* p = s.FossilProportion.Row(i, m);
    float* d = s.ConissData.Row(i, m);
    for (long k = 1; k <= m; ++k) d[k] = ToSingle(p[k]);
  }
  for (long i = 1; i <= n; ++i) s.ConissPos(i) = ToSingle(SamplePosition(s, i));
  progress.Start(n);
}

// The closest pair of the P = n - s pairs: compared as singles, strictly,
// so that of equal pairs the first wins. -9999 when none is below 9999.
long ClosestPair(const Session& s, long pairs, float& level) {
  float best = 9999;
  long b = -9999;
  const double* dist = s.ConissDist.Data();
  for (long p = 1; p <= pairs; ++p) {
    const float d = ToSingle(dist[p]);
    if (d < best) {
      b = p;
      best = d;
    }
  }
  level = best;
  return b;
}

// Steps 3 to 7 of a join: record it, merge rows b and b + 1 into row b as
// their plain mean, and update the two distances next to it.
void Join(Session& s, long join, long b, float level, long n, long m) {
  s.ConissLeft(join) = s.ConissPos(b);
  s.ConissRight(join) = s.ConissPos(b + 1);
  s.ConissHeight(join) = ToSingle(static_cast<double>(level) + s.ConissSum(b) + s.ConissSum(b + 1));
  float* row = s.ConissData.Row(b, m);
  const float* next = s.ConissData.Row(b + 1, m);
  for (long k = 1; k <= m; ++k) row[k] = ToSingle((static_cast<double>(next[k]) + row[k]) / 2);
  s.ConissPos(b) = ToSingle((static_cast<double>(s.ConissPos(b)) + s.ConissPos(b + 1)) / 2);
  // Row b + 2 is the merged cluster's next neighbour once the gap closes.
  if (b != 1) s.ConissDist(b - 1) = Distance(s.ConissData, b - 1, b, m);
  if (b != n - join) s.ConissDist(b) = Distance(s.ConissData, b, b + 2, m);
  s.ConissSum(b) = s.ConissHeight(join);
}

}  // namespace

void DoConissFull(Session& s, Progress& progress) {
  Start(s, progress);
  const long n = s.FossilSampleCount, m = s.TaxaCount;
  for (long join = 1; join <= n - 1; ++join) {
    progress.Step(join);
    const long pairs = n - join;
    for (long p = 1; p <= pairs; ++p) s.ConissDist(p) = Distance(s.ConissData, p, p + 1, m);
    float level = 0;
    const long b = ClosestPair(s, pairs, level);
    Join(s, join, b, level, n, m);
    for (long p = b + 1; p <= pairs; ++p) {
      s.ConissDist(p) = s.ConissDist(p + 1);
      s.ConissPos(p) = s.ConissPos(p + 1);
      s.ConissSum(p) = s.ConissSum(p + 1);
      for (long k = 1; k <= m; ++k) s.ConissData(p, k) = s.ConissData(p + 1, k);
    }
  }
  RequireFinite(s.ConissDist);
  RequireFinite(s.ConissHeight);
  progress.Finish();
}

void DoConiss(Session& s, Progress& progress) {
  Start(s, progress);
  const long n = s.FossilSampleCount, m = s.TaxaCount;
  // All distances once. Afterwards each join changes only the two next to
  // the merged row, which Join computes by the same sum; every other pair
  // only moves up with the rows. So the values equal those of a full
  // computation at every join, and so does the pair picked.
  for (long p = 1; p <= n - 1; ++p) s.ConissDist(p) = Distance(s.ConissData, p, p + 1, m);
  const std::size_t width = s.ConissData.Cols();
  for (long join = 1; join <= n - 1; ++join) {
    progress.Step(join);
    const long pairs = n - join;
    float level = 0;
    const long b = ClosestPair(s, pairs, level);
    Join(s, join, b, level, n, m);
    // Close the gap: rows b + 2 .. pairs + 1 move up by one, in one block.
    const long moved = pairs - b;
    if (moved > 0) {
      auto up = [&](auto* a) { std::memmove(a + b + 1, a + b + 2, moved * sizeof(*a)); };
      up(s.ConissDist.Data());
      up(s.ConissPos.Data());
      up(s.ConissSum.Data());
      float* data = s.ConissData.Data();
      std::memmove(data + (b + 1) * width, data + (b + 2) * width, moved * width * sizeof(float));
    }
  }
  RequireFinite(s.ConissDist);
  RequireFinite(s.ConissHeight);
  progress.Finish();
}

double ConissScaleWidth(const Session& s) {
  const double width = ToSingle(s.ConissHeight(s.FossilSampleCount - 1) * 1.1);
  if (!(width > 0))
    throw RuntimeFailure(FailureKind::InvalidCall, "Invalid property value: scale width 0");
  return width;
}

std::vector<double> ConissTicks(const Session& s) {
  const double limit = s.ConissHeight(s.FossilSampleCount - 1) * 1.2;
  std::vector<double> ticks;
  double x = 1;
  do {
    ticks.push_back(x);
    x += 1;
  } while (x < limit);
  return ticks;
}

}  // namespace varnoth
