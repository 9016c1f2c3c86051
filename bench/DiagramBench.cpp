// CONISS on a long core: 1000 samples by 300 taxa. DoConiss keeps the
// distances up to date; the baseline, in the same run, computes them all
// anew at every join and closes the gap row by row.
#include <benchmark/benchmark.h>

#include <cmath>  // before Synthetic.h, which uses std::nearbyint

#include "Synthetic.h"
#include "diagram/Coniss.h"

using namespace varnoth;

namespace {

Session Core(int samples, int taxa) {
  Session s;
  std::vector<double> v = bench::SyntheticPercentages(samples, taxa, 4242);
  s.FossilSampleCount = static_cast<Count>(samples);
  s.FossilTaxaCount = s.TaxaCount = static_cast<Count>(taxa);
  s.FossilLabelsAreText = false;
  s.FossilLabels.ReDim(samples);
  s.FossilProportion.ReDim(samples, taxa);
  for (int i = 1; i <= samples; ++i) {
    s.FossilLabels(i) = std::to_string(5 * (i - 1));
    for (int k = 1; k <= taxa; ++k)
      s.FossilProportion(i, k) = v[static_cast<std::size_t>(i - 1) * taxa + (k - 1)] / 100;
  }
  return s;
}

void BM_DoConiss(benchmark::State& state) {
  Session s = Core(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  NoProgress none;
  for (auto _ : state) {
    DoConiss(s, none);
    benchmark::DoNotOptimize(s.ConissHeight.Data());
  }
}

void BM_DoConissFullBaseline(benchmark::State& state) {
  Session s = Core(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  NoProgress none;
  for (auto _ : state) {
    DoConissFull(s, none);
    benchmark::DoNotOptimize(s.ConissHeight.Data());
  }
}

}  // namespace

BENCHMARK(BM_DoConiss)->Args({1000, 300})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DoConissFullBaseline)->Args({1000, 300})->Unit(benchmark::kMillisecond)->UseRealTime();
