#include <gtest/gtest.h>

#include "state/Format.h"

using namespace varnoth;

TEST(Format, GeneralFormIsShortest) {
  EXPECT_EQ(FormatGeneral(12), "12");
  EXPECT_EQ(FormatGeneral(0.5), "0.5");
  EXPECT_EQ(FormatGeneral(-0.25), "-0.25");
  EXPECT_EQ(FormatGeneral(0.0), "0");
  EXPECT_EQ(FormatGeneral(-0.0), "0");
  EXPECT_EQ(FormatGeneral(1e20), "1E+20");
  EXPECT_EQ(FormatGeneral(1.5e-5), "1.5E-05");
  EXPECT_EQ(FormatGeneral(0.1 + 0.2), "0.3");
  EXPECT_EQ(FormatGeneral(123456789012345.0), "123456789012345");
  EXPECT_EQ(FormatGeneral(1234567890123456.0), "1.23456789012346E+15");
  EXPECT_EQ(FormatSingle(0.1f), "0.1");
  EXPECT_EQ(FormatSingle(33.33333f), "33.33333");
}
