#include <gtest/gtest.h>

#include "diagram/DiagramLayout.h"
#include "diagram/DiagramSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

std::vector<std::vector<double>> Rows(long n, long m, double v) {
  return std::vector<std::vector<double>>(static_cast<std::size_t>(n),
                                          std::vector<double>(static_cast<std::size_t>(m), v));
}

Array1<Flag> Flags(std::initializer_list<int> set) {
  Array1<Flag> f(static_cast<long>(set.size()));
  long i = 1;
  for (int v : set) f(i++) = static_cast<Flag>(v);
  return f;
}

std::vector<long> Samples(const std::vector<Bar>& bars) {
  std::vector<long> out;
  for (const Bar& b : bars) out.push_back(b.Sample);
  return out;
}

}  // namespace

TEST(DiagramLayout, TextLabelsStandAtEvenDistance) {
  Session s = Core(Rows(4, 2, 0.5), TextLabels(4), true);
  Array1<double> y = SamplePositions(s);
  EXPECT_EQ(y(1), 10);
  EXPECT_EQ(y(2), 20);
  EXPECT_EQ(y(3), 30);
  EXPECT_EQ(y(4), 40);
}

TEST(DiagramLayout, NumberLabelsSpaceOutInProportionToDepth) {
  Session s = Core(Rows(3, 2, 0.5), {"0", "10", "100"}, false);
  Array1<double> y = SamplePositions(s);
  EXPECT_DOUBLE_EQ(y(1), 10);
  EXPECT_DOUBLE_EQ(y(2), 12);
  EXPECT_DOUBLE_EQ(y(3), 30);
  // The gaps keep the depths' proportions: 10 of 100 is a tenth of the axis.
  EXPECT_DOUBLE_EQ((y(2) - y(1)) / (y(3) - y(1)), 0.1);

  Session t = Core(Rows(3, 2, 0.5), {"0", "1", "3"}, false);
  EXPECT_DOUBLE_EQ(SamplePosition(t, 1), 10);
  EXPECT_NEAR(SamplePosition(t, 2), 16.67, 0.005);
  EXPECT_DOUBLE_EQ(SamplePosition(t, 2), 50.0 / 3);
  EXPECT_DOUBLE_EQ(SamplePosition(t, 3), 30);
}

TEST(DiagramLayout, EqualFirstAndLastDepthsOrATextLabelFail) {
  Session s = Core(Rows(3, 2, 0.5), {"5", "7", "5"}, false);
  EXPECT_THROW(SamplePosition(s, 2), RuntimeFailure);
  Session t = Core(Rows(3, 2, 0.5), {"0", "ten", "20"}, false);
  try {
    SamplePosition(t, 2);
    FAIL();
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::TypeMismatch);
  }
}

TEST(DiagramLayout, ColumnsAreAsWideAsTheirLargestValuePlusTheGap) {
  Session s = Core({{0.2, 0.1, 0.05}, {0.1, 0.5, 0.1}}, TextLabels(2), true);
  TaxaColumns c = LayoutTaxaColumns(s.FossilProportion, 2, 3, 10);
  EXPECT_EQ(c.DiagramHScale, 1.0f);
  EXPECT_EQ(c.DiagramColumnGap, 10);
  EXPECT_EQ(c.DiagramColumnStart(1), 5.0f);
  EXPECT_EQ(c.DiagramColumnStart(2), 35.0f);   // 20 + 5 + 10
  EXPECT_EQ(c.DiagramColumnStart(3), 95.0f);   // 50 + 35 + 10
  EXPECT_EQ(c.DiagramColumnStart(4), 115.0f);  // 10 + 95 + 10
  EXPECT_EQ(c.DiagramLastWidth, 10.0f);
  EXPECT_FALSE(c.ScrollVisible);
  EXPECT_EQ(c.ScrollMax, -375);
  EXPECT_EQ(c.ScrollLargeChange, 500);
  EXPECT_EQ(c.ScrollSmallChange, 10);

  // Half the exaggeration: a gap of 20 percent units.
  TaxaColumns h = LayoutTaxaColumns(s.FossilProportion, 2, 3, 5);
  EXPECT_EQ(h.DiagramHScale, 0.5f);
  EXPECT_EQ(h.DiagramColumnGap, 20);
  EXPECT_EQ(h.DiagramColumnStart(2), 45.0f);
  EXPECT_EQ(h.ScrollLargeChange, 1000);
  // x of a value and of the zero line.
  EXPECT_DOUBLE_EQ(ZeroLineX(c, 2, 0), 35);
  EXPECT_DOUBLE_EQ(ValueX(c, 2, 0, 0.5), 85);
  EXPECT_DOUBLE_EQ(ValueX(h, 2, 10, 0.5), (50 + 45 - 10) * 0.5);
}

