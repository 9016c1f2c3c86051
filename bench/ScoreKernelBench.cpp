// The scores of 8000 rows on 300 eigenvectors (ProjectRows), in GFLOP/s of
// wall time and of CPU time, to stand beside the machine's peak.
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <random>
#include <vector>

#include "eof/ScoreKernel.h"

using namespace varnoth;

namespace {

void BM_Scores(benchmark::State& state) {
  constexpr long rows = 8000, n = 300;
  std::mt19937_64 rng(3);
  std::normal_distribution<double> normal(0.0, 1.0);
  Array2<double> Z(rows, n), E(n, n), raw(rows, n);
  std::vector<double> centre(n + 1);
  for (long i = 1; i <= rows; ++i)
    for (long j = 1; j <= n; ++j) Z(i, j) = normal(rng);
  for (long j = 1; j <= n; ++j)
    for (long c = 1; c <= n; ++c) E(j, c) = normal(rng);
  double wall = 0, cpu = 0;
  for (auto _ : state) {
    // CPU time of the whole process (all its threads): on a loaded machine
    // it says what a core gives while the work runs on it.
    const auto t0 = std::chrono::steady_clock::now();
    const std::clock_t c0 = std::clock();
    ProjectRows(Z, rows, n, centre, E, raw);
    benchmark::DoNotOptimize(raw.Data());
    cpu += static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC;
    const double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    wall += t;
    state.SetIterationTime(t);
  }
  const double flops = 2.0 * rows * n * n, k = static_cast<double>(state.iterations());
  state.counters["GFLOP/s"] = flops / (wall / k) / 1e9;
  state.counters["per_cpu_GFLOP/s"] = flops / (cpu / k) / 1e9;
}

}  // namespace

BENCHMARK(BM_Scores)->Unit(benchmark::kMillisecond)->Iterations(20)->UseManualTime();
