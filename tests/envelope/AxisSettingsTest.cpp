#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "envelope/AxisSettings.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/TestSupport.h"

using namespace varnoth;
using varnoth::test::Example;
using varnoth::test::FakeDialogs;
using varnoth::test::TempDir;

namespace {

// The example data through the whole road: 22 EOFs.
Session Analysed() {
  Session s;
  FakeDialogs dialogs;
  NoProgress none;
  EXPECT_TRUE(ImportReference(s, Example("reference.csv"), dialogs, none).Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, none);
  EXPECT_TRUE(ImportFossil(s, Example("fossil.csv"), dialogs, none).Ok);
  return s;
}

// A reference table of three taxa and five sites, analysed.
Session ThreeTaxa(const TempDir& dir) {
  Session s;
  FakeDialogs dialogs;
  NoProgress none;
  const std::string table =
      "Site,A,B,C\r\n"
      "s1,10,20,70\r\n"
      "s2,30,30,40\r\n"
      "s3,50,10,40\r\n"
      "s4,5,60,35\r\n"
      "s5,25,45,30\r\n";
  EXPECT_TRUE(ImportReference(s, dir.Write("three.csv", table), dialogs, none).Ok);
  ApplyPreTreatment(s, PreTreatmentSettings{}, none);
  return s;
}

double Rounded3(double v) { return std::nearbyint(v * 1000) / 1000; }

}  // namespace

TEST(AxisSettingsLoad, FlatViewListsTwoEnvelopeAxes) {
  Session s = Analysed();
  s.EnvelopeAxisCount = 3;
  s.EnvelopeAxes(1) = 4;
  s.EnvelopeAxes(2) = 2;
  s.EnvelopeAxes(3) = 7;
  const AxisChoice c = LoadAxisChoice(s, false);
  EXPECT_EQ(s.VisibleAxisCount, 2);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  EXPECT_EQ(c.List2, (std::vector<Count>{4, 2}));
  EXPECT_EQ(c.Combo[1], 4);
  EXPECT_EQ(c.Combo[2], 2);
  EXPECT_EQ(c.Combo[3], 7);  // kept for the turning view, though hidden
  EXPECT_FALSE(c.MoreAxis);
}

TEST(AxisSettingsLoad, TurningViewListsThree) {
  Session s = Analysed();
  const AxisChoice c = LoadAxisChoice(s, true);
  EXPECT_EQ(s.VisibleAxisCount, 3);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  EXPECT_EQ(c.List2, (std::vector<Count>{1, 2, 3}));
}

TEST(AxisSettingsLoad, MoreAxisKeepsTheWholeList) {
  Session s = Analysed();
  s.MoreAxis = true;
  s.EnvelopeAxisCount = 5;
  for (Count k = 1; k <= 5; ++k) s.EnvelopeAxes(k) = static_cast<Count>(6 - k);
  const AxisChoice c = LoadAxisChoice(s, true);
  EXPECT_TRUE(c.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 5);
  EXPECT_EQ(c.List2, (std::vector<Count>{5, 4, 3, 2, 1}));
}

TEST(AxisSettingsLoad, EofCountOfThePanel) {
  Session s;
  EXPECT_EQ(PanelEofCount(s), 0);
  s.FossilTaxaCount = 9;  // the fossil table alone
  EXPECT_EQ(PanelEofCount(s), 9);
  s.RefTaxaCount = 9;
  s.FossilTaxaCount = 0;
  EXPECT_EQ(PanelEofCount(s), 9);
}

TEST(AxisSettingsLists, AddTakesOnlyEofsNotYetListed) {
  std::vector<Count> list{1, 2, 3};
  AddToList(list, {5, 2, 9, 5});
  EXPECT_EQ(list, (std::vector<Count>{1, 2, 3, 5, 9}));
}

TEST(AxisSettingsLists, DeleteKeepsTheEntriesOnScreen) {
  std::vector<Count> list{1, 2, 3, 5, 9, 11};
  DeleteFromList(list, {0, 1, 2, 3, 5}, 3);
  EXPECT_EQ(list, (std::vector<Count>{1, 2, 3, 9}));
  DeleteFromList(list, {3}, 3);
  EXPECT_EQ(list, (std::vector<Count>{1, 2, 3}));
  DeleteFromList(list, {2}, 2);  // the flat view keeps only two
  EXPECT_EQ(list, (std::vector<Count>{1, 2}));
  DeleteFromList(list, {0, 1}, 2);
  EXPECT_EQ(list, (std::vector<Count>{1, 2}));
}

