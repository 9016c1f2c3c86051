#include <gtest/gtest.h>

#include "state/CellReader.h"
#include "state/Failure.h"
#include "state/Format.h"
#include "state/RecordWriter.h"
#include "support/TestSupport.h"

using namespace varnoth;

static std::vector<std::string> Cells(const std::string& text) {
  CellReader r(text);
  std::vector<std::string> out;
  while (r.Position() < r.Length()) out.emplace_back(r.Next());
  return out;
}

TEST(CellReader, CommaAndLineEndBothEndACell) {
  EXPECT_EQ(Cells("a,b\r\nc,d\ne,f\rg"),
            (std::vector<std::string>{"a", "b", "c", "d", "e", "f", "g"}));
}

TEST(CellReader, LinesPlayNoPart) {
  // A row split over two lines reads like one line.
  EXPECT_EQ(Cells("a,b,\nc\n"), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(Cells("a,b\nc"), Cells("a\nb,c"));
}

TEST(CellReader, BlanksAndQuotes) {
  EXPECT_EQ(Cells("  a,\t b ,\"x, y\" junk,\"\""),
            (std::vector<std::string>{"a", "b ", "x, y", ""}));
  // A quote that never closes runs to the end of the file.
  EXPECT_EQ(Cells("\"abc,def\ngh"), (std::vector<std::string>{"abc,def\ngh"}));
}

TEST(CellReader, EndOfFile) {
  CellReader r("a,b\r\n\r\n  \n");
  EXPECT_FALSE(r.AtEnd());
  r.Next();
  r.Next();
  EXPECT_TRUE(r.AtEnd());  // a trailing blank line is no row
  CellReader empty("");
  EXPECT_TRUE(empty.AtEnd());
  try {
    empty.Next();
    FAIL();
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::InputPastEnd);
  }
}

TEST(CellReader, ByteOrderMarkIsSkipped) {
  EXPECT_EQ(Cells("\xEF\xBB\xBFSite,A"), (std::vector<std::string>{"Site", "A"}));
}

TEST(CellReader, MissingFileIsAFailure) {
  try {
    CellReader::FromFile("/nonexistent/varnoth/file.csv");
    FAIL();
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::FileNotFound);
  }
}

TEST(RecordWriter, QuotedRecordsWithCrLf) {
  RecordWriter w;
  w.Text("EOF No.:").Integer(1).Number(0.5).Single(0.1f).End();
  w.Text("").Text("a\"b").End();
  w.Text("open").Text("next");
  EXPECT_EQ(w.Content(), "\"EOF No.:\",1,0.5,0.1\r\n\"\",\"a\"\"b\"\r\n\"open\",\"next\"");
  varnoth::test::TempDir dir;
  w.Save(dir.Path("x.csv"));
  EXPECT_EQ(varnoth::test::ReadFile(dir.Path("x.csv")), w.Content());
  EXPECT_THROW(w.Save(dir.Path("missing/x.csv")), RuntimeFailure);
}

// The one-pass number path gives what the cell and the lenient parse give.
TEST(CellReader, NextLenientEqualsNextThenParse) {
  const std::string text =
      "12,0.5,-3.25,,  7,\"8\",1e3,abc,0.000001,123456789012345678,+4,5x,1.,.5\r\n9\n\"q\"z,";
  CellReader a(text), b(text);
  while (a.Position() < a.Length()) {
    bool empty = true;
    double v = a.NextLenient(empty);
    std::string_view cell = b.Next();
    EXPECT_EQ(empty, cell.empty()) << cell;
    EXPECT_EQ(v, LenientParse(cell)) << cell;
    EXPECT_EQ(a.Position(), b.Position()) << cell;
  }
}
