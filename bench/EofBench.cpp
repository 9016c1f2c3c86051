// The reader and the EOF analysis on a large synthetic database, each
// against a baseline measured in the same run.
#include <benchmark/benchmark.h>

#include <fstream>

#include "BenchSession.h"
#include "eof/Eigen.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/LiteralEof.h"

using namespace varnoth;

namespace {

constexpr int kSites = 8000, kTaxa = 300;

const std::string& TablePath() {
  static const std::string path = [] {
    std::string p = "/tmp/varnoth-bench-reference.csv";
    std::ofstream(p, std::ios::binary) << bench::SyntheticTable(kSites, kTaxa, 1, false);
    return p;
  }();
  return path;
}

Session ImportedSession() {
  Session s;
  bench::SilentDialogs d;
  NoProgress p;
  if (!ImportReference(s, TablePath(), d, p).Ok) throw std::runtime_error("import failed");
  return s;
}

// Arithmetic of one pass done once: the upper triangle of the matrix, 20
// iterations and a deflation per component, and the scores.
double OnePassFlops(double n, double m) {
  return n * (n + 1) / 2 * m * 2 + n * 21 * n * n * 2 + m * n * n * 2;
}

void BM_ReadReference(benchmark::State& state) {
  const std::string& path = TablePath();
  std::ifstream f(path, std::ios::binary | std::ios::ate);
  const auto bytes = static_cast<double>(f.tellg());
  for (auto _ : state) {
    Session s = ImportedSession();
    benchmark::DoNotOptimize(s.RefData.Data());
  }
  state.counters["MB/s"] =
      benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

// Times `analyse` on a fresh copy of the imported session; `passes` is the
// arithmetic it does in units of one pass.
template <typename Analyse>
void TimeAnalysis(benchmark::State& state, Analyse analyse, double passes) {
  Session base = ImportedSession();
  base.UseCorrelation = state.range(0) == 1;
  for (auto _ : state) {
    state.PauseTiming();
    Session s = base;
    state.ResumeTiming();
    analyse(s);
    benchmark::DoNotOptimize(s.RefScores.Data());
  }
  state.counters["GFLOP/s"] = benchmark::Counter(passes * OnePassFlops(kTaxa, kSites) / 1e9,
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

void BM_RunEofAnalysis(benchmark::State& state) {
  TimeAnalysis(
      state,
      [](Session& s) {
        NoProgress p;
        RunEofAnalysis(s, p);
      },
      1);
}

void BM_RunEofAnalysisLiteral(benchmark::State& state) {
  TimeAnalysis(
      state, [](Session& s) { test::RunEofAnalysisLiteral(s); }, 3);
}

}  // namespace

BENCHMARK(BM_ReadReference)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_RunEofAnalysis)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_RunEofAnalysisLiteral)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(1);
