// The three stages of the EOF analysis that carry its arithmetic, on the
// 8000 x 300 reference set of the stage benchmarks, in GFLOP/s beside the
// machine's peak: the matrix (covariance), the power iteration (alone and
// against the routine as it was, alternating in every iteration so that
// both meet the same load) and the scores.
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <memory>

#include "BenchSession.h"
#include "eof/Eigen.h"
#include "support/ReferencePowerIteration.h"

using namespace varnoth;

namespace {

constexpr int kSites = 8000, kTaxa = 300;

// The reference imported and pre-treated, its EOF matrix built once.
const Session& Prepared() {
  static const std::unique_ptr<Session> s = [] {
    auto t = std::make_unique<Session>();
    const std::string path = bench::WriteTemporary("varnoth-eofparts-reference.csv",
                                                   bench::SyntheticTable(kSites, kTaxa, 21, false));
    bench::SilentDialogs d;
    NoProgress p;
    if (!ImportReference(*t, path, d, p).Ok) std::abort();
    ApplyPreTreatment(*t, PreTreatmentSettings{}, p);
    std::filesystem::remove(path);
    return t;
  }();
  return *s;
}

// A session whose EigenWork holds the EOF matrix, as the iteration meets it.
Session ReadyForIteration() {
  Session s = Prepared();
  const long n = s.TaxaCount;
  for (long i = 1; i <= n; ++i)
    for (long j = 1; j <= n; ++j) s.EigenWork(i, j) = s.EofMatrix(i, j);
  return s;
}

struct Clocks {
  double Wall = 0, Cpu = 0;
};

template <typename F>
Clocks Time(F f) {
  const auto t0 = std::chrono::steady_clock::now();
  const std::clock_t c0 = std::clock();
  f();
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count(),
          static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC};
}

void Report(benchmark::State& state, double flops, const Clocks& mine, const Clocks* before) {
  const double k = static_cast<double>(state.iterations());
  state.counters["GFLOP/s"] = flops / (mine.Wall / k) / 1e9;
  state.counters["per_cpu_GFLOP/s"] = flops / (mine.Cpu / k) / 1e9;
  if (before) {
    state.counters["before_GFLOP/s"] = flops / (before->Wall / k) / 1e9;
    state.counters["speedup"] = before->Wall / mine.Wall;
  }
}

// N(N + 1)/2 cells of M products and sums, besides the centring.
void BM_EofMatrix(benchmark::State& state) {
  Session s = Prepared();
  const Array2<double>& X = BaseTable(s);
  Clocks mine;
  for (auto _ : state) {
    Clocks t = Time([&] { BuildEofMatrix(s, X); });
    mine.Wall += t.Wall;
    mine.Cpu += t.Cpu;
    state.SetIterationTime(t.Wall);
  }
  Report(state, static_cast<double>(kTaxa) * (kTaxa + 1) / 2 * kSites * 2, mine, nullptr);
}

// N components of 20 products A v (2 N^2 each) and one deflation (2 N^2).
void BM_PowerIteration(benchmark::State& state) {
  const Session ready = ReadyForIteration();
  NoProgress p;
  Clocks mine, before;
  for (auto _ : state) {
    Session a = ready, b = ready;
    Clocks t = Time([&] { PowerIterations(a, p); });
    Clocks u = Time([&] { test::PowerIterationsAsBefore(b, p); });
    if (!(a.EigenVectors == b.EigenVectors) || !(a.EigenWork == b.EigenWork))
      state.SkipWithError("the two routines disagree");
    mine.Wall += t.Wall;
    mine.Cpu += t.Cpu;
    before.Wall += u.Wall;
    before.Cpu += u.Cpu;
    state.SetIterationTime(t.Wall);
  }
  const double n = kTaxa;
  Report(state, 21.0 * 2 * n * n * n, mine, &before);
}

}  // namespace

BENCHMARK(BM_EofMatrix)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
BENCHMARK(BM_PowerIteration)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
