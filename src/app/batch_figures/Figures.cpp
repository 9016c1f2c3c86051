// The figures of a batch run as files: every analysis that ran draws its
// figures offscreen, by the same functions and at the same sizes as its
// window, into the folder of --figures. A figure in batch is a file, never
// a window. Built only with the desktop program's drawing library.
#include <QCoreApplication>
#include <QGuiApplication>
#include <cctype>
#include <filesystem>
#include <iostream>
#include <memory>

#include "../batch/Batch.h"
#include "Publication.h"
#include "calibration/FineGrid.h"
#include "diagram/DiagramLayout.h"
#include "presentation/CalibFigure.h"
#include "presentation/Colours.h"
#include "presentation/DiagramFigure.h"
#include "presentation/MapFigure.h"
#include "presentation/PictureFile.h"
#include "presentation/ReconstructionFigure.h"
#include "presentation/Scatter.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth::batch {
namespace {

// The windows' default picture sizes.
constexpr int kScatterSide = 300;                         // the main window's figures
constexpr int kDiagramWidth = 686, kDiagramHeight = 505;  // the diagram window at 1000 x 720
constexpr int kEofWidth = 220, kNamesHeight = 110;
constexpr int kCurveWidth = 137, kCurveHeight = 540;  // the reconstruction window
constexpr long kTaxonWidthSlider = 10;                // the diagram's Slider3
constexpr int kCalibFigure = 200;                     // the calibration tool's eight figures
constexpr int kChartMain = 401, kChartSection = 120;  // the calibration chart
constexpr int kMapHeight = 360;                       // the interpolation map's designed height

// Drawing needs a GUI application; offscreen, so that no display is needed.
void StartOffscreen() {
  if (QGuiApplication::instance()) return;
  // The toolkit's notes (a missing runtime folder and the like) are not the
  // run's messages; its failures still show.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg) std::cerr << text.toStdString() << "\n";
  });
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "varnoth-batch";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QGuiApplication> app = std::make_unique<QGuiApplication>(argc, argv);
}

// A parameter's name as part of a file name.
std::string FilePart(const std::string& name) {
  std::string out;
  for (unsigned char c : name) out += std::isalnum(c) || c == '-' ? static_cast<char>(c) : '_';
  return out.empty() ? std::string("parameter") : out;
}

struct Writer {
  std::string Dir;
  PictureFormat Format;
  int Written = 0;
  void operator()(const Surface& surface, const std::string& name) {
    SavePicture(surface, Dir + "/" + name + "." + PictureExtension(Format), Format,
                Format == PictureFormat::Png ? 2 : 1);
    ++Written;
  }
};

void DrawScatterFigures(const Session& s, const ColourSettings& colours, Writer& write) {
  const ScatterView view;  // 2-D, ticks and labels, all names: the window's start
  const Count a = s.DisplayAxes(1), b = s.DisplayAxes(2), c = s.DisplayAxes(3);
  Surface taxa(kScatterSide, kScatterSide), sites(kScatterSide, kScatterSide);
  DrawTaxa(s, colours, view, a, b, c, {&taxa, nullptr});
  DrawSites(s, colours, view, a, b, c, {&sites, nullptr});
  if (s.ProjectionDone || s.FossilIsBase) DrawFossil(s, colours, view, a, b, c, {&sites, nullptr});
  write(taxa, "scatter-taxa");
  write(sites, "scatter-sites");
}

void DrawDiagramFigures(const Session& s, const ColourSettings& colours, bool coniss,
                        Writer& write) {
  DiagramSettings set;
  set.Colours = colours;
  set.Columns = LayoutTaxaColumns(s.FossilProportion, s.FossilSampleCount, s.FossilTaxaCount,
                                  kTaxonWidthSlider);
  Surface diagram(kDiagramWidth, kDiagramHeight), eof(kEofWidth, kDiagramHeight),
      names(kDiagramWidth, kNamesHeight);
  SetDiagramScale(s, diagram);
  DrawDiagram(s, set, diagram);
  DrawEofCurve(s, set, diagram, eof);
  DrawTaxaNames(s, set, names);
  write(diagram, "diagram");
  write(eof, "diagram-eof-curve");
  write(names, "diagram-taxa-names");
  if (coniss) {
    Surface tree(kEofWidth, kDiagramHeight);
    set.ConissShown = true;
    DrawConiss(s, set, diagram, tree);
    write(tree, "diagram-coniss");
  }
}