TEST(DiagramLayout, ManyTaxaScrollAndOnlyColumnsInViewAreDrawn) {
  Session s = Core(Rows(5, 300, 0.2), TextLabels(5), true);
  TaxaColumns c = LayoutTaxaColumns(s.FossilProportion, 5, 300, 10);
  EXPECT_TRUE(c.ScrollVisible);
  // Columns of 20 % plus a gap of 10: taxon t starts at 5 + 30 (t - 1).
  EXPECT_EQ(c.DiagramColumnStart(300), 5.0f + 30 * 299);
  EXPECT_EQ(c.ScrollMax, static_cast<long>(5 + 30 * 299 - 500 + 20 + 20));
  long inView = 0;
  for (long t = 1; t <= 300; ++t) inView += ColumnInView(c, t, 0);
  EXPECT_EQ(inView, 17);  // starts 5, 35, ..., 485
  EXPECT_TRUE(ColumnInView(c, 17, 0));
  EXPECT_FALSE(ColumnInView(c, 18, 0));
  // Scrolled to 3000: the columns around there come into view.
  EXPECT_FALSE(ColumnInView(c, 1, 3000));
  EXPECT_TRUE(ColumnInView(c, 101, 3000));  // starts at 3005
  EXPECT_FALSE(ColumnInView(c, 99, 3000));  // ends at 2975 + 30 - 3000 < 0
  EXPECT_TRUE(ColumnInView(c, 100, 3000));  // its extent reaches 3005
}

TEST(DiagramLayout, TicksEveryTenWhileTheColumnLasts) {
  Session s = Core({{0.2, 0.01, 0.36}}, TextLabels(1), true);
  TaxaColumns c = LayoutTaxaColumns(s.FossilProportion, 1, 3, 10);
  EXPECT_EQ(ColumnTickValues(c, 1), (std::vector<double>{0, 10, 20}));          // extent 30
  EXPECT_EQ(ColumnTickValues(c, 2), (std::vector<double>{0}));                  // extent 11
  EXPECT_EQ(ColumnTickValues(c, 3), (std::vector<double>{0, 10, 20, 30, 40}));  // extent 46
}

TEST(DiagramLayout, StylesDrawTheirParts) {
  StyleParts bar = PartsOf(DiagramStyle::Bar), area = PartsOf(DiagramStyle::Area),
             dot = PartsOf(DiagramStyle::Dot), curve = PartsOf(DiagramStyle::Curve),
             dotCurve = PartsOf(DiagramStyle::DotCurve);
  EXPECT_TRUE(bar.Bars && !bar.ClosingBars && !bar.Curve && !bar.Dots);
  EXPECT_TRUE(!area.Bars && area.ClosingBars && area.Curve && !area.Dots);
  EXPECT_TRUE(!dot.Bars && !dot.ClosingBars && !dot.Curve && dot.Dots);
  EXPECT_TRUE(curve.Bars && !curve.ClosingBars && curve.Curve && !curve.Dots);
  EXPECT_TRUE(!dotCurve.Bars && !dotCurve.ClosingBars && dotCurve.Curve && dotCurve.Dots);
  for (auto p : {bar, area, dot, curve, dotCurve}) EXPECT_TRUE(p.ZeroLine && p.Ticks);
}

