#include "Publication.h"

#include <QCoreApplication>

#include "diagram/EofClimateCorrelation.h"
#include "presentation/publication/Figures.h"

namespace varnoth::batch {

namespace {

// Where the coastline is: beside an installed program, in the working
// folder, or in the source tree.
std::vector<std::string> CoastlineCandidates() {
  std::vector<std::string> candidates;
  const QString self = QCoreApplication::applicationDirPath();
  if (!self.isEmpty())
    candidates.push_back((self + "/../share/varnoth/coastline.csv").toStdString());
  candidates.push_back("data/coastline.csv");
#ifdef VARNOTH_COASTLINE
  candidates.push_back(VARNOTH_COASTLINE);
#endif
  return candidates;
}

struct PageWriter {
  std::string Dir;
  pub::PageFormat Format;
  void operator()(const pub::Page& page, const std::string& name) const {
    if (page.Height() <= 0) return;
    pub::SavePage(page, Dir + "/" + name + "." + pub::PageExtension(Format), Format);
  }
};

}  // namespace

void DrawPublicationFigures(Context& c, const std::string& dir) {
  Session& s = c.S;
  const std::string format = c.Opts.Get("--figure-format", "svg");
  const PageWriter write{dir, format == "pdf"   ? pub::PageFormat::Pdf
                              : format == "png" ? pub::PageFormat::Png
                                                : pub::PageFormat::Svg};
  const double width = c.Opts.Get("--figure-width", "double") == "single" ? pub::kSingleColumnMm
                                                                          : pub::kDoubleColumnMm;
  const bool coreScored = s.ProjectionDone || (s.EofDone && s.FossilIsBase);
  if (s.EofDone)
    write(pub::EofScatterFigure(s, s.DisplayAxes(1), s.DisplayAxes(2), width), "eof-scatter");
  if (s.FossilSampleCount > 0 && s.FossilProportion.Allocated() && coreScored) {
    pub::PollenOptions o = pub::DefaultPollenOptions(s, width);
    o.Zones = std::stoi(c.Opts.Get("--zones", "0"));
    write(pub::PollenDiagramFigure(s, o), "pollen-diagram");
  }
  if (s.ClimateLoaded && coreScored && s.FossilSampleCount > 0 && s.ReconValue.Allocated()) {
    const Count was = s.CurrentParameter;
    for (long p = 1; p <= s.ClimateParamCount; ++p)
      write(pub::ReconstructionFigure(s, p, pub::DefaultCurveOptions(s, width)),
            "reconstruction-" + FilePart(s.ClimateParamNames(p)));
    if (s.ErrorModelReady)
      for (long p = 1; p <= s.ClimateParamCount; ++p)
        write(pub::EstObsFigure(s, p, width), "est-obs-" + FilePart(s.ClimateParamNames(p)));
    s.CurrentParameter = was;
  }
  if (c.Opts.Has("--eof-climate") && s.ClimateLoaded && s.EofDone) {
    NoProgress none;
    write(pub::EofClimateFigure(s, EccCorrelationMatrix(s, none), s.RefTaxaCount, width),
          "eof-climate");
  }
  write(pub::MapFigure(s, WorldCoastline(CoastlineCandidates()), width), "map");
  if (c.Calibration) {
    const CalibrationOutcome& out = *c.Calibration;
    FineGrid fine;
    PrepareChart(out.Chain, out.Settings, fine);
    const pub::CalibrationInput in{fine,
                                   out.T1,
                                   out.T2,
                                   out.Settings.Slider1,
                                   out.Settings.Slider2,
                                   pub::DefaultSectionColumn(fine),
                                   pub::CalibrationParameter(out.Chain)};
    write(pub::CalibrationFigure(in, width), "calibration");
    write(pub::ResponseMatrixFigure(s, out.Hist, s.CurrentParameter, out.T1, out.T2, width),
          "response-matrix");
  }
}

}  // namespace varnoth::batch
