#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "envelope/Envelope.h"
#include "envelope/Uniform.h"

using namespace varnoth;

namespace {

using Points = std::vector<std::vector<double>>;

// A session with the given scores on EOFs 1..width (at least 3, so that the
// spherical directions fit), the envelope on the first `axes` of them.
Session Cloud(const Points& sites, const Points& samples, int axes, bool moreAxis = false,
              int width = 3) {
  Session s;
  s.RefSiteCount = static_cast<Count>(sites.size());
  s.FossilSampleCount = static_cast<Count>(samples.size());
  s.RefTaxaCount = s.FossilTaxaCount = s.TaxaCount = static_cast<Count>(width);
  s.RefScores.ReDim(s.RefSiteCount, width);
  s.FossilScores.ReDim(s.FossilSampleCount, width);
  for (std::size_t i = 0; i < sites.size(); ++i)
    for (std::size_t k = 0; k < sites[i].size(); ++k)
      s.RefScores(static_cast<long>(i + 1), static_cast<long>(k + 1)) = sites[i][k];
  for (std::size_t i = 0; i < samples.size(); ++i)
    for (std::size_t k = 0; k < samples[i].size(); ++k)
      s.FossilScores(static_cast<long>(i + 1), static_cast<long>(k + 1)) = samples[i][k];
  s.EnvelopeAxes.ReDim(width);
  s.DisplayAxes.ReDim(width);
  for (int k = 1; k <= width; ++k) s.EnvelopeAxes(k) = s.DisplayAxes(k) = static_cast<Count>(k);
  s.EnvelopeAxisCount = static_cast<Count>(axes);
  s.MoreAxis = moreAxis;
  return s;
}

// Sites evenly on the unit circle of EOFs 1 and 2.
Points Circle(int n) {
  Points p;
  for (int i = 0; i < n; ++i) {
    double a = 2 * std::numbers::pi * i / n;
    p.push_back({std::cos(a), std::sin(a), 0});
  }
  return p;
}

class CountingProgress : public Progress {
 public:
  long Max = -1, Last = -1;
  int Starts = 0, Finishes = 0;
  void Start(long m) override {
    Max = m;
    ++Starts;
  }
  void Step(long v) override {
    EXPECT_GE(v, Last);
    Last = v;
  }
  void Finish() override { ++Finishes; }
};

bool Out(const Session& s, long i) { return s.SampleIsOut(i) != 0; }

}  // namespace

TEST(Uniform, StaysInsideTheUnitIntervalAndIsFlat) {
  Session s;
  std::uint64_t state = s.UniformState;
  int bins[10] = {};
  double sum = 0;
  const int n = 200000;
  for (int i = 0; i < n; ++i) {
    float u = NextUniform(state);
    ASSERT_GE(u, 0.0f);
    ASSERT_LT(u, 1.0f);
    sum += u;
    ++bins[static_cast<int>(u * 10)];
  }
  EXPECT_NEAR(sum / n, 0.5, 0.005);
  for (int b : bins) EXPECT_NEAR(b, n / 10, n / 100);
}

TEST(Uniform, EverySessionStartsFromTheSameState) {
  Session a, b;
  EXPECT_EQ(a.UniformState, b.UniformState);
  std::uint64_t x = a.UniformState, y = b.UniformState;
  for (int i = 0; i < 100; ++i) EXPECT_EQ(NextUniform(x), NextUniform(y));
  // And it moves on: no value repeats right away.
  std::uint64_t z = a.UniformState;
  EXPECT_NE(NextUniform(z), NextUniform(z));
}

TEST(Envelope, ToleranceIsTheSliderValueOverTenAsASingle) {
  for (int v = 0; v <= 10; ++v) EXPECT_EQ(EnvelopeToleranceFor(v), static_cast<float>(v / 10.0));
  EXPECT_EQ(EnvelopeToleranceFor(0), 0.0f);
  Session s = Cloud(Circle(12), {{0, 0, 0}, {0, 0, 0}}, 2);
  NoProgress none;
  RunEnvelope(s, 7, none);
  EXPECT_EQ(s.EnvelopeTolerance, 0.7f);
  EXPECT_EQ(s.EnvelopeDirectionCount, 3000);
}

