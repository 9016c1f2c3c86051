// The interpolation map at 8000 target sites and 300 stations on the world
// coastline: a whole redraw (coast, stations, targets, no-data marks) and
// one pointer move over it (clear to the stored background, the tool-tip
// scan, the reach circle). The baselines in the same run are a plain wipe
// of the surface, and the hover done the naive way, by redrawing the map
// at every move.
#include <benchmark/benchmark.h>

#include "presentation/MapFigure.h"

using namespace varnoth;

namespace {

constexpr int kTargets = 8000, kStations = 300;
constexpr int kWidth = 720, kHeight = 360;  // the world map at its designed size

const Coastline& Coast() {
  static const Coastline coast = LoadCoastline(VARNOTH_COASTLINE);
  return coast;
}

Session& World() {
  static Session s = [] {
    Session s;
    InterpolationState& in = s.Interp;
    in.InterpRefCount = kStations;
    in.InterpTargetCount = kTargets;
    in.InterpRefLon.ReDim(kStations);
    in.InterpRefLat.ReDim(kStations);
    in.InterpRefNames.ReDim(kStations);
    in.SiteLongitude.ReDim(kTargets);
    in.SiteLatitude.ReDim(kTargets);
    in.SiteMapNames.ReDim(kTargets);
    s.ClimateData.ReDim(kTargets, 1);
    std::uint64_t g = 42;
    auto next = [&g] {
      g = g * 6364136223846793005ULL + 1442695040888963407ULL;
      return static_cast<double>(g >> 11) / 9007199254740992.0;
    };
    for (long j = 1; j <= kStations; ++j) {
      in.InterpRefLon(j) = static_cast<float>(-180 + 360 * next());
      in.InterpRefLat(j) = static_cast<float>(-60 + 140 * next());
      in.InterpRefNames(j) = "S" + std::to_string(j);
    }
    for (long i = 1; i <= kTargets; ++i) {
      in.SiteLongitude(i) = static_cast<float>(-180 + 360 * next());
      in.SiteLatitude(i) = static_cast<float>(-60 + 140 * next());
      in.SiteMapNames(i) = "T" + std::to_string(i);
      s.ClimateData(i, 1) = i % 10 == 0 ? kMissing : 1.0;
    }
    in.InterpRefLoaded = in.InterpTargetLoaded = true;
    s.ClimateLoaded = true;
    return s;
  }();
  return s;
}

void Redraw(Surface& map, const Session& s) {
  SetMapScale(map, -90, 90, -180, 180);
  map.SetBackColour(Qt::white);
  DrawCoastline(map, Coast());
  DrawStations(map, s.Interp, kMapMark);
  map.StoreBackground();
  DrawTargets(map, s.Interp, kMapMark);
  DrawNoDataTargets(map, s, kMapMark);
  map.StoreBackground();
}

void Hover(Surface& map, const Session& s, double x, double y) {
  const InterpolationState& in = s.Interp;
  benchmark::DoNotOptimize(SiteNameAt(in, x, y, kMapHover));
  map.Clear();
  for (Count i : TargetsAt(in, x, y, kMapHover))
    DrawReach(map, in.SiteLongitude(i), in.SiteLatitude(i), kMapMark, 3);
}

void BM_MapWipe(benchmark::State& state) {
  Surface map(kWidth, kHeight);
  SetMapScale(map, -90, 90, -180, 180);
  for (auto _ : state) {
    map.SetBackColour(Qt::white);
    benchmark::DoNotOptimize(map.Image().constBits());
  }
}
BENCHMARK(BM_MapWipe)->Unit(benchmark::kMillisecond);

void BM_MapRedraw(benchmark::State& state) {
  const Session& s = World();
  Surface map(kWidth, kHeight);
  for (auto _ : state) {
    Redraw(map, s);
    benchmark::DoNotOptimize(map.Image().constBits());
  }
  state.counters["segments"] = static_cast<double>(Coast().Segments.size());
}
BENCHMARK(BM_MapRedraw)->Unit(benchmark::kMillisecond);

// The pointer walks across the map, over targets now and then.
void BM_MapHover(benchmark::State& state) {
  const Session& s = World();
  Surface map(kWidth, kHeight);
  Redraw(map, s);
  long step = 0;
  for (auto _ : state) {
    const long i = 1 + (step++ * 37) % kTargets;
    Hover(map, s, s.Interp.SiteLongitude(i) + 0.05, s.Interp.SiteLatitude(i));
    benchmark::DoNotOptimize(map.Image().constBits());
  }
}
BENCHMARK(BM_MapHover)->Unit(benchmark::kMillisecond);

void BM_MapHoverByRedraw(benchmark::State& state) {
  const Session& s = World();
  Surface map(kWidth, kHeight);
  long step = 0;
  for (auto _ : state) {
    const long i = 1 + (step++ * 37) % kTargets;
    Redraw(map, s);
    Hover(map, s, s.Interp.SiteLongitude(i) + 0.05, s.Interp.SiteLatitude(i));
    benchmark::DoNotOptimize(map.Image().constBits());
  }
}
BENCHMARK(BM_MapHoverByRedraw)->Unit(benchmark::kMillisecond);

}  // namespace

namespace {

void BM_MapCoastline(benchmark::State& state) {
  Surface map(kWidth, kHeight);
  SetMapScale(map, -90, 90, -180, 180);
  for (auto _ : state) {
    map.SetBackColour(Qt::white);
    DrawCoastline(map, Coast());
    benchmark::DoNotOptimize(map.Image().constBits());
  }
}
BENCHMARK(BM_MapCoastline)->Unit(benchmark::kMillisecond);

}  // namespace

namespace {

void BM_MapTargets(benchmark::State& state) {
  const Session& s = World();
  Surface map(kWidth, kHeight);
  SetMapScale(map, -90, 90, -180, 180);
  for (auto _ : state) {
    DrawTargets(map, s.Interp, kMapMark);
    benchmark::DoNotOptimize(map.Image().constBits());
  }
}
BENCHMARK(BM_MapTargets)->Unit(benchmark::kMillisecond);

}  // namespace
