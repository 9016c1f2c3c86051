// One scroll step of the diagram window on a core of 1000 samples by 300
// taxa: the columns in view, the EOF curve and the names, as HScroll1 does
// it. The baseline in the same run draws every column, page by page across
// the whole diagram; the marker move is a clear and one line.
#include <benchmark/benchmark.h>

#include <memory>

#include "BenchSession.h"
#include "presentation/DiagramFigure.h"
#include "state/Import.h"

using namespace varnoth;

namespace {

constexpr int kTaxa = 300, kSamples = 1000, kSites = 400;
// Picture1, Picture2 and Picture4 at the window's opening size.
constexpr int kWidth = 734, kHeight = 510, kEofWidth = 220, kNames = 110;

Session& Core() {
  static std::unique_ptr<Session> session = [] {
    auto s = bench::AnalysedSyntheticSession(kSites, kSamples, kTaxa, 21, 22);
    // Every fifth sample outside the envelope, so that both colours are drawn.
    for (long i = 1; i <= kSamples; i += 5) s->SampleIsOut(i) = 1;
    return s;
  }();
  return *session;
}

DiagramSettings Settings(DiagramStyle style) {
  const Session& s = Core();
  DiagramSettings set;
  ApplyColourPreset(set.Colours);
  set.Style = style;
  set.Columns = LayoutTaxaColumns(s.FossilProportion, s.FossilSampleCount, s.FossilTaxaCount, 10);
  return set;
}

// HScroll1's change: the columns (which end with the EOF curve) and the names.
void ScrollStep(const Session& s, DiagramSettings& set, Surface& p1, Surface& p2, Surface& p4) {
  DrawDiagram(s, set, p1);
  DrawEofCurve(s, set, p1, p2);
  DrawTaxaNames(s, set, p4);
}

void Scroll(benchmark::State& state, DiagramStyle style) {
  const Session& s = Core();
  DiagramSettings set = Settings(style);
  Surface p1(kWidth, kHeight), p2(kEofWidth, kHeight), p4(kWidth, kNames);
  long steps = 0;
  for (auto _ : state) {
    set.Scroll = (set.Scroll + set.Columns.ScrollSmallChange) % (set.Columns.ScrollMax + 1);
    ScrollStep(s, set, p1, p2, p4);
    benchmark::DoNotOptimize(p1.Image().constBits());
    ++steps;
  }
  long shown = 0;
  for (long t = 1; t <= kTaxa; ++t) shown += ColumnInView(set.Columns, t, set.Scroll) ? 1 : 0;
  state.counters["columns_in_view"] = static_cast<double>(shown);
}

// Baseline: every column drawn, a page of the scroll bar at a time.
void AllColumns(benchmark::State& state, DiagramStyle style) {
  const Session& s = Core();
  DiagramSettings set = Settings(style);
  Surface p1(kWidth, kHeight), p2(kEofWidth, kHeight), p4(kWidth, kNames);
  long pages = 0;
  for (auto _ : state) {
    pages = 0;
    for (long v = 0; v <= set.Columns.ScrollMax + set.Columns.ScrollLargeChange;
         v += set.Columns.ScrollLargeChange, ++pages) {
      set.Scroll = v;
      ScrollStep(s, set, p1, p2, p4);
    }
    benchmark::DoNotOptimize(p1.Image().constBits());
  }
  state.counters["pages"] = static_cast<double>(pages);
}

void BM_Diagram_Baseline_AllColumns_Bar(benchmark::State& st) { AllColumns(st, DiagramStyle::Bar); }
void BM_Diagram_ScrollStep_Bar(benchmark::State& st) { Scroll(st, DiagramStyle::Bar); }
void BM_Diagram_ScrollStep_Curve(benchmark::State& st) { Scroll(st, DiagramStyle::Area); }
void BM_Diagram_ScrollStep_DotCurve(benchmark::State& st) { Scroll(st, DiagramStyle::DotCurve); }

// The selected sample moves: the stored background and one line per panel.
void BM_Diagram_MarkerMove(benchmark::State& state) {
  Session& s = Core();
  DiagramSettings set = Settings(DiagramStyle::Bar);
  Surface p1(kWidth, kHeight), p2(kEofWidth, kHeight), p4(kWidth, kNames);
  ScrollStep(s, set, p1, p2, p4);
  for (auto _ : state) {
    s.SampleCursor = static_cast<Count>(s.SampleCursor % kSamples + 1);
    DrawDiagramMarker(s, set, p1);
    DrawEofMarker(s, set, p2);
    benchmark::DoNotOptimize(p1.Image().constBits());
  }
  s.SampleCursor = 1;
}

}  // namespace

BENCHMARK(BM_Diagram_Baseline_AllColumns_Bar)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Diagram_ScrollStep_Bar)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Diagram_ScrollStep_Curve)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Diagram_ScrollStep_DotCurve)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Diagram_MarkerMove)->Unit(benchmark::kMillisecond);
