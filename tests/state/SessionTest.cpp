#include <gtest/gtest.h>

#include <cmath>

#include "state/Session.h"

using namespace varnoth;

TEST(Session, StartValues) {
  Session s;
  EXPECT_EQ(s.RefSiteCount, 0);
  EXPECT_EQ(s.FossilSampleCount, 0);
  EXPECT_EQ(s.RefTaxaCount, 0);
  EXPECT_EQ(s.FossilTaxaCount, 0);
  EXPECT_TRUE(s.UseCorrelation);
  EXPECT_EQ(s.EigenOrder, 1000);
  EXPECT_EQ(s.EnvelopeAxes.Upper(), 3);
  EXPECT_EQ(s.DisplayAxes.Upper(), 3);
  for (Count i = 1; i <= 3; ++i) {
    EXPECT_EQ(s.EnvelopeAxes(i), i);
    EXPECT_EQ(s.DisplayAxes(i), i);
  }
  EXPECT_EQ(s.EnvelopeAxisCount, 2);
  EXPECT_FALSE(s.MoreAxis);
  EXPECT_EQ(s.SiteCursor, 1);
  EXPECT_EQ(s.TaxonCursor, 1);
  EXPECT_EQ(s.SampleCursor, 1);
  EXPECT_EQ(s.RotationStep, 0.01f);
  EXPECT_EQ(s.EigenWork.Upper0(), 1000);
  EXPECT_EQ(s.EigenWork.Upper1(), 2000);
  EXPECT_EQ(s.EigenVectors.Upper0(), 1001);
  EXPECT_EQ(s.EigenVectors.Upper1(), 1000);
  EXPECT_EQ(s.EnvelopeDirectionCount, 3000);
  EXPECT_EQ(s.ScatterZoom, 4);
  EXPECT_DOUBLE_EQ(s.RotationAngles.A2, 15 * std::acos(-1.0) / 180);
  EXPECT_FALSE(s.ReferenceIsBase || s.FossilIsBase || s.EofDone || s.ProjectionDone ||
               s.EnvelopeDone || s.DiagramOpen || s.ReconstructionOpen);
  EXPECT_TRUE(s.ReferenceImportOpen);
  EXPECT_TRUE(s.FossilImportOpen);
  EXPECT_FALSE(s.RefData.Allocated());
}
