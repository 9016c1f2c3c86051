// The figures of a batch run as files: every analysis that ran draws its
// figures offscreen, by the same functions and at the same sizes as its
// window, into the folder of --figures. A figure in batch is a file, never
// a window. Built only with the desktop program's drawing library.
#include <QGuiApplication>
#include <cctype>
#include <filesystem>
#include <iostream>
#include <memory>

#include "../batch/Batch.h"
#include "diagram/DiagramLayout.h"
#include "presentation/Colours.h"
#include "presentation/DiagramFigure.h"
#include "presentation/PictureFile.h"
#include "presentation/ReconstructionFigure.h"
#include "presentation/Scatter.h"
#include "reconstruction/Curves.h"

namespace varnoth::batch {
namespace {

// The windows' default picture sizes.
constexpr int kScatterSide = 300;                         // the main window's figures
constexpr int kDiagramWidth = 686, kDiagramHeight = 505;  // the diagram window at 1000 x 720
constexpr int kEofWidth = 220, kNamesHeight = 110;
constexpr int kCurveWidth = 137, kCurveHeight = 540;  // the reconstruction window
constexpr long kTaxonWidthSlider = 10;                // the diagram's Slider3

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

void Run(Context& c) {
  StartOffscreen();
  Session& s = c.S;
  const std::string dir = c.Opts.Get("--figures");
  std::filesystem::create_directories(dir);
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
  if (s.ReconstructionOpen || s.ClimateLoaded) DrawReconstructionFigures(s, colours, write);
}

const bool registered = RegisterStep(Step{
    1000,
    {{"--figures", "DIR", "the figures of every analysis run, one file each"},
     {"--figure-format", "svg|pdf|png", "the kind of figure file (svg; png at twice the size)"}},
    [](const Options& o) {
      if (o.Has("--figure-format")) {
        const std::string f = o.Get("--figure-format");
        if (f != "svg" && f != "pdf" && f != "png")
          throw UsageError{"--figure-format takes one of: svg|pdf|png"};
        if (!o.Has("--figures")) throw UsageError{"--figure-format needs --figures"};
      }
    },
    [](const Options& o) { return o.Has("--figures"); },
    Run});

}  // namespace
}  // namespace varnoth::batch
