#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

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

TEST(CellReader, AFileShortenedWhileItIsReadReadsAsItWasOpened) {
  // Another program saving over the table while an import runs: the reader
  // holds what the file was, and neither crashes nor sees half of each.
  test::TempDir dir;
  std::string text = "Site,A,B\r\n";
  for (int i = 1; i <= 20000; ++i) text += "S" + std::to_string(i) + ",1.5,2.5\r\n";
  const std::string path = dir.Write("table.csv", text);
  CellReader r = CellReader::FromFile(path);
  ASSERT_EQ(::truncate(path.c_str(), 10), 0);
  std::size_t cells = 0;
  std::string_view last;
  while (r.Position() < r.Length()) {
    last = r.Next();
    ++cells;
  }
  EXPECT_EQ(cells, 3u * 20001u);
  EXPECT_EQ(last, "2.5");
}

TEST(CellReader, AFileLargerThanItsFirstReadIsReadWhole) {
  // A pipe has no size to go by: the buffer grows as the bytes come.
  test::TempDir dir;
  std::string text;
  for (int i = 0; i < 30000; ++i) text += std::to_string(i) + ",";
  text += "end";
  const std::string fifo = dir.Path("pipe");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::thread writer([&] {
    std::FILE* out = std::fopen(fifo.c_str(), "w");
    if (!out) return;
    std::fwrite(text.data(), 1, text.size(), out);
    std::fclose(out);
  });
  CellReader r = CellReader::FromFile(fifo);
  writer.join();
  EXPECT_EQ(r.Length(), text.size());
  std::string_view last;
  while (r.Position() < r.Length()) last = r.Next();
  EXPECT_EQ(last, "end");
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
