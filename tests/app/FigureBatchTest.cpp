// varnoth-batch --figures: one file per figure of every analysis that ran,
// named after the figure, each a whole file of its kind, and the example
// set's figures when no tables are given.
#include <gtest/gtest.h>

#include <cstdio>
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

// Well-formed XML with an svg root: every element closed in order, the
// declaration, comments and self-closed elements aside.
bool WellFormedSvg(const std::string& text) {
  std::vector<std::string> open;
  bool root = false;
  for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
    const std::size_t end = text.find('>', at);
    if (end == std::string::npos) return false;
    const std::string tag = text.substr(at + 1, end - at - 1);
    if (tag.empty()) return false;
    if (tag[0] == '?' || tag[0] == '!') continue;
    if (tag[0] == '/') {
      const std::string name = tag.substr(1, tag.find_first_of(" \t\r\n", 1) - 1);
      if (open.empty() || open.back() != name) return false;
      open.pop_back();
      continue;
    }
    const std::string name = tag.substr(0, tag.find_first_of(" \t\r\n/"));
    if (!root && name != "svg") return false;
    root = true;
    if (tag.back() != '/') open.push_back(name);
  }
  return root && open.empty();
}

int PdfPages(const std::string& pdf) {
  int pages = 0;
  for (std::size_t at = pdf.find("/Type /Page"); at != std::string::npos;
       at = pdf.find("/Type /Page", at + 1))
    if (pdf.compare(at, 12, "/Type /Pages") != 0) ++pages;
  return pages;
}

// Width and height from a PNG's header, or 0 x 0 when it is not a PNG.
std::pair<int, int> PngSize(const std::string& png) {
  if (png.size() < 24 || png.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0 ||
      png.compare(12, 4, "IHDR") != 0)
    return {0, 0};
  auto word = [&](std::size_t at) {
    int v = 0;
    for (std::size_t i = 0; i < 4; ++i) v = v * 256 + static_cast<unsigned char>(png[at + i]);
    return v;
  };
  return {word(16), word(20)};
}

const std::set<std::string> kExampleFigures = {
    "scatter-taxa",          "scatter-sites",         "diagram",
    "diagram-eof-curve",     "diagram-taxa-names",    "diagram-coniss",
    "reconstruction-WinSST", "reconstruction-SumSST", "reconstruction-Salinity",
    "est-obs-WinSST",        "est-obs-SumSST",        "est-obs-Salinity"};

std::set<std::string> WithExtension(const std::set<std::string>& names, const std::string& ext) {
  std::set<std::string> out;
  for (const auto& n : names) out.insert(n + "." + ext);
  return out;
}

class FigureBatch : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!kFigures) GTEST_SKIP() << "built without the drawing library";
  }
  TempDir dir;
};

