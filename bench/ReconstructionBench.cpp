// The analogue search on a large database: 8000 reference sites x 300 taxa
// and 1000 fossil samples, 3 climate parameters. RunReconstruction and
// GenerateErrorModel each run the engine's parallel, vectorised search and,
// as the baseline in the same run, the plain one-thread loops. The counter
// "GFLOPs" counts three operations (difference, square, sum) per taxon and
// pair of rows, per second, for the whole table of pairs: the error model's
// fast search sums each pair of sites once, so its figure is the work it
// stands for, not the work it does.
#include <benchmark/benchmark.h>

#include <cmath>  // before Synthetic.h, which uses std::nearbyint

#include "Synthetic.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/NearestSites.h"
#include "state/Parallel.h"

using namespace varnoth;

namespace {

constexpr int kSites = 8000, kTaxa = 300, kSamples = 1000, kParams = 3;

// Proportions from the synthetic percentage tables; climate a smooth
// function of the composition so that estimates vary.
Session MakeSession() {
  Session s;
  std::vector<double> ref = bench::SyntheticPercentages(kSites, kTaxa, 11);
  std::vector<double> fossil = bench::SyntheticPercentages(kSamples, kTaxa, 12);
  s.RefSiteCount = kSites;
  s.FossilSampleCount = kSamples;
  s.RefTaxaCount = s.FossilTaxaCount = s.TaxaCount = kTaxa;
  s.RefProportion.ReDim(kSites, kTaxa);
  s.FossilProportion.ReDim(kSamples, kTaxa);
  for (int i = 1; i <= kSites; ++i)
    for (int k = 1; k <= kTaxa; ++k) s.RefProportion(i, k) = ref[(i - 1) * kTaxa + k - 1] / 100;
  for (int j = 1; j <= kSamples; ++j)
    for (int k = 1; k <= kTaxa; ++k)
      s.FossilProportion(j, k) = fossil[(j - 1) * kTaxa + k - 1] / 100;
  s.ClimateParamCount = kParams;
  s.ClimateData.ReDim(kSites, kParams);
  for (int i = 1; i <= kSites; ++i)
    for (int p = 1; p <= kParams; ++p)
      s.ClimateData(i, p) = 30 * s.RefProportion(i, p) - 2 * p + 0.001 * i;
  s.ClimateLoaded = true;
  return s;
}

Session& Shared() {
  static Session s = MakeSession();
  return s;
}

AnalogueSettings Settings() {
  AnalogueSettings st;
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.InverseWeighting = true;
  st.MaxAnalogues = 8;
  DefineThreshold(st, 20);
  return st;
}

void Flops(benchmark::State& state, double rows, bool scalar = false) {
  state.counters["GFLOPs"] = benchmark::Counter(3.0 * rows * kSites * kTaxa / 1e9,
                                                benchmark::Counter::kIsIterationInvariantRate);
  state.SetLabel(scalar ? std::string("scalar, 1 thread")
                        : std::string(analogue::NearestKernelName()) + ", " +
                              std::to_string(WorkerCount()) + " threads");
}

// One benchmark per operation and way of running, on the shared session.
template <void (*Operation)(Session&, const AnalogueSettings&, Progress&), bool ErrorModel,
          bool Scalar>
void BM_Search(benchmark::State& state) {
  Session& s = Shared();
  NoProgress progress;
  const AnalogueSettings st = Settings();
  for (auto _ : state) {
    Operation(s, st, progress);
    benchmark::DoNotOptimize(ErrorModel ? s.ReconRefValue.Data() : s.ReconValue.Data());
  }
  Flops(state, ErrorModel ? kSites : kSamples, Scalar);
}

void BM_RunReconstruction(benchmark::State& state) {
  BM_Search<RunReconstruction, false, false>(state);
}
void BM_RunReconstructionScalar(benchmark::State& state) {
  BM_Search<RunReconstructionLiteral, false, true>(state);
}
void BM_GenerateErrorModel(benchmark::State& state) {
  BM_Search<GenerateErrorModel, true, false>(state);
}
void BM_GenerateErrorModelScalar(benchmark::State& state) {
  BM_Search<GenerateErrorModelLiteral, true, true>(state);
}

}  // namespace

BENCHMARK(BM_RunReconstruction)->Unit(benchmark::kMillisecond)->MinTime(1.0)->UseRealTime();
BENCHMARK(BM_RunReconstructionScalar)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(BM_GenerateErrorModel)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_GenerateErrorModelScalar)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