TEST(DiagramLayout, CurveStyleWithAnEmptySampleLeavesAGapAndClosesIt) {
  Array1<Flag> empty = Flags({0, 0, 1, 0, 0}), marked = Flags({0, 0, 0, 0, 0});
  // The curve skips both segments that touch sample 3.
  EXPECT_EQ(CurveSegments(empty, 5), (std::vector<long>{2, 5}));
  // A bar before the gap, then the two ends of the core.
  EXPECT_EQ(Samples(ClosingBars(empty, marked, 5)), (std::vector<long>{2, 1, 5}));
  // An empty first sample closes at sample 2; marked samples come last in
  // the mark colour.
  Array1<Flag> firstEmpty = Flags({1, 0, 0, 0}), someMarked = Flags({0, 1, 0, 1});
  std::vector<Bar> bars = ClosingBars(firstEmpty, someMarked, 4);
  EXPECT_EQ(Samples(bars), (std::vector<long>{2, 1, 4, 2, 4}));
  EXPECT_TRUE(bars[0].MarkColour);  // sample 2 is marked: colour by mark
  EXPECT_FALSE(bars[1].MarkColour);
  EXPECT_TRUE(bars[2].MarkColour);
  EXPECT_TRUE(bars[3].MarkColour && bars[4].MarkColour);
  // A core of one sample has one end.
  EXPECT_EQ(Samples(ClosingBars(Flags({0}), Flags({0}), 1)), (std::vector<long>{1}));
}

TEST(DiagramLayout, DotsFromHalfAPercentIncluded) {
  EXPECT_TRUE(HasDot(0.005));
  EXPECT_FALSE(HasDot(0.0049));
  EXPECT_TRUE(HasDot(0.4));
  EXPECT_FALSE(HasDot(0));
}

TEST(DiagramLayout, EofAxisAtSliderZeroHasTicksAtMinusOneAndOne) {
  EXPECT_EQ(ScatterZoomFor(0), 1);
  EXPECT_EQ(EofTickFor(1), 2);
  EXPECT_EQ(EofAxisTicks(1), (std::vector<double>{-1, 1}));
  EXPECT_EQ(ScatterZoomFor(1), 2);
  EXPECT_EQ(EofTickFor(2), 1);
  EXPECT_EQ(EofAxisTicks(2), (std::vector<double>{-2, -1, 0, 1, 2}));
  EXPECT_EQ(EofTickFor(4), 1);
  EXPECT_EQ(EofTickFor(16), 4);
  EXPECT_EQ(EofTickFor(32), 4);  // from 32 on an eighth
  EXPECT_EQ(EofTickFor(64), 8);
  EXPECT_EQ(EofAxisTicks(16), (std::vector<double>{-16, -12, -8, -4, 0, 4, 8, 12, 16}));
}

TEST(DiagramLayout, OutCountSkipsEmptySamples) {
  Session s = Core({{0.5, 0.5}, {0, 0}, {0.2, 0.8}, {1, 0}}, TextLabels(4), true);
  s.SampleIsOut(2) = s.SampleIsOut(3) = s.SampleIsOut(4) = 1;
  EXPECT_EQ(OutCount(s), 2);
  EXPECT_EQ(OutCountText(2), "Out count:  2");
}

TEST(DiagramLayout, NamesEndingInAeStandUprightTheOthersInItalics) {
  Array1<std::string> names(4);
  names(1) = "Poaceae";
  names(2) = "Pinus";
  names(3) = "ASTERACEAE";
  names(4) = "Quercus";
  std::vector<bool> italic = TaxonNameItalic(names, 4);
  EXPECT_FALSE(italic[1]);
  EXPECT_TRUE(italic[2]);
  EXPECT_FALSE(italic[3]);
  EXPECT_TRUE(italic[4]);

  Array1<std::string> none(3);
  none(1) = "Pinus";
  none(2) = "Quercus";
  none(3) = "Alnus";  // no name ends in "ae": all upright
  for (bool i : TaxonNameItalic(none, 3)) EXPECT_FALSE(i);

  Array1<std::string> mixed(2);
  mixed(1) = "Rosa";
  mixed(2) = "CyperAe";  // only "ae" and "AE" count
  for (bool i : TaxonNameItalic(mixed, 2)) EXPECT_FALSE(i);
}

TEST(DiagramLayout, SteppingWrapsAtBothEnds) {
  EXPECT_EQ(StepSample(5, 1, 5), 1);
  EXPECT_EQ(StepSample(1, -1, 5), 5);
  EXPECT_EQ(StepSample(3, 1, 5), 4);
  EXPECT_EQ(StepSample(3, -1, 5), 2);
}
