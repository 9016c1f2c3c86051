// Syntheses over many cores and spatially honest error models.
//
// BM_ManyCores: 200 synthetic cores of 100 samples against a reference of
// 8000 sites x 300 taxa with two climate parameters, as one run of
// `varnoth-batch --cores` and, in the same benchmark, as 200 separate runs
// of varnoth-batch with --fossil; the counters give both times, their
// ratio and the one run's time per core. VARNOTH_BENCH_CORES sets another
// number of cores (both ways run the same cores).
//
// BM_ErrorModel/0 is the leave-one-out error model on 8000 sites x 300
// taxa; BM_ErrorModel/200 the h-block model with h = 200 km, the sites
// found by the grid included (BM_SitesWithin/200 times the grid alone). The
// sites lie over 35 x 60 degrees, placed so that neighbours share their
// dominant taxon, as real surface samples do.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>  // before Synthetic.h, which uses std::nearbyint
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "Synthetic.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/HBlock.h"

using namespace varnoth;
namespace fs = std::filesystem;

namespace {

constexpr int kSites = 8000, kTaxa = 300, kSamples = 100;

long CoreCount() {
  const char* v = std::getenv("VARNOTH_BENCH_CORES");
  return v ? std::max(1L, std::atol(v)) : 200L;
}

// The tables of the synthesis, written once into a temporary folder.
struct Synthesis {
  fs::path dir;
  std::string reference, climate, list;
  std::vector<std::string> cores;
  Synthesis() {
    dir = fs::temp_directory_path() / ("varnoth-bench-cores-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    reference = (dir / "reference.csv").string();
    std::ofstream(reference, std::ios::binary) << bench::SyntheticTable(kSites, kTaxa, 21, false);
    climate = (dir / "climate.csv").string();
    const std::vector<double> v = bench::SyntheticPercentages(kSites, kTaxa, 21);
    std::string text = "Site,TJul,PAnn\r\n";
    for (int i = 0; i < kSites; ++i)
      text += "S" + std::to_string(i + 1) + "," +
              FormatGeneral(std::nearbyint(10 + 0.3 * v[i * kTaxa] + 0.01 * (i % 100))) + "," +
              FormatGeneral(std::nearbyint(400 + 5 * v[i * kTaxa + 1])) + "\r\n";
    std::ofstream(climate, std::ios::binary) << text;
    std::string names;
    for (long c = 0; c < CoreCount(); ++c) {
      const std::string path = (dir / ("core" + std::to_string(1000 + c) + ".csv")).string();
      std::ofstream(path, std::ios::binary)
          << bench::SyntheticTable(kSamples, kTaxa, 1000 + static_cast<std::uint64_t>(c), true);
      cores.push_back(path);
      names += path + "\n";
    }
    list = (dir / "cores.txt").string();
    std::ofstream(list, std::ios::binary) << names;
  }
  ~Synthesis() {
    std::error_code ignored;
    fs::remove_all(dir, ignored);
  }
};

double Seconds(const std::string& command) {
  const auto t0 = std::chrono::steady_clock::now();
  if (std::system(command.c_str()) != 0) std::abort();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

void BM_ManyCores(benchmark::State& state) {
  static Synthesis data;
  const std::string program = VARNOTH_BATCH;
  const std::string common = program + " --reference " + data.reference + " --climate " +
                             data.climate + " --max 8 --threshold 0.5";
  const long n = static_cast<long>(data.cores.size());
  double one = 0, separate = 0;
  for (auto _ : state) {
    const fs::path out = data.dir / "out";
    one = Seconds(common + " --cores " + data.list + " --out " + out.string() + " 2>/dev/null");
    fs::remove_all(out);
    separate = 0;
    for (long c = 0; c < n; ++c) {
      separate += Seconds(common + " --fossil " + data.cores[c] + " --out " + out.string() +
                          " 2>/dev/null");
      fs::remove_all(out);
    }
    state.SetIterationTime(one + separate);
  }
  state.counters["cores"] = static_cast<double>(n);
  state.counters["one_run_s"] = one;
  state.counters["separate_runs_s"] = separate;
  state.counters["speedup"] = separate / one;
  state.counters["ms_per_core"] = 1000 * one / static_cast<double>(n);
}

// The error model's session: proportions and climate as in the analogue
// search's own benchmark; positions with the dominant taxon falling from
// south to north.
struct Sites {
  Session s;
  std::vector<double> lon, lat;
  Sites() {
    const std::vector<double> ref = bench::SyntheticPercentages(kSites, kTaxa, 11);
    s.RefSiteCount = kSites;
    s.RefTaxaCount = s.TaxaCount = kTaxa;
    s.RefProportion.ReDim(kSites, kTaxa);
    for (int i = 1; i <= kSites; ++i)
      for (int k = 1; k <= kTaxa; ++k) s.RefProportion(i, k) = ref[(i - 1) * kTaxa + k - 1] / 100;
    s.ClimateParamCount = 2;
    s.ClimateData.ReDim(kSites, 2);
    for (int i = 1; i <= kSites; ++i)
      for (int p = 1; p <= 2; ++p) s.ClimateData(i, p) = 30 * s.RefProportion(i, p) - 2 * p;
    s.ClimateLoaded = true;
    std::vector<int> order(kSites);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return ref[a * kTaxa] > ref[b * kTaxa]; });
    lon.resize(kSites);
    lat.resize(kSites);
    bench::SplitMix rng(5);
    for (int r = 0; r < kSites; ++r) {
      lat[order[r]] = 35 + 35.0 * r / kSites;
      lon[order[r]] = -10 + 60 * rng.Uniform();
    }
  }
};

Sites& SharedSites() {
  static Sites s;
  return s;
}

AnalogueSettings Settings() {
  AnalogueSettings st;
  st.Enhance = AnalogueEnhance::SquareRoot;
  st.MaxAnalogues = 8;
  DefineThreshold(st, 20);
  return st;
}

void BM_ErrorModel(benchmark::State& state) {
  Sites& d = SharedSites();
  NoProgress progress;
  const double h = static_cast<double>(state.range(0));
  long pairs = 0;
  for (auto _ : state) {
    if (h == 0) {
      GenerateErrorModel(d.s, Settings(), progress);
      benchmark::DoNotOptimize(d.s.ReconRefValue.Data());
    } else {
      const SiteNeighbours near = SitesWithin(d.lon, d.lat, h);
      Array2<double> out;
      GenerateErrorModelExcluding(d.s, Settings(), near.View(), out, progress);
      benchmark::DoNotOptimize(out.Data());
      pairs = near.Pairs();
    }
  }
  state.counters["pairs_within_h"] = static_cast<double>(pairs);
}

void BM_SitesWithin(benchmark::State& state) {
  Sites& d = SharedSites();
  for (auto _ : state) {
    const SiteNeighbours near = SitesWithin(d.lon, d.lat, static_cast<double>(state.range(0)));
    benchmark::DoNotOptimize(near.Rows.data());
  }
}

}  // namespace

BENCHMARK(BM_ManyCores)->Unit(benchmark::kSecond)->Iterations(1)->UseManualTime();
BENCHMARK(BM_ErrorModel)
    ->Arg(0)
    ->Arg(200)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();
BENCHMARK(BM_SitesWithin)->Arg(200)->Unit(benchmark::kMillisecond)->MinTime(0.2)->UseRealTime();
