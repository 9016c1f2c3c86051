#pragma once
// The figures for papers: each a plain function of the session's results
// and a few choices, drawn onto a page of a stated width. No selection
// lines, no hover marks: what a journal prints. The windows' "Save Figure
// for Publication..." and varnoth-batch --figure-style publication draw
// them with the same functions and the same choices.
#include <QString>
#include <optional>
#include <string>

#include "calibration/CalibState.h"
#include "calibration/FineGrid.h"
#include "calibration/HistMatrix.h"
#include "presentation/MapFigure.h"
#include "presentation/publication/Page.h"
#include "state/Numeric.h"
#include "state/Session.h"

namespace varnoth::pub {

// The stratigraphic diagram of the core: a column per taxon with its name
// over it and a percentage scale under it, the depth axis, the EOF curve
// and the CONISS tree with optional zone lines.
struct PollenOptions {
  double WidthMm = kDoubleColumnMm;
  QString DepthTitle;        // the fossil table's corner cell; "Sample" for text labels
  Count ShownEof = 1;        // the EOF of the curve panel
  bool EofPanel = true;      // with a projected or analysed core
  bool ConissPanel = true;   // when a tree has been computed
  int Zones = 0;             // the tree cut into this many zones; below 2: no lines
  double MinMaxPercent = 0;  // only taxa reaching this percentage somewhere
  bool Exaggerate = false;   // a ten times outline behind each column
};
Page PollenDiagramFigure(const Session& s, const PollenOptions& o);
// The options the window and the batch start from: the corner cell of the
// fossil table as depth title, the tree when one exists.
PollenOptions DefaultPollenOptions(const Session& s, double widthMm);
// Whether CONISS has left a tree for the core as it is.
bool HasConissTree(const Session& s);
// The corner cell of the fossil table's file ("Depth"), or "" when the
// file cannot be read.
QString FossilCornerCell(const Session& s);

// The reconstruction of one parameter down the core: the estimates as
// points and line, the conventional error as a grey band, the moving
// average, the samples outside the envelope marked, and the analogue count
// in a thin side panel when asked.
struct CurveOptions {
  double WidthMm = kDoubleColumnMm;
  QString DepthTitle;
  long Smoothing = 3;  // moving average over this many samples; 1: none
  bool ErrorBand = true;
  bool AnalogueCount = false;  // the thin panel of analogues used
};
// Nothing drawn (an empty page of height 0) when no sample has an estimate.
Page ReconstructionFigure(Session& s, long parameter, const CurveOptions& o);
CurveOptions DefaultCurveOptions(const Session& s, double widthMm);

// The leave-one-out estimates against the observed values of one
// parameter, both axes over the observed range, the 1:1 line, R and RMSEP;
// at two columns' width the residuals beside it. An empty page (height 0)
// without an error model.
Page EstObsFigure(const Session& s, long parameter, double widthMm);
// The root mean square of estimate less observed over the pairs with both.
std::optional<double> Rmsep(const Session& s, long parameter);

// The reference sites, the fossil samples and the taxa in the plane of two
// EOFs, axes titled with their share of the variance.
Page EofScatterFigure(const Session& s, Count a, Count b, double widthMm);

// The calibration: the probability and confidence matrices of the chart's
// fine grid over the range T1..T2 with the colour bar, the mode and median
// lines, and the section at one reconstructed value.
struct CalibrationInput {
  const FineGrid& Fine;
  double T1 = 0, T2 = 1;
  long Coefficient1 = 682, Coefficient2 = 954;  // tenths of a percent
  long SectionColumn = 250;                     // fine column 50..450
  QString Parameter;
};
Page CalibrationFigure(const CalibrationInput& in, double widthMm);
// The column of the section when none was chosen: the middle one of the
// columns that hold any probability (the range's middle when none does).
long DefaultSectionColumn(const FineGrid& fine);
// The parameter the calibration is of: the name under the reconstructed
// values of the first pair set.
QString CalibrationParameter(const CalibState& c);

// The calibration matrix down the core: depth against the value range
// t1..t2 in shades of probability with the colour bar, the reconstruction
// of parameter p over it. An empty page before the matrix is built.
Page ResponseMatrixFigure(const Session& s, const HistState& h, long p, double t1, double t2,
                          double widthMm);

// The interpolation map: graticule with degree labels, the coastline, the
// stations and the sites with a legend, over the bounds of the station
// table. An empty page before the stations are read.
Page MapFigure(const Session& s, const Coastline& coast, double widthMm);

// The EOF-climate correlations (rows EOF 1..eofs, a column per climate
// parameter) as a heat map with the values printed and a colour bar.
Page EofClimateFigure(const Session& s, const Array2<float>& ecc, long eofs, double widthMm);

}  // namespace varnoth::pub
