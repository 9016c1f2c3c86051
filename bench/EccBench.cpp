// Opening the EOF-climate correlation table on a large database: 8000 sites
// x 300 EOFs x 32 climate parameters, 77 million products. The baseline, in
// the same run, works out each coefficient on its own, one pair at a time.
#include <benchmark/benchmark.h>

#include "Synthetic.h"
#include "diagram/EofClimateCorrelation.h"

using namespace varnoth;

namespace {

Session Sites(int sites, int eofs, int params) {
  Session s;
  bench::SplitMix rng(777);
  s.RefSiteCount = static_cast<Count>(sites);
  s.RefTaxaCount = static_cast<Count>(eofs);
  s.ClimateParamCount = static_cast<Count>(params);
  s.RefScores.ReDim(sites, eofs);
  s.ClimateData.ReDim(sites, params);
  for (int i = 1; i <= sites; ++i) {
    for (int e = 1; e <= eofs; ++e) s.RefScores(i, e) = rng.Uniform() * 4 - 2;
    for (int p = 1; p <= params; ++p)
      s.ClimateData(i, p) = 10 * p + 5 * s.RefScores(i, p % eofs + 1) + rng.Uniform();
  }
  return s;
}

void BM_EccCorrelationMatrix(benchmark::State& state) {
  const Session s = Sites(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                          static_cast<int>(state.range(2)));
  NoProgress none;
  for (auto _ : state) {
    Array2<float> m = EccCorrelationMatrix(s, none);
    benchmark::DoNotOptimize(m.Data());
  }
  state.counters["products/s"] =
      benchmark::Counter(static_cast<double>(state.range(0)) * state.range(1) * state.range(2),
                         benchmark::Counter::kIsIterationInvariantRate);
}

void BM_EccCorrelationPairsBaseline(benchmark::State& state) {
  const Session s = Sites(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                          static_cast<int>(state.range(2)));
  const long eofs = state.range(1), params = state.range(2);
  Array2<float> m(eofs, params);
  for (auto _ : state) {
    for (long e = 1; e <= eofs; ++e)
      for (long p = 1; p <= params; ++p) m(e, p) = static_cast<float>(EccCorrelation(s, e, p));
    benchmark::DoNotOptimize(m.Data());
  }
  state.counters["products/s"] =
      benchmark::Counter(static_cast<double>(state.range(0)) * state.range(1) * state.range(2),
                         benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(BM_EccCorrelationMatrix)
    ->Args({8000, 300, 32})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_EccCorrelationPairsBaseline)
    ->Args({8000, 300, 32})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);
