#include "presentation/publication/Tree.h"

#include <algorithm>
#include <cmath>

#include "diagram/DiagramLayout.h"

namespace varnoth::pub {

ConissTree ReplayConiss(const Session& s) {
  const long n = s.FossilSampleCount;
  struct Cluster {
    double Position, Height;
    long First, Last;
  };
  std::vector<Cluster> row;
  for (long i = 1; i <= n; ++i) {
    // The positions the clustering started from, as singles.
    const float p = static_cast<float>(SamplePosition(s, i));
    row.push_back({p, 0, i, i});
  }
  ConissTree tree;
  for (long j = 1; j <= n - 1 && row.size() >= 2; ++j) {
    const double l = s.ConissLeft(j), r = s.ConissRight(j);
    std::size_t best = 0;
    double bestMiss = INFINITY;
    for (std::size_t p = 0; p + 1 < row.size(); ++p) {
      const double miss = std::fabs(row[p].Position - l) + std::fabs(row[p + 1].Position - r);
      if (miss < bestMiss) {
        bestMiss = miss;
        best = p;
      }
    }
    const Cluster a = row[best], b = row[best + 1];
    ConissJoin join;
    join.LeftPosition = a.Position;
    join.RightPosition = b.Position;
    join.Height = s.ConissHeight(j);
    join.LeftHeight = a.Height;
    join.RightHeight = b.Height;
    join.LeftFirst = a.First;
    join.LeftLast = a.Last;
    join.RightFirst = b.First;
    join.RightLast = b.Last;
    tree.push_back(join);
    const float merged = (static_cast<float>(a.Position) + static_cast<float>(b.Position)) / 2;
    row[best] = {merged, join.Height, a.First, b.Last};
    row.erase(row.begin() + static_cast<std::ptrdiff_t>(best) + 1);
  }
  return tree;
}

std::vector<long> ZoneBoundaries(const ConissTree& tree, int zones) {
  std::vector<const ConissJoin*> order;
  for (const ConissJoin& j : tree) order.push_back(&j);
  // The highest first; of equal ones the later join, which sits higher.
  std::stable_sort(order.begin(), order.end(),
                   [](const ConissJoin* a, const ConissJoin* b) { return a->Height > b->Height; });
  std::vector<long> cuts;
  for (int k = 0; k < zones - 1 && k < static_cast<int>(order.size()); ++k)
    cuts.push_back(std::min(order[static_cast<std::size_t>(k)]->LeftLast,
                            order[static_cast<std::size_t>(k)]->RightLast));
  std::sort(cuts.begin(), cuts.end());
  return cuts;
}

}  // namespace varnoth::pub