TEST(AxisSettingsMoreAxis, OffGoesBackToTheAxesOnScreen) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, true);
  MoreAxisOn(s, c);
  EXPECT_TRUE(s.MoreAxis);
  AddToList(c.List2, {8, 6});
  ShowKiyo(s, c.List2, 1, 10);
  EXPECT_EQ(s.EnvelopeAxisCount, 5);
  MoreAxisOff(s, c, true);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_FALSE(c.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  EXPECT_EQ(c.List2, (std::vector<Count>{1, 2, 3}));
  MoreAxisOff(s, c, false);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  EXPECT_EQ(c.List2, (std::vector<Count>{1, 2}));
}

TEST(AxisSettingsReflect, ThreeEofsInTheTurningViewClearMoreAxisByItself) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, true);
  MoreAxisOn(s, c);
  c.Combo = {0, 1, 2, 3};
  c.List2 = {4, 5, 6};
  const ReflectOutcome r = Reflect(s, c, true);
  EXPECT_TRUE(r.MoreAxisCleared);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_FALSE(c.MoreAxis);
  // Without MoreAxis the combos set the axes.
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  for (Count k = 1; k <= 3; ++k) {
    EXPECT_EQ(s.EnvelopeAxes(k), k);
    EXPECT_EQ(s.DisplayAxes(k), k);
  }
  EXPECT_TRUE(r.Redraw);
  EXPECT_TRUE(r.RunEnvelope);
}

TEST(AxisSettingsReflect, TwoEofsInTheFlatViewClearItToo) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, false);
  MoreAxisOn(s, c);
  EXPECT_TRUE(Reflect(s, c, false).MoreAxisCleared);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
}

TEST(AxisSettingsReflect, ThreeEofsInTheFlatViewKeepOneInvisible) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, false);
  MoreAxisOn(s, c);
  AddToList(c.List2, {9});
  const ReflectOutcome r = Reflect(s, c, false);
  EXPECT_FALSE(r.MoreAxisCleared);
  EXPECT_TRUE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 3);
  EXPECT_EQ(s.EnvelopeAxes(3), 9);
  EXPECT_EQ(s.DisplayAxes(3), 9);
}

TEST(AxisSettingsReflect, MoreAxesSetTheEnvelopeAndTheRingInListOrder) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, true);
  MoreAxisOn(s, c);
  c.List2 = {7, 1, 22, 3, 15};
  Reflect(s, c, true);
  EXPECT_TRUE(s.MoreAxis);
  EXPECT_EQ(s.EnvelopeAxisCount, 5);
  for (Count k = 1; k <= 5; ++k) {
    EXPECT_EQ(s.EnvelopeAxes(k), c.List2[static_cast<std::size_t>(k - 1)]);
    EXPECT_EQ(s.DisplayAxes(k), c.List2[static_cast<std::size_t>(k - 1)]);
  }
}

TEST(AxisSettingsReflect, WithoutMoreAxisTheCombosSetTheFirstThree) {
  Session s = Analysed();
  AxisChoice c = LoadAxisChoice(s, false);
  c.Combo = {0, 5, 3, 8};
  const ReflectOutcome r = Reflect(s, c, false);
  EXPECT_FALSE(r.MoreAxisCleared);
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  EXPECT_EQ(s.EnvelopeAxes(1), 5);
  EXPECT_EQ(s.EnvelopeAxes(2), 3);
  EXPECT_EQ(s.EnvelopeAxes(3), 8);
  EXPECT_EQ(s.DisplayAxes(1), 5);
  EXPECT_EQ(s.DisplayAxes(3), 8);
}

TEST(AxisSettingsReflect, NoEnvelopeBeforeTheProjection) {
  TempDir dir;
  Session s = ThreeTaxa(dir);
  AxisChoice c = LoadAxisChoice(s, true);
  const ReflectOutcome r = Reflect(s, c, true);
  EXPECT_TRUE(r.Redraw);
  EXPECT_FALSE(r.RunEnvelope);
}

TEST(AxisSettingsReflect, NothingInvisibleByView) {
  EXPECT_TRUE(NothingInvisible(false, 2));
  EXPECT_FALSE(NothingInvisible(false, 3));
  EXPECT_TRUE(NothingInvisible(true, 3));
  EXPECT_FALSE(NothingInvisible(true, 2));
  EXPECT_FALSE(NothingInvisible(true, 4));
}