void DrawReconstructionFigures(Session& s, const ColourSettings& colours, Writer& write) {
  const Count was = s.CurrentParameter;
  for (long p = 1; p <= s.ClimateParamCount; ++p) {
    const ScaleLimits limits = CurveLimits(s, p);
    if (limits.NoAnalogues) continue;
    CurveSettings set;
    set.Low = limits.Low;
    set.High = limits.High;
    set.ErrorBars = true;
    set.Colours = colours;
    s.CurrentParameter = static_cast<Count>(p);
    const std::string name = FilePart(s.ClimateParamNames(p));
    Surface curve(kCurveWidth, kCurveHeight);
    SetCurveScale(s, curve);
    if (DrawReconstructionCurve(s, p, set, curve)) write(curve, "reconstruction-" + name);
    if (s.ErrorModelReady) {
      Surface scatter(kCurveWidth, kCurveWidth);
      if (DrawEstObsScatter(s, p, set, scatter)) write(scatter, "est-obs-" + name);
    }
  }
  s.CurrentParameter = was;
}

// The calibration tool after "Start" with its default views: the two pair
// scatters, Fig.3 to Fig.8 with the mode and average on Fig.8, and the chart
// of the confidence regions opened from Fig.8.
void DrawCalibrationFigures(const CalibrationOutcome& out, ColourSettings& colours, Writer& write) {
  const CalibState& c = out.Chain;
  const double z = 1;  // the reconstruction window's Z-enhancement at its default
  for (int k = 0; k <= 1; ++k) {
    Surface pic(kCalibFigure, kCalibFigure);
    pic.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    pic.SetBackColour(Qt::white);
    DrawPairScatter(c, k, c.PairRows[static_cast<std::size_t>(k)], out.T1, out.T2,
                    colours.CurveColour.ToQColor(), k == 1 && LenientParse(c.Labels.Label12[1]) > 1,
                    pic);
    write(pic, "calibration-fig" + std::to_string(k + 1));
  }
  CalibImages images(colours, [z] { return z; });
  std::array<bool, 9> drawn{};
  for (int f = 3; f <= 8; ++f) drawn[static_cast<std::size_t>(f)] = true;
  RepaintCalibFigures(c, out.Settings, images, drawn, colours.GreyMode);
  for (int pic = 0; pic < 6; ++pic) {
    Surface s(kCalibFigure, kCalibFigure);
    s.SetScale(0, 0, kCalibCanvas, kCalibCanvas);
    s.SetBackColour(Qt::white);
    ShowMatrixImage(images.Image(pic), s);
    if (pic == 5) {
      CalibShowMode(c, colours.GreyMode, s);
      CalibShowAve(c, colours.GreyMode, s);
    }
    write(s, "calibration-fig" + std::to_string(pic + 3));
  }
  FineGrid fine;
  PrepareChart(c, out.Settings, fine);
  const long slider2 = std::lround(z * 100);
  Surface chart(kChartMain, kChartMain);
  chart.SetScale(0, 0, 400, 400);
  chart.SetBackColour(Qt::white);
  chart.DrawImage(0, 0, 400, 400, ChartImage(fine, true, slider2, colours));
  ChartShowAve(fine, colours.GreyMode, chart);
  ChartShowMode(fine, colours.GreyMode, chart);
  write(chart, "calibration-chart");
  Surface section(kChartSection, kChartMain);
  DrawSectionProfile(fine, SectionColumn(0), slider2, colours.GreyMode, section);
  write(section, "calibration-chart-section");
}