TEST(Envelope, MoreAxisDirectionsAreUnitVectors) {
  for (int axes : {2, 4, 7}) {
    Session s = Cloud(Circle(5), {}, axes, true, 8);
    DrawEnvelopeDirections(s);
    ASSERT_EQ(s.EnvelopeDirections.Upper0(), 8);
    ASSERT_EQ(s.EnvelopeDirections.Upper1(), 3000);
    double mean1 = 0;
    for (long d = 1; d <= 3000; ++d) {
      double n2 = 0;
      for (long k = 1; k <= axes; ++k)
        n2 += s.EnvelopeDirections(k, d) * s.EnvelopeDirections(k, d);
      EXPECT_NEAR(std::sqrt(n2), 1.0, 1e-6) << "direction " << d;
      // Components beyond the envelope axes stay zero.
      for (long k = axes + 1; k <= 8; ++k) EXPECT_EQ(s.EnvelopeDirections(k, d), 0.0);
      mean1 += s.EnvelopeDirections(1, d);
    }
    // Uniform on the sphere: centred.
    EXPECT_NEAR(mean1 / 3000, 0.0, 0.05);
  }
}

TEST(Envelope, SphericalDirectionsAreThreeDimensionalUnitVectorsAlsoIn2D) {
  Session s = Cloud(Circle(5), {}, 2);
  DrawEnvelopeDirections(s);
  double absZ = 0;
  for (long d = 1; d <= 3000; ++d) {
    double x = s.EnvelopeDirections(1, d), y = s.EnvelopeDirections(2, d),
           z = s.EnvelopeDirections(3, d);
    EXPECT_NEAR(x * x + y * y + z * z, 1.0, 1e-12);
    absZ += std::fabs(z);
  }
  // The third component is drawn even in 2-D, so the two used ones are
  // shorter than 1 (on average |z| = 1/2 for uniform z).
  EXPECT_NEAR(absZ / 3000, 0.5, 0.03);
}

TEST(Envelope, TwoRunsInASessionDrawDifferentDirectionsANewSessionRepeatsTheFirst) {
  Points sites = Circle(40), samples = {{0.99, 0.3, 0}, {0, 0, 0}, {1.2, 0, 0}};
  for (bool more : {false, true}) {
    Session a = Cloud(sites, samples, 3, more);
    NoProgress none;
    RunEnvelope(a, 1, none);
    Array2<double> first = a.EnvelopeDirections;
    Array1<Flag> firstOut = a.SampleIsOut, firstExtreme = a.SiteIsExtreme;
    RunEnvelope(a, 1, none);
    EXPECT_FALSE(a.EnvelopeDirections == first);

    Session b = Cloud(sites, samples, 3, more);
    RunEnvelope(b, 1, none);
    EXPECT_TRUE(b.EnvelopeDirections == first);
    EXPECT_TRUE(b.SampleIsOut == firstOut);
    EXPECT_TRUE(b.SiteIsExtreme == firstExtreme);
  }
}

TEST(Envelope, BorderlineSampleMayChangeStateBetweenRuns) {
  // A diamond of four sites; the sample stands just beyond the edge
  // x + y = 1, seen only by directions in a narrow cone around (1, 1).
  Points sites = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}};
  Points samples = {{0.5003, 0.5003, 0}, {0, 0, 0}};
  Session s = Cloud(sites, samples, 2);
  NoProgress none;
  int out = 0, runs = 40;
  for (int r = 0; r < runs; ++r) {
    RunEnvelope(s, 0, none);
    out += Out(s, 1);
    EXPECT_FALSE(Out(s, 2));
  }
  EXPECT_GT(out, 0);
  EXPECT_LT(out, runs);
}