TEST(AxisSettingsKiyo, LinesThatFitAPicture) {
  EXPECT_EQ(KiyoLinesFit(152), 10);  // 2280 twips
  EXPECT_EQ(KiyoLinesFit(151), 9);   // 2265 twips
  EXPECT_EQ(KiyoLinesFit(0), 0);
}

TEST(AxisSettingsKiyo, PercentRoundsToThreeDecimalsHalfToEven) {
  EXPECT_EQ(KiyoPercent(1.0625), "1.062%");
  EXPECT_EQ(KiyoPercent(1.1875), "1.188%");
  EXPECT_EQ(KiyoPercent(100), "100%");
  EXPECT_EQ(KiyoPercent(0.0004), "0%");
  EXPECT_EQ(KiyoPercent(static_cast<double>(12.3456f)), "12.346%");
}

TEST(AxisSettingsKiyo, WithThreeTaxaTheTableFitsAndTheScrollBarStaysOff) {
  TempDir dir;
  Session s = ThreeTaxa(dir);
  ASSERT_EQ(s.RefTaxaCount, 3);
  const KiyoText t = ShowKiyo(s, {1, 2}, 1, 10);
  EXPECT_FALSE(t.ScrollEnabled);
  ASSERT_EQ(t.Lines.size(), 10u);
  EXPECT_EQ(t.Lines[2][0], "3");
  EXPECT_EQ(t.Lines[2][2], KiyoPercent(s.CumContribution(3)));
  for (std::size_t i = 3; i < 10; ++i) EXPECT_EQ(t.Lines[i], (std::array<std::string, 3>{}));
  EXPECT_TRUE(t.Summary.empty());  // three EOFs: the first three are all
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  // Even three lines hold three EOFs; two do not.
  EXPECT_FALSE(ShowKiyo(s, {1, 2}, 1, 3).ScrollEnabled);
  EXPECT_TRUE(ShowKiyo(s, {1, 2}, 1, 2).ScrollEnabled);
}

TEST(AxisSettingsKiyo, ManyEofsNeedTheScrollBar) {
  Session s = Analysed();
  ASSERT_EQ(s.RefTaxaCount, 22);
  KiyoText t = ShowKiyo(s, {1, 2, 3}, 1, 10);
  EXPECT_TRUE(t.ScrollEnabled);
  ASSERT_EQ(t.Lines.size(), 10u);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(t.Lines[static_cast<std::size_t>(i)][0], std::to_string(i + 1));
    EXPECT_EQ(t.Lines[static_cast<std::size_t>(i)][1], KiyoPercent(s.Contribution(i + 1)));
  }
  // Scrolled to the end: EOFs 13 to 22.
  t = ShowKiyo(s, {1, 2, 3}, 13, 10);
  EXPECT_EQ(t.Lines.front()[0], "13");
  EXPECT_EQ(t.Lines.back()[0], "22");
  EXPECT_EQ(t.Lines.back()[2], KiyoPercent(s.CumContribution(22)));
  // Past the end: empty lines.
  t = ShowKiyo(s, {1, 2, 3}, 20, 10);
  EXPECT_EQ(t.Lines[2][0], "22");
  EXPECT_TRUE(t.Lines[3][0].empty());
}

TEST(AxisSettingsKiyo, SummariesAndTheSelectedEofs) {
  Session s = Analysed();
  const KiyoText t = ShowKiyo(s, {2, 5, 9, 1}, 1, 10);
  ASSERT_EQ(t.Summary.size(), 2u);
  EXPECT_EQ(t.Summary[0], KiyoPercent(s.CumContribution(3)));
  EXPECT_EQ(t.Summary[1], "No. of parameters:  22");
  const double sum = static_cast<double>(s.Contribution(2)) + s.Contribution(5) +
                     s.Contribution(9) + s.Contribution(1);
  ASSERT_EQ(t.Selected.size(), 2u);
  EXPECT_EQ(t.Selected[0], KiyoPercent(sum));
  EXPECT_DOUBLE_EQ(std::stod(t.Selected[0]), Rounded3(sum));
  EXPECT_EQ(t.Selected[1], "No. of selected EOFs:  4");
  // The envelope takes as many axes as the list holds.
  EXPECT_EQ(s.EnvelopeAxisCount, 4);
  // The contributions of all EOFs make 100.
  double all = 0;
  for (long n = 1; n <= 22; ++n) all += s.Contribution(n);
  EXPECT_NEAR(all, 100, 1e-3);
}