// The interpolation map with the bounds of the station table: coastline,
// stations, target sites and the sites left without data.
void DrawMapFigure(const Session& s, Writer& write) {
  const InterpolationState& in = s.Interp;
  const double lonSpan = in.MaxLon - in.MinLon, latSpan = in.MaxLat - in.MinLat;
  if (!in.InterpRefLoaded || lonSpan <= 0 || latSpan <= 0) return;
  const int width = std::max(1, static_cast<int>(std::lround(lonSpan * kMapHeight / latSpan)));
  std::vector<std::string> coastlines;
  const QString self = QCoreApplication::applicationDirPath();
  if (!self.isEmpty())
    coastlines.push_back((self + "/../share/varnoth/coastline.csv").toStdString());
  coastlines.push_back("data/coastline.csv");
#ifdef VARNOTH_COASTLINE
  coastlines.push_back(VARNOTH_COASTLINE);
#endif
  Surface map(width, kMapHeight);
  SetMapScale(map, in.MinLat, in.MaxLat, in.MinLon, in.MaxLon);
  map.SetBackColour(Qt::white);
  DrawCoastline(map, WorldCoastline(coastlines), [](int) {});
  DrawStations(map, in, kMapMark);
  if (in.InterpTargetLoaded) {
    DrawTargets(map, in, kMapMark);
    if (s.ClimateLoaded) DrawNoDataTargets(map, s, kMapMark);
  }
  write(map, "map");
}

void Run(Context& c) {
  StartOffscreen();
  Session& s = c.S;
  const std::string dir = c.Opts.Get("--figures");
  std::filesystem::create_directories(dir);
  if (c.Opts.Get("--figure-style") == "publication") return DrawPublicationFigures(c, dir);
  const std::string format = c.Opts.Get("--figure-format", "svg");
  Writer write{dir, format == "pdf"   ? PictureFormat::Pdf
                    : format == "png" ? PictureFormat::Png
                                      : PictureFormat::Svg};
  ColourSettings colours;
  ApplyColourPreset(colours);
  if (s.EofDone) DrawScatterFigures(s, colours, write);
  const bool coreScored = s.ProjectionDone || (s.EofDone && s.FossilIsBase);
  if (coreScored && s.FossilSampleCount > 0)
    DrawDiagramFigures(s, colours, c.Opts.Has("--coniss"), write);
  // Climate without a core (interpolated onto the sites alone) has no curve.
  if (s.ClimateLoaded && coreScored && s.FossilSampleCount > 0)
    DrawReconstructionFigures(s, colours, write);
  if (c.Calibration) DrawCalibrationFigures(*c.Calibration, colours, write);
  DrawMapFigure(s, write);
}

const bool registered = RegisterStep(Step{
    1000,
    {{"--figures", "DIR", "the figures of every analysis run, one file each"},
     {"--figure-format", "svg|pdf|png", "the kind of figure file (svg; png at twice the size)"},
     {"--figure-style", "screen|publication",
      "the windows' pictures, or figures for papers with axes and names (png at 600 dpi)"},
     {"--figure-width", "single|double", "publication figures 85 mm or 175 mm wide (double)"},
     {"--zones", "N", "zone lines of the pollen diagram: the CONISS tree cut into N zones"}},
    [](const Options& o) {
      if (o.Has("--figure-format")) {
        const std::string f = o.Get("--figure-format");
        if (f != "svg" && f != "pdf" && f != "png")
          throw UsageError{"--figure-format takes one of: svg|pdf|png"};
        if (!o.Has("--figures")) throw UsageError{"--figure-format needs --figures"};
      }
      const std::string style = o.Get("--figure-style", "screen");
      if (style != "screen" && style != "publication")
        throw UsageError{"--figure-style takes one of: screen|publication"};
      const std::string width = o.Get("--figure-width", "double");
      if (width != "single" && width != "double")
        throw UsageError{"--figure-width takes one of: single|double"};
      const std::string zones = o.Get("--zones", "0");
      if (zones.empty() || zones.size() > 3 ||
          zones.find_first_not_of("0123456789") != std::string::npos)
        throw UsageError{"--zones takes a whole number from 0 to 999"};
      for (const char* needs : {"--figure-style", "--figure-width", "--zones"})
        if (o.Has(needs) && !o.Has("--figures"))
          throw UsageError{std::string(needs) + " needs --figures"};
    },
    [](const Options& o) { return o.Has("--figures"); },
    Run});

}  // namespace
}  // namespace varnoth::batch
