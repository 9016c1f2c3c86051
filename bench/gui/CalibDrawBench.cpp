// The calibration windows' handlers against the engine alone in the same
// run: a move of the smoothing slider (the chain's tail from the smoothing
// with Fig.5 to Fig.8 painted and shown), the opening of the chart (the
// fine grid, the main figure, the section and the curves), and the matrix
// applied down a core of 1000 samples with its picture.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "CalibSynthetic.h"
#include "calibration/FineGrid.h"
#include "calibration/HistMatrix.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "presentation/CalibFigure.h"
#include "presentation/Colours.h"
#include "presentation/Surface.h"

using namespace varnoth;

namespace {

constexpr long kPairs = bench::kCalibPairs;
constexpr int kFigure = 200;  // the tool's pictures

struct Tool {
  CalibState c = bench::MakeCalibState();
  CalibSettings st;
  ColourSettings colours;
  CalibImages images{colours, [] { return 1.0; }};
  std::array<Surface, 6> pictures;
  Tool() {
    ApplyColourPreset(colours);
    for (Surface& s : pictures) s.Resize(kFigure, kFigure);
    ChainContext ctx;
    ctx.RefSiteCount = kPairs;
    RunChainFrom(c, st, ChainStep::GaussianModel, ctx);
  }
  void Show() {
    for (int pic = 0; pic < 6; ++pic) {
      if (!images.Dirty[static_cast<std::size_t>(pic)]) continue;
      images.Dirty[static_cast<std::size_t>(pic)] = false;
      ShowMatrixImage(images.Image(pic), pictures[static_cast<std::size_t>(pic)]);
    }
    Surface& fig8 = pictures[5];
    fig8.StoreBackground();
    CalibShowMode(c, false, fig8);
    CalibShowAve(c, false, fig8);
    benchmark::DoNotOptimize(fig8.Image().constBits());
  }
};

void BM_SmoothingSliderEngine(benchmark::State& state) {
  Tool t;
  ChainContext ctx;
  ctx.RefSiteCount = kPairs;
  long width = 10;
  for (auto _ : state) {
    t.st.Slider3 = width;
    width = width == 10 ? 11 : 10;
    RerunAfter(t.c, t.st, ChainChange::Smoothing, ctx);
    benchmark::DoNotOptimize(t.c.CalibMatrix.Data());
  }
}
BENCHMARK(BM_SmoothingSliderEngine)->Unit(benchmark::kMillisecond);

void BM_SmoothingSliderWindow(benchmark::State& state) {
  Tool t;
  ChainContext ctx;
  ctx.RefSiteCount = kPairs;
  ctx.Painter = &t.images;
  long width = 10;
  for (auto _ : state) {
    t.st.Slider3 = width;
    width = width == 10 ? 11 : 10;
    RerunAfter(t.c, t.st, ChainChange::Smoothing, ctx);
    t.Show();
  }
}
BENCHMARK(BM_SmoothingSliderWindow)->Unit(benchmark::kMillisecond);

void BM_ChartOpenEngine(benchmark::State& state) {
  Tool t;
  FineGrid fine;
  for (auto _ : state) {
    PrepareChart(t.c, t.st, fine);
    benchmark::DoNotOptimize(fine.FineProb.Data());
  }
}
BENCHMARK(BM_ChartOpenEngine)->Unit(benchmark::kMillisecond);

void BM_ChartOpenWindow(benchmark::State& state) {
  Tool t;
  FineGrid fine;
  Surface main(401, 401), section(120, 401);
  for (auto _ : state) {
    PrepareChart(t.c, t.st, fine);
    main.SetScale(0, 0, 400, 400);
    main.SetBackColour(Qt::white);
    main.DrawImage(0, 0, 400, 400, ChartImage(fine, true, 100, t.colours));
    main.StoreBackground();
    ChartShowAve(fine, false, main);
    ChartShowMode(fine, false, main);
    DrawSectionProfile(fine, SectionColumn(50), 100, false, section);
    const SectionIntervals r = DrawIntervals(fine, t.st, SectionColumn(50), 0, 30);
    benchmark::DoNotOptimize(r.Average.data());
    benchmark::DoNotOptimize(main.Image().constBits());
  }
}
BENCHMARK(BM_ChartOpenWindow)->Unit(benchmark::kMillisecond);

// A core of 1000 samples with text labels, its estimates wandering over
// the range.
struct Core {
  Session s;
  Tool t;
  explicit Core(long n) {
    s.FossilSampleCount = static_cast<Count>(n);
    s.FossilLabelsAreText = true;
    s.FossilLabels.ReDim(n);
    s.FossilEmptySample.ReDim(n);
    s.ReconValue.ReDim(n, 1);
    for (long k = 1; k <= n; ++k) {
      s.FossilLabels(k) = std::to_string(k);
      s.ReconValue(k, 1) = 15 + 10 * std::sin(k / 37.0);
    }
    s.CurrentParameter = 1;
    ReturnData(t.c);
  }
};

constexpr Count kRows = 494;  // the picture's rows at the window's size

void BM_HistMatrixEngine(benchmark::State& state) {
  Core core(1000);
  NoProgress progress;
  HistState h;
  for (auto _ : state) {
    BuildHistMatrix(h, core.s, core.t.c, 0, 30, 1, kRows, progress);
    benchmark::DoNotOptimize(h.HistMatrix.Data());
  }
}
BENCHMARK(BM_HistMatrixEngine)->Unit(benchmark::kMillisecond);

void BM_HistMatrixWindow(benchmark::State& state) {
  Core core(1000);
  NoProgress progress;
  HistState h;
  Surface picture(137, 340);
  for (auto _ : state) {
    HistImage image(core.t.colours, 1.0, false, kMatrixSteps, kRows);
    BuildHistMatrix(h, core.s, core.t.c, 0, 30, 1, kRows, progress, &image);
    picture.SetBackColour(Qt::white);
    picture.DrawImage(0, 0, 1, 1, image.Image);
    DrawHistLines(h, true, 0, 30, 0, 1, picture);
    benchmark::DoNotOptimize(picture.Image().constBits());
  }
}
BENCHMARK(BM_HistMatrixWindow)->Unit(benchmark::kMillisecond);

}  // namespace