TEST_F(FigureBatch, FiguresAloneRunTheExampleSetAndDrawEveryFigure) {
  const BatchResult r = RunBatchProgram({"--figures", "figs"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_EQ(FilesIn(dir.Path("figs")), WithExtension(kExampleFigures, "svg"));
  // The result files of the example run are there as without figures.
  EXPECT_TRUE(fs::exists(dir.Path("varnoth-out/coniss.csv")));
  for (const auto& name : kExampleFigures) {
    const std::string svg = ReadFile(dir.Path("figs/" + name + ".svg"));
    EXPECT_GT(svg.size(), 200u) << name;
    EXPECT_TRUE(WellFormedSvg(svg)) << name;
  }
  // The figures carry their text: the axis captions, the site and taxon names.
  EXPECT_NE(ReadFile(dir.Path("figs/scatter-sites.svg")).find(">EOF-1<"), std::string::npos);
  EXPECT_NE(ReadFile(dir.Path("figs/diagram-taxa-names.svg")).find(">G.ruber<"), std::string::npos);
}

TEST_F(FigureBatch, PdfFiguresAreOnePageEach) {
  const BatchResult r =
      RunBatchProgram({"--figures", "figs", "--figure-format", "pdf"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_EQ(FilesIn(dir.Path("figs")), WithExtension(kExampleFigures, "pdf"));
  for (const auto& name : kExampleFigures) {
    const std::string pdf = ReadFile(dir.Path("figs/" + name + ".pdf"));
    EXPECT_EQ(pdf.compare(0, 5, "%PDF-"), 0) << name;
    EXPECT_NE(pdf.find("%%EOF", pdf.size() - 16), std::string::npos) << name;
    EXPECT_EQ(PdfPages(pdf), 1) << name;
  }
}

TEST_F(FigureBatch, PngFiguresAreTwiceTheWindowSize) {
  const BatchResult r =
      RunBatchProgram({"--figures", "figs", "--figure-format", "png"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_EQ(FilesIn(dir.Path("figs")), WithExtension(kExampleFigures, "png"));
  EXPECT_EQ(PngSize(ReadFile(dir.Path("figs/scatter-sites.png"))), std::make_pair(600, 600));
  EXPECT_EQ(PngSize(ReadFile(dir.Path("figs/diagram-eof-curve.png"))).first, 440);
  for (const auto& name : kExampleFigures)
    EXPECT_GT(PngSize(ReadFile(dir.Path("figs/" + name + ".png"))).first, 0) << name;
}

TEST_F(FigureBatch, OnlyTheFiguresOfWhatRan) {
  const BatchResult r = RunBatchProgram(
      {"--reference", Examples("reference.csv"), "--out", "out", "--figures", "figs"},
      dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_EQ(FilesIn(dir.Path("figs")),
            (std::set<std::string>{"scatter-taxa.svg", "scatter-sites.svg"}));
  const BatchResult core =
      RunBatchProgram({"--reference", Examples("reference.csv"), "--fossil", Examples("fossil.csv"),
                       "--out", "out2", "--figures", "figs2"},
                      dir.Path(""));
  ASSERT_EQ(core.ExitCode, 0) << core.Err;
  EXPECT_EQ(FilesIn(dir.Path("figs2")),
            (std::set<std::string>{"scatter-taxa.svg", "scatter-sites.svg", "diagram.svg",
                                   "diagram-eof-curve.svg", "diagram-taxa-names.svg"}));
}

// The calibration tool's eight figures and the chart of the calibrated
// parameter, as the window shows them after "Start".
TEST_F(FigureBatch, CalibrationFiguresAndChart) {
  const BatchResult r =
      RunBatchProgram({"--reference", Examples("reference.csv"), "--fossil", Examples("fossil.csv"),
                       "--climate", Examples("climate.csv"), "--calibrate", "SumSST", "--out",
                       "out", "--figures", "figs", "--figure-format", "png"},
                      dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const std::set<std::string> files = FilesIn(dir.Path("figs"));
  for (int f = 1; f <= 8; ++f) {
    const std::string name = "calibration-fig" + std::to_string(f) + ".png";
    ASSERT_TRUE(files.count(name)) << name;
    EXPECT_EQ(PngSize(ReadFile(dir.Path("figs/" + name))), std::make_pair(400, 400)) << name;
  }
  EXPECT_EQ(PngSize(ReadFile(dir.Path("figs/calibration-chart.png"))), std::make_pair(802, 802));
  EXPECT_EQ(PngSize(ReadFile(dir.Path("figs/calibration-chart-section.png"))),
            std::make_pair(240, 802));
  // The matrix figures are bigger files than the blank one of the second
  // pair set, which a generated model leaves empty.
  EXPECT_GT(ReadFile(dir.Path("figs/calibration-fig8.png")).size(),
            2 * ReadFile(dir.Path("figs/calibration-fig2.png")).size());
}

// The interpolation map over the bounds of the station table, its
// coastline as vector lines.
TEST_F(FigureBatch, InterpolationMap) {
  const std::string data = std::string(VARNOTH_TEST_DATA) + "/interpolation/";
  const BatchResult r = RunBatchProgram(
      {"--reference", Examples("reference.csv"), "--stations", data + "stations.csv", "--targets",
       data + "targets.csv", "--out", "out", "--figures", "figs"},
      dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  ASSERT_TRUE(FilesIn(dir.Path("figs")).count("map.svg"));
  const std::string svg = ReadFile(dir.Path("figs/map.svg"));
  EXPECT_TRUE(WellFormedSvg(svg));
  std::size_t lines = 0;
  for (std::size_t at = svg.find("<polyline"); at != std::string::npos;
       at = svg.find("<polyline", at + 1))
    ++lines;
  EXPECT_GT(lines, 100u);
}

TEST_F(FigureBatch, WithoutFiguresNoPictureIsWritten) {
  const BatchResult r =
      RunBatchProgram({"--reference", Examples("reference.csv"), "--out", "out"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  for (const auto& name : FilesIn(dir.Path("out")))
    EXPECT_EQ(name.find(".svg"), std::string::npos) << name;
  EXPECT_FALSE(fs::exists(dir.Path("figs")));
}

TEST_F(FigureBatch, WrongFigureFormatIsAUsageError) {
  EXPECT_EQ(RunBatchProgram({"--figures", "figs", "--figure-format", "bmp"}, dir.Path("")).ExitCode,
            2);
  EXPECT_EQ(RunBatchProgram({"--reference", Examples("reference.csv"), "--out", "out",
                             "--figure-format", "pdf"},
                            dir.Path(""))
                .ExitCode,
            2);
  EXPECT_FALSE(fs::exists(dir.Path("figs")));
}

// varnoth-batch itself is built without the drawing libraries, whose loading
// takes longer than a run of the EOF analysis.
TEST(BatchProgram, NeedsNoDrawingLibrary) {
  FILE* pipe = popen("readelf -d " VARNOTH_BATCH, "r");
  ASSERT_NE(pipe, nullptr);
  std::string needed;
  char line[512];
  while (fgets(line, sizeof line, pipe))
    if (std::string(line).find("(NEEDED)") != std::string::npos) needed += line;
  ASSERT_EQ(pclose(pipe), 0);
  EXPECT_NE(needed.find("libc.so"), std::string::npos) << needed;
  EXPECT_EQ(needed.find("libQt"), std::string::npos) << needed;
}

// The runs that ask for figures go on in varnoth-batch-figures (the tests
// above run varnoth-batch); the list of options is that program's, with the
// figures' options in it.
TEST_F(FigureBatch, TheOptionListHasTheFigureOptions) {
  const BatchResult r = RunBatchProgram({"--help"}, dir.Path(""));
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  for (const char* option : {"--figures", "--figure-format", "--figure-style", "--figure-width"})
    EXPECT_NE(r.Out.find(std::string("  ") + option + " "), std::string::npos) << option;
}

#ifdef VARNOTH_BATCH_FIGURES_PROGRAM
// A run without figures writes the same bytes whichever of the two programs
// runs it.
TEST_F(FigureBatch, BothProgramsWriteTheSameFilesWithoutFigures) {
  const std::vector<std::string> args = {
      "--reference", Examples("reference.csv"), "--fossil", Examples("fossil.csv"),
      "--climate",   Examples("climate.csv"),   "--coniss", "--error-model",
      "--timestamp", "2026-01-02 03:04:05"};
  auto with = [&](const std::string& out) {
    std::vector<std::string> a = args;
    a.insert(a.end(), {"--out", out});
    return a;
  };
  ASSERT_EQ(RunBatchProgram(with("lean"), dir.Path("")).ExitCode, 0);
  ASSERT_EQ(RunProgram(VARNOTH_BATCH_FIGURES_PROGRAM, with("full"), dir.Path("")).ExitCode, 0);
  const std::set<std::string> names = FilesIn(dir.Path("lean"));
  EXPECT_GT(names.size(), 10u);
  EXPECT_EQ(FilesIn(dir.Path("full")), names);
  for (const auto& name : names)
    EXPECT_TRUE(ReadFile(dir.Path("lean/" + name)) == ReadFile(dir.Path("full/" + name))) << name;
}
#endif

}  // namespace
