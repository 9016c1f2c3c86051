// One move of the reconstruction window's threshold slider: the threshold,
// the whole analogue search, the round axis limits, the curve with its
// moving average and the estimated-observed scatter, on the pictures at the
// window's opening size. Two tables: the size of a large regional database
// (4833 sites x 134 taxa, a core of 49 samples) and a very large one (8000
// x 300, 1000 samples). The baseline in the same run is the search alone.
#include <benchmark/benchmark.h>

#include <memory>

#include "BenchSession.h"
#include "presentation/ReconstructionFigure.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/Curves.h"

using namespace varnoth;

namespace {

// Picture1 and Picture2 at the window's opening size.
constexpr int kCurveWidth = 137, kCurveHeight = 459, kScatter = 137;
constexpr int kParams = 3;

// An analysed session with climate at the sites and, for the scatter,
// leave-one-out estimates near the climate (their values do not change
// the drawing's cost).
std::unique_ptr<Session> Make(int sites, int samples, int taxa) {
  auto s = bench::AnalysedSyntheticSession(sites, samples, taxa, 31, 32);
  s->ClimateParamCount = kParams;
  s->ClimateParamNames.ReDim(kParams);
  s->ClimateData.ReDim(sites, kParams);
  s->ReconRefValue.ReDim(sites, kParams);
  for (int i = 1; i <= sites; ++i)
    for (int p = 1; p <= kParams; ++p) {
      s->ClimateData(i, p) = 30 * s->RefProportion(i, p) - 2 * p + 0.001 * i;
      s->ReconRefValue(i, p) = s->ClimateData(i, p) + ((i * 7) % 11 - 5) * 0.1;
    }
  for (int p = 1; p <= kParams; ++p) s->ClimateParamNames(p) = "P" + std::to_string(p);
  s->ClimateLoaded = true;
  s->CurrentParameter = 1;
  // Every fifth sample outside the envelope, so that those lines are drawn too.
  for (long k = 1; k <= samples; k += 5) s->SampleIsOut(k) = 1;
  return s;
}

Session& Regional() {
  static std::unique_ptr<Session> s = Make(4833, 49, 134);
  return *s;
}
Session& Large() {
  static std::unique_ptr<Session> s = Make(8000, 1000, 300);
  return *s;
}

AnalogueSettings Settings() {
  AnalogueSettings st;  // the window's defaults: 8 analogues, no weighting
  return st;
}

// The slider alternates between two positions, as under a dragging hand.
long Position(long step) { return step % 2 == 0 ? 20 : 21; }

void SearchAlone(benchmark::State& state, Session& s) {
  NoProgress progress;
  AnalogueSettings st = Settings();
  long step = 0;
  for (auto _ : state) {
    DefineThreshold(st, Position(step++));
    RunReconstruction(s, st, progress);
    benchmark::DoNotOptimize(s.ReconValue.Data());
  }
}

void Slider2Move(benchmark::State& state, Session& s) {
  NoProgress progress;
  AnalogueSettings st = Settings();
  Surface picture1(kCurveWidth, kCurveHeight), picture2(kScatter, kScatter);
  CurveSettings set;
  ApplyColourPreset(set.Colours);
  set.ErrorBars = true;
  long step = 0;
  for (auto _ : state) {
    DefineThreshold(st, Position(step++));
    RunReconstruction(s, st, progress);
    const ScaleLimits l = CurveLimits(s, s.CurrentParameter);
    set.Low = l.Low;
    set.High = l.High;
    DrawReconstructionCurve(s, s.CurrentParameter, set, picture1);
    DrawEstObsScatter(s, s.CurrentParameter, set, picture2);
    benchmark::DoNotOptimize(picture1.Image().constBits());
    benchmark::DoNotOptimize(picture2.Image().constBits());
  }
}

void BM_MAT_Baseline_Search_4833x134x49(benchmark::State& st) { SearchAlone(st, Regional()); }
void BM_MAT_Slider2Move_4833x134x49(benchmark::State& st) { Slider2Move(st, Regional()); }
void BM_MAT_Baseline_Search_8000x300x1000(benchmark::State& st) { SearchAlone(st, Large()); }
void BM_MAT_Slider2Move_8000x300x1000(benchmark::State& st) { Slider2Move(st, Large()); }

}  // namespace

BENCHMARK(BM_MAT_Baseline_Search_4833x134x49)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MAT_Slider2Move_4833x134x49)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MAT_Baseline_Search_8000x300x1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MAT_Slider2Move_8000x300x1000)->Unit(benchmark::kMillisecond);

namespace {
// The drawing alone, after one search: the curve and the scatter apart.
void DrawOnly(benchmark::State& state, Session& s, bool scatter) {
  NoProgress progress;
  AnalogueSettings st = Settings();
  RunReconstruction(s, st, progress);
  Surface picture1(kCurveWidth, kCurveHeight), picture2(kScatter, kScatter);
  CurveSettings set;
  ApplyColourPreset(set.Colours);
  set.ErrorBars = true;
  const ScaleLimits l = CurveLimits(s, s.CurrentParameter);
  set.Low = l.Low;
  set.High = l.High;
  for (auto _ : state) {
    if (scatter)
      DrawEstObsScatter(s, s.CurrentParameter, set, picture2);
    else
      DrawReconstructionCurve(s, s.CurrentParameter, set, picture1);
    benchmark::DoNotOptimize(picture1.Image().constBits());
  }
}
void BM_MAT_CurveOnly_8000x300x1000(benchmark::State& st) { DrawOnly(st, Large(), false); }
void BM_MAT_ScatterOnly_8000x300x1000(benchmark::State& st) { DrawOnly(st, Large(), true); }
}  // namespace
BENCHMARK(BM_MAT_CurveOnly_8000x300x1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MAT_ScatterOnly_8000x300x1000)->Unit(benchmark::kMillisecond);
