// The interpolation of 6000 stations onto 8000 sites with 3 climate
// parameters, the leave-one-out of every station included, in both modes.
// The baseline in the same run is the plain loop with full distance arrays
// (tests/support/LiteralInterpolation). Stations and sites lie over a
// region of 50 by 35 degrees, so that a radius of 3 degrees holds about a
// hundred stations. The counter "peak MB" is the growth of the process's
// peak resident memory during the first run of a benchmark; it says what
// the run itself needs only when that benchmark runs first in a process.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>

#include "Synthetic.h"
#include "interpolation/Interpolation.h"
#include "state/Parallel.h"
#include "support/LiteralInterpolation.h"

using namespace varnoth;

namespace {

constexpr int kStations = 6000, kTargets = 8000, kColumns = 8;

double Grid(double v) { return std::nearbyint(v * 100) / 100; }

Session MakeSession() {
  Session s;
  bench::SplitMix rng(29);
  InterpolationState& st = s.Interp;
  st.InterpRefCount = kStations;
  st.InterpTargetCount = kTargets;
  st.InterpColumnCount = kColumns;
  st.InterpParamNames.ReDim(kColumns);
  const char* names[] = {"", "Lon", "Lat", "Alt", "TL", "PL", "MTCO", "MTWA", "Prec"};
  for (int k = 0; k <= kColumns; ++k) st.InterpParamNames(k) = names[k];
  st.InterpNonNegative.ReDim(kColumns);
  st.InterpNonNegative(8) = 1;
  auto place = [&](Array1<float>& lon, Array1<float>& lat, Array1<float>& alt,
                   Array2<double>& lapse, int rows) {
    lon.ReDim(rows);
    lat.ReDim(rows);
    alt.ReDim(rows);
    lapse.ReDim(rows, kColumns);
    for (int i = 1; i <= rows; ++i) {
      lon(i) = static_cast<float>(Grid(-10 + 50 * rng.Uniform()));
      lat(i) = static_cast<float>(Grid(35 + 35 * rng.Uniform()));
      alt(i) = static_cast<float>(std::nearbyint(2500 * rng.Uniform() * rng.Uniform()));
      const double t = Grid(0.4 + 0.3 * rng.Uniform()), p = Grid(5 * rng.Uniform());
      lapse(i, 4) = lapse(i, 6) = lapse(i, 7) = t;
      lapse(i, 5) = lapse(i, 8) = p;
    }
  };
  place(st.InterpRefLon, st.InterpRefLat, st.InterpRefAlt, st.InterpRefLapse, kStations);
  place(st.SiteLongitude, st.SiteLatitude, st.SiteAltitude, st.InterpTargetLapse, kTargets);
  st.InterpRefClimate.ReDim(kStations, kColumns);
  for (int j = 1; j <= kStations; ++j) {
    const double lat = st.InterpRefLat(j);
    st.InterpRefClimate(j, 1) = st.InterpRefLon(j);
    st.InterpRefClimate(j, 2) = lat;
    st.InterpRefClimate(j, 3) = st.InterpRefAlt(j);
    st.InterpRefClimate(j, 4) = st.InterpRefLapse(j, 4);
    st.InterpRefClimate(j, 5) = st.InterpRefLapse(j, 5);
    st.InterpRefClimate(j, 6) = Grid(8 - 0.5 * (lat - 35) + 2 * rng.Uniform());
    st.InterpRefClimate(j, 7) = Grid(26 - 0.3 * (lat - 35) + 2 * rng.Uniform());
    st.InterpRefClimate(j, 8) = std::nearbyint(400 + 1200 * rng.Uniform());
  }
  s.RefSiteCount = kTargets;
  return s;
}

Session& Shared() {
  static Session s = MakeSession();
  return s;
}

long PeakKilobytes() {
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return u.ru_maxrss;
}

void Label(benchmark::State& state, long peakBefore, bool literal) {
  state.counters["peak MB"] = static_cast<double>(PeakKilobytes() - peakBefore) / 1024;
  state.counters["pairs/s"] =
      benchmark::Counter((static_cast<double>(kTargets) + kStations) * kStations,
                         benchmark::Counter::kIsIterationInvariantRate);
  state.SetLabel(literal ? "plain loop, full distance arrays, 1 thread"
                         : std::to_string(WorkerCount()) + " threads");
}

// range(0): 1 interpolation, 0 minimum distance.
void BM_DoInterpolation(benchmark::State& state) {
  Session& s = Shared();
  NoProgress progress;
  const InterpMode mode = state.range(0) ? InterpMode::Interpolation : InterpMode::MinimumDistance;
  const long before = PeakKilobytes();
  for (auto _ : state) {
    DoInterpolation(s, mode, "-2", "3", progress);
    benchmark::DoNotOptimize(s.Interp.InterpRefEstimate.Data());
  }
  Label(state, before, false);
}

void BM_DoInterpolationLiteral(benchmark::State& state) {
  Session& s = Shared();
  const InterpMode mode = state.range(0) ? InterpMode::Interpolation : InterpMode::MinimumDistance;
  const long before = PeakKilobytes();
  for (auto _ : state) {
    test::LiteralInterpolation r = test::RunInterpolationLiteral(s.Interp, mode, -2, 3);
    benchmark::DoNotOptimize(r.Station.Data());
  }
  Label(state, before, true);
}

}  // namespace

BENCHMARK(BM_DoInterpolation)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DoInterpolationLiteral)
    ->Arg(1)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);
