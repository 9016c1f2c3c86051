// One redraw of both scatter figures while the 3-D view turns: taxa, sites
// and the fossil path on 300 taxa x 8000 sites (and 1000 samples), against a
// baseline of the same marks put on an image by QPainter directly.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <memory>

#include "BenchSession.h"
#include "presentation/Colours.h"
#include "presentation/Scatter.h"
#include "state/Import.h"

using namespace varnoth;

namespace {

constexpr int kTaxa = 300, kSites = 8000, kSamples = 1000, kSide = 320;

// The analysed session, built once through the program's own road.
Session& Analysed() {
  static std::unique_ptr<Session> session =
      bench::AnalysedSyntheticSession(kSites, kSamples, kTaxa, 11, 12);
  return *session;
}

void Redraw(benchmark::State& state, bool names, bool stereo) {
  Session& s = Analysed();
  ColourSettings colours;
  ApplyColourPreset(colours);
  ScatterView view;
  view.ThreeD = true;
  view.Stereo = stereo;
  if (!names) view.TaxaNames = view.SiteNames = view.SampleNames = NameDisplay::Hide;
  Surface t0(kSide, kSide), t1(kSide, kSide), s0(kSide, kSide), s1(kSide, kSide);
  for (auto _ : state) {
    s.RotationAngles.A1 += 0.01;
    DrawSites(s, colours, view, 1, 2, 3, {&s0, &s1});
    DrawTaxa(s, colours, view, 1, 2, 3, {&t0, &t1});
    DrawFossil(s, colours, view, 1, 2, 3, {&s0, &s1});
    benchmark::DoNotOptimize(s0.Image().constBits());
    benchmark::DoNotOptimize(t0.Image().constBits());
  }
  state.counters["marks"] = kTaxa + kSites + kSamples;
}

void BM_Redraw3D_NamesHidden(benchmark::State& state) { Redraw(state, false, false); }
void BM_Redraw3D_AllNames(benchmark::State& state) { Redraw(state, true, false); }
void BM_Redraw3D_Stereo_NamesHidden(benchmark::State& state) { Redraw(state, false, true); }

// Baseline: the same number of filled marks and path segments drawn at the
// scores' places by QPainter alone, no projection, no axes, no surface.
void BM_Baseline_RawPainter(benchmark::State& state) {
  Session& s = Analysed();
  QImage taxa(kSide, kSide, QImage::Format_RGB32), sites(kSide, kSide, QImage::Format_RGB32);
  const double scale = kSide / 9.6;
  auto at = [&](double x, double y) {
    return QPointF(kSide / 2 + x * scale, kSide / 2 - y * scale);
  };
  for (auto _ : state) {
    taxa.fill(Qt::white);
    sites.fill(Qt::white);
    {
      QPainter p(&taxa);
      p.setPen(Qt::blue);
      p.setBrush(Qt::blue);
      for (long i = 1; i <= s.TaxaCount; ++i)
        p.drawEllipse(at(s.Loadings(i, 1), s.Loadings(i, 2)), 2.3, 2.3);
    }
    {
      QPainter p(&sites);
      p.setPen(Qt::green);
      p.setBrush(Qt::green);
      for (long i = 1; i <= s.RefSiteCount; ++i)
        p.drawEllipse(at(s.RefScores(i, 1), s.RefScores(i, 2)), 2.3, 2.3);
      p.setPen(QColor(255, 150, 0));
      for (long i = 2; i <= s.FossilSampleCount; ++i)
        p.drawLine(at(s.FossilScores(i - 1, 1), s.FossilScores(i - 1, 2)),
                   at(s.FossilScores(i, 1), s.FossilScores(i, 2)));
    }
    benchmark::DoNotOptimize(sites.constBits());
  }
}

}  // namespace

BENCHMARK(BM_Baseline_RawPainter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Redraw3D_NamesHidden)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Redraw3D_Stereo_NamesHidden)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Redraw3D_AllNames)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  Analysed();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
