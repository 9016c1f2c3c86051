// Saving a figure for a paper: the 2-D sites scatter of 8000 sites and 1000
// samples written as a PNG at 1x and 2x, an SVG drawing and a PDF page,
// beside the baseline of drawing the same figure on the screen surface.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <memory>

#include "BenchSession.h"
#include "presentation/Colours.h"
#include "presentation/PictureFile.h"
#include "presentation/Scatter.h"

using namespace varnoth;

namespace {

constexpr int kSide = 300;

Session& Analysed() {
  static std::unique_ptr<Session> session =
      bench::AnalysedSyntheticSession(8000, 1000, 300, 11, 12);
  return *session;
}

void Draw(Surface& sites) {
  Session& s = Analysed();
  ColourSettings colours;
  ApplyColourPreset(colours);
  ScatterView view;
  view.SiteNames = view.SampleNames = NameDisplay::Hide;
  DrawSites(s, colours, view, 1, 2, 3, {&sites, nullptr});
  DrawFossil(s, colours, view, 1, 2, 3, {&sites, nullptr});
}

void BM_Picture_Baseline_ScreenDraw(benchmark::State& state) {
  Analysed();  // the analysis is not what is measured
  Surface sites(kSide, kSide);
  for (auto _ : state) {
    Draw(sites);
    benchmark::DoNotOptimize(sites.Image().constBits());
  }
  state.counters["operations"] = static_cast<double>(sites.OperationCount());
}

void Save(benchmark::State& state, PictureFormat format, int scale) {
  Surface sites(kSide, kSide);
  Draw(sites);
  const std::string path =
      (QDir::tempPath() + "/varnoth-bench-picture.").toStdString() + PictureExtension(format);
  for (auto _ : state) SavePicture(sites, path, format, scale);
  QFile::remove(QString::fromStdString(path));
}

void BM_Picture_Png1x(benchmark::State& st) { Save(st, PictureFormat::Png, 1); }
void BM_Picture_Png2x(benchmark::State& st) { Save(st, PictureFormat::Png, 2); }
void BM_Picture_Svg(benchmark::State& st) { Save(st, PictureFormat::Svg, 1); }
void BM_Picture_Pdf(benchmark::State& st) { Save(st, PictureFormat::Pdf, 1); }

}  // namespace

BENCHMARK(BM_Picture_Baseline_ScreenDraw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Picture_Png1x)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Picture_Png2x)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Picture_Svg)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Picture_Pdf)->Unit(benchmark::kMillisecond);