TEST(Envelope, SliderAtZeroMarksASampleJustBeyondTheSites) {
  Points sites = Circle(360);
  sites.push_back({0, 0, 0});
  Points samples = {{1.05, 0, 0}, {0, -1.05, 0}, {0.3, 0.3, 0}};
  Session s = Cloud(sites, samples, 2);
  NoProgress none;
  RunEnvelope(s, 0, none);
  EXPECT_EQ(s.EnvelopeTolerance, 0.0f);
  EXPECT_TRUE(Out(s, 1));
  EXPECT_TRUE(Out(s, 2));
  EXPECT_FALSE(Out(s, 3));
  // 0.05 beyond the circle is well inside a tolerance of 0.1.
  RunEnvelope(s, 1, none);
  EXPECT_FALSE(Out(s, 1));
  EXPECT_FALSE(Out(s, 2));
}

TEST(Envelope, AFarSampleIsOutAtEveryTolerance) {
  for (bool more : {false, true}) {
    Points sites = Circle(50);
    Points samples = {{0, 0, 0}, {100, -40, 3}, {0.1, 0.1, 0}};
    Session s = Cloud(sites, samples, 3, more);
    NoProgress none;
    for (int v = 0; v <= 10; ++v) {
      RunEnvelope(s, v, none);
      EXPECT_TRUE(Out(s, 2)) << "slider " << v;
      EXPECT_FALSE(Out(s, 1)) << "slider " << v;
      EXPECT_FALSE(Out(s, 3)) << "slider " << v;
    }
  }
}

TEST(Envelope, ASampleEqualToASiteIsNeverOut) {
  // Sites on the edge of the cloud define the range: a sample at the same
  // scores as any site, even the outermost, stays In at tolerance 0.
  Points sites = {{3, 0.5, -1}, {-2, 1, 0.5}, {0.2, -4, 2}, {1, 1, 1}, {0, 0, 0}, {-1, 2, -3}};
  Points samples = sites;
  for (bool more : {false, true})
    for (int axes : {2, 3}) {
      Session s = Cloud(sites, samples, axes, more);
      NoProgress none;
      for (int run = 0; run < 3; ++run) {
        RunEnvelope(s, 0, none);
        for (long i = 1; i <= s.FossilSampleCount; ++i) EXPECT_FALSE(Out(s, i)) << i;
      }
    }
}

TEST(Envelope, ExtremeSitesAreTheVisibleCornersAndTiesKeepTheFirst) {
  // A square with a repeated corner (site 5 = site 1) and inner points.
  Points sites = {{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0},   {1, -1, 0},
                  {1, 1, 0}, {0, 0, 0},  {0.5, -0.2, 0}};
  Session s = Cloud(sites, {{0, 0, 0}, {0, 0, 0}}, 2);
  NoProgress none;
  RunEnvelope(s, 1, none);
  for (long i = 1; i <= 4; ++i) EXPECT_TRUE(s.SiteIsExtreme(i)) << i;
  EXPECT_FALSE(s.SiteIsExtreme(5));  // equal to site 1, which comes first
  EXPECT_FALSE(s.SiteIsExtreme(6));
  EXPECT_FALSE(s.SiteIsExtreme(7));
}

TEST(Envelope, ASingleSiteIsBothEndsOfEveryRange) {
  Session s = Cloud({{0.5, 0.5, 0.5}}, {{0.5, 0.5, 0.5}, {0.6, 0.5, 0.5}}, 3);
  NoProgress none;
  RunEnvelope(s, 0, none);
  EXPECT_TRUE(s.SiteIsExtreme(1));
  EXPECT_FALSE(Out(s, 1));
  EXPECT_TRUE(Out(s, 2));
}

