// varnoth-batch --figure-style publication: the figures for papers of every
// analysis that ran, at the width asked for, as SVG, PDF or 600 dpi PNG,
// and the usage errors of the options that go with it.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "BatchProgram.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth::test;

namespace {

#ifdef VARNOTH_BATCH_FIGURES
constexpr bool kFigures = true;
#else
constexpr bool kFigures = false;
#endif

std::string Examples(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

std::set<std::string> FilesIn(const std::string& dir) {
  std::set<std::string> names;
  if (fs::exists(dir))
    for (auto& e : fs::directory_iterator(dir)) names.insert(e.path().filename().string());
  return names;
}

// The width of a PNG from its header.
unsigned PngWidth(const std::string& png) {
  if (png.size() < 24 || png.compare(1, 3, "PNG") != 0) return 0;
  unsigned w = 0;
  for (int i = 16; i < 20; ++i)
    w = (w << 8) | static_cast<unsigned char>(png[static_cast<std::size_t>(i)]);
  return w;
}

class PublicationBatch : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!kFigures) GTEST_SKIP() << "built without the drawing library";
  }
  TempDir dir;
};

TEST_F(PublicationBatch, ExampleSetWritesEveryFigureOfWhatRan) {
  const BatchResult r =
      RunBatchProgram({"--figures", "figs", "--figure-style", "publication"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  std::set<std::string> expected;
  for (const char* name :
       {"pollen-diagram", "eof-scatter", "reconstruction-SumSST", "reconstruction-WinSST",
        "reconstruction-Salinity", "est-obs-SumSST", "est-obs-WinSST", "est-obs-Salinity"})
    expected.insert(std::string(name) + ".svg");
  EXPECT_EQ(FilesIn(dir.Path("figs")), expected);
  const std::string pollen = ReadFile(dir.Path("figs/pollen-diagram.svg"));
  EXPECT_NE(pollen.find("width=\"175mm\""), std::string::npos);
  for (const char* words :
       {">Depth<", ">G.ruber<", ">CONISS<", ">Sum of squares<", ">EOF-1 score<"})
    EXPECT_NE(pollen.find(words), std::string::npos) << words;
  EXPECT_NE(ReadFile(dir.Path("figs/eof-scatter.svg")).find(">EOF-1 (57.2 %)<"), std::string::npos);
  EXPECT_NE(ReadFile(dir.Path("figs/est-obs-SumSST.svg")).find(">RMSEP = "), std::string::npos);
  // The result files are those of the run without figures.
  EXPECT_TRUE(fs::exists(dir.Path("varnoth-out/coniss.csv")));
}

TEST_F(PublicationBatch, OneColumnPdfAndPrintResolutionPng) {
  const BatchResult pdf = RunBatchProgram({"--figures", "pdf", "--figure-style", "publication",
                                           "--figure-format", "pdf", "--figure-width", "single"},
                                          dir.Path(""));
  ASSERT_EQ(pdf.ExitCode, 0) << pdf.Err;
  EXPECT_EQ(ReadFile(dir.Path("pdf/pollen-diagram.pdf")).rfind("%PDF-", 0), 0u);
  const BatchResult png = RunBatchProgram({"--figures", "png", "--figure-style", "publication",
                                           "--figure-format", "png", "--zones", "4"},
                                          dir.Path(""));
  ASSERT_EQ(png.ExitCode, 0) << png.Err;
  // 175 mm at 600 dots per inch.
  EXPECT_EQ(PngWidth(ReadFile(dir.Path("png/pollen-diagram.png"))), 4134u);
  EXPECT_EQ(PngWidth(ReadFile(dir.Path("png/reconstruction-SumSST.png"))), 4134u);
}

TEST_F(PublicationBatch, WrongValuesAreUsageErrors) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"--figures", "f", "--figure-style", "poster"},
        std::vector<std::string>{"--figures", "f", "--figure-width", "triple"},
        std::vector<std::string>{"--figures", "f", "--zones", "four"},
        std::vector<std::string>{"--reference", Examples("reference.csv"), "--out", "out",
                                 "--figure-style", "publication"},
        std::vector<std::string>{"--reference", Examples("reference.csv"), "--out", "out",
                                 "--zones", "3"}})
    EXPECT_EQ(RunBatchProgram(args, dir.Path("")).ExitCode, 2) << args[args.size() - 2];
  EXPECT_FALSE(fs::exists(dir.Path("f")));
}

}  // namespace
