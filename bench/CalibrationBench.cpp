// The calibration chain as a user drives it: 2000 leave-one-out pairs on a
// range of 0..30, a fitted error model. BM_CalibrationChain runs "Start"
// from the model to the confidence regions; BM_CalibrationSmoothingTail the
// tail that a move of the smoothing slider re-runs. The products are also
// timed alone against the plain triple loop of their definition, summing
// each cell over k in a loop of its own; the chain's product keeps that
// order of each sum.
#include <benchmark/benchmark.h>

#include <random>

#include "CalibSynthetic.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "state/Dialogs.h"

using namespace varnoth;

namespace {

constexpr long N = kGridLast + 1;
constexpr long kPairs = bench::kCalibPairs;

ChainContext Context() {
  ChainContext ctx;
  ctx.RefSiteCount = kPairs;
  return ctx;
}

void BM_CalibrationChain(benchmark::State& state) {
  CalibState c = bench::MakeCalibState();
  const CalibSettings st;
  const ChainContext ctx = Context();
  for (auto _ : state) {
    RunChainFrom(c, st, ChainStep::GaussianModel, ctx);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_CalibrationChain)->Unit(benchmark::kMillisecond);

void BM_CalibrationSmoothingTail(benchmark::State& state) {
  CalibState c = bench::MakeCalibState();
  CalibSettings st;
  const ChainContext ctx = Context();
  RunChainFrom(c, st, ChainStep::GaussianModel, ctx);
  long width = 10;
  for (auto _ : state) {
    st.Slider3 = width;
    width = width == 10 ? 11 : 10;
    RerunAfter(c, st, ChainChange::Smoothing, ctx);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_CalibrationSmoothingTail)->Unit(benchmark::kMillisecond);

// The product of the smoothing step (the banded kernel times the counts
// carried through the model), as the chain computes it.
void BM_SmoothingProduct(benchmark::State& state) {
  CalibState c = bench::MakeCalibState();
  const CalibSettings st;
  RunChainFrom(c, st, ChainStep::GaussianModel, Context());
  NoProgress progress;
  for (auto _ : state) {
    MultipleMatrix(c, 2, 3, 4, 2, 1.0f, progress);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_SmoothingProduct)->Unit(benchmark::kMillisecond);

// Plain triple loop on raw rows: M_c(i, j) = sum over k of M_b(i, k) *
// M_a(k, j).
void PlainProduct(CalibState& m, int a, int b, int c) {
  const float* ma = &m.CalibMatrix(a, 0, 0);
  const float* mb = &m.CalibMatrix(b, 0, 0);
  float* mc = &m.CalibMatrix(c, 0, 0);
  for (long i = 0; i < N; ++i)
    for (long j = 0; j < N; ++j) {
      float sum = 0;
      for (long k = 0; k < N; ++k) sum += mb[i * N + k] * ma[k * N + j];
      mc[i * N + j] = sum;
    }
}

void BM_SmoothingProductPlain(benchmark::State& state) {
  CalibState c = bench::MakeCalibState();
  const CalibSettings st;
  RunChainFrom(c, st, ChainStep::GaussianModel, Context());
  for (auto _ : state) {
    PlainProduct(c, 2, 3, 4);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_SmoothingProductPlain)->Unit(benchmark::kMillisecond);

// Dense random factors: no zero to skip, only the vector width helps.
void FillDense(CalibState& c) {
  std::mt19937 rng(9);
  std::uniform_real_distribution<float> v(0.1f, 1.0f);
  for (int s : {0, 1})
    for (long i = 0; i < N; ++i)
      for (long j = 0; j < N; ++j) c.CalibMatrix(s, i, j) = v(rng);
}

void BM_DenseProduct(benchmark::State& state) {
  CalibState c;
  FillDense(c);
  NoProgress progress;
  for (auto _ : state) {
    MultipleMatrix(c, 1, 0, 2, 1, 1.0f, progress);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_DenseProduct)->Unit(benchmark::kMillisecond);

void BM_DenseProductPlain(benchmark::State& state) {
  CalibState c;
  FillDense(c);
  for (auto _ : state) {
    PlainProduct(c, 1, 0, 2);
    benchmark::DoNotOptimize(c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_DenseProductPlain)->Unit(benchmark::kMillisecond);

}  // namespace