TEST(Envelope, FastMarksEqualThePlainLoops) {
  // Scores on a coarse grid, so that many projections tie exactly.
  std::uint64_t state = 99;
  auto grid = [&] { return std::floor(NextUniform(state) * 9) - 4; };
  for (int axes : {2, 3, 5, 10}) {
    const bool more = axes > 3;
    const int width = std::max(3, axes);
    Points sites(1001), samples(333);
    for (auto& p : sites)
      for (int k = 0; k < width; ++k) p.push_back(grid());
    for (auto& p : samples)
      for (int k = 0; k < width; ++k) p.push_back(grid() * 1.1);
    Session a = Cloud(sites, samples, axes, more, width);
    a.EnvelopeTolerance = 0.2f;
    DrawEnvelopeDirections(a);
    Session b = a;
    NoProgress none;
    MarkEnvelope(a, none);
    MarkEnvelopePlain(b, none);
    EXPECT_TRUE(a.SiteIsExtreme == b.SiteIsExtreme) << axes;
    EXPECT_TRUE(a.SampleIsOut == b.SampleIsOut) << axes;
    int out = 0;
    for (long i = 1; i <= a.FossilSampleCount; ++i) out += Out(a, i);
    EXPECT_GT(out, 0);
    EXPECT_LT(out, a.FossilSampleCount);
  }
}

TEST(Envelope, ProgressCountsTheDirections) {
  Session s = Cloud(Circle(20), {{0, 0, 0}, {2, 0, 0}}, 3);
  CountingProgress p;
  RunEnvelope(s, 1, p);
  EXPECT_EQ(p.Starts, 1);
  EXPECT_EQ(p.Max, 3000);
  EXPECT_EQ(p.Last, 3000);
  EXPECT_EQ(p.Finishes, 1);
}

TEST(Envelope, ResetClearsTheMarksAndKeepsTheTestDone) {
  Session s = Cloud(Circle(20), {{0, 0, 0}, {5, 5, 0}, {0, 0, 0}}, 2);
  NoProgress none;
  EXPECT_FALSE(s.EnvelopeDone);
  RunEnvelope(s, 1, none);
  EXPECT_TRUE(s.EnvelopeDone);
  EXPECT_TRUE(Out(s, 2));
  ResetEnvelope(s);
  EXPECT_TRUE(s.EnvelopeDone);
  for (long i = 0; i <= s.FossilSampleCount; ++i) EXPECT_FALSE(Out(s, i));
  for (long i = 0; i <= s.RefSiteCount; ++i) EXPECT_FALSE(s.SiteIsExtreme(i));
}

TEST(Envelope, ResetLeavesTooSmallDataSetsAlone) {
  Session s;
  s.RefSiteCount = 1;
  s.FossilSampleCount = 1;
  s.SiteIsExtreme.ReDim(1);
  s.SampleIsOut.ReDim(1);
  s.SiteIsExtreme(1) = 1;
  s.SampleIsOut(1) = 1;
  ResetEnvelope(s);
  EXPECT_TRUE(s.SiteIsExtreme(1));
  EXPECT_TRUE(s.SampleIsOut(1));
}

TEST(Envelope, AnAxisBeyondTheEofsIsTheSubscriptFailure) {
  Session s = Cloud(Circle(10), {{0, 0, 0}, {0, 0, 0}}, 4, true, 3);
  s.EnvelopeAxes.ReDim(4);
  for (int k = 1; k <= 4; ++k) s.EnvelopeAxes(k) = static_cast<Count>(k);
  NoProgress none;
  try {
    RunEnvelope(s, 1, none);
    FAIL() << "no failure";
  } catch (const RuntimeFailure& e) {
    EXPECT_EQ(e.kind(), FailureKind::SubscriptOutOfRange);
  }
  EXPECT_FALSE(s.EnvelopeDone);
}

TEST(Envelope, TheEnvelopeAxesChooseTheScoreColumns) {
  // The sample is far out only on EOF 3; with axes 1, 2 it is inside,
  // with axes 3, 1 it is out.
  Points sites = Circle(30), samples = {{0, 0, 9}, {0, 0, 0}};
  for (auto& p : sites) p[2] = p[0];
  Session s = Cloud(sites, samples, 2);
  NoProgress none;
  RunEnvelope(s, 0, none);
  EXPECT_FALSE(Out(s, 1));
  s.EnvelopeAxes(1) = 3;
  s.EnvelopeAxes(2) = 1;
  RunEnvelope(s, 0, none);
  EXPECT_TRUE(Out(s, 1));
}
