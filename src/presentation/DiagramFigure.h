#pragma once
// The stratigraphic diagram as plain drawings on surfaces: the taxon
// columns, the EOF curve of the core or the CONISS tree beside them, the
// rotated taxon names and the line of the selected sample. The window reads
// its controls into a DiagramSettings record; tests and benchmarks draw into
// an image with no window.
#include <QColor>
#include <vector>

#include "diagram/DiagramLayout.h"
#include "presentation/Colours.h"
#include "presentation/Surface.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

struct DiagramSettings {
  DiagramStyle Style = DiagramStyle::Bar;  // the checked entry of "Curve Style(&S)"
  TaxaColumns Columns;                     // from LayoutTaxaColumns and Slider3
  long Scroll = 0;                         // HScroll1, in percent units
  bool MarkerShown = true;   // Check1 ticked, or the sizing pointer of a drag on Slider1
  Count ShownEof = 1;        // Combo1
  bool ConissShown = false;  // nmuConiss checked: the tree takes the EOF curve's place
  ColourSettings Colours;
};

// The shared vertical scale: samples stand at 10 to 10 N between the gaps
// the fossil import worked out. Picture1 spans 0 to 500 across.
void SetDiagramScale(const Session& s, Surface& picture1);

// The taxon columns in view, in the style of the settings, stored as
// background with the marker drawn on top. Progress, if given, counts the
// taxa (the window shows it at the first drawing only).
void DrawDiagram(const Session& s, const DiagramSettings& set, Surface& picture1,
                 Progress* progress = nullptr);

// The EOF curve of the shown EOF with the samples outside the envelope as
// bars, stored as background with the marker on top; with CONISS shown the
// tree instead. Returns the Out count written under the panel (0 for the
// tree). The vertical scale is that of Picture1.
long DrawEofCurve(const Session& s, const DiagramSettings& set, const Surface& picture1,
                  Surface& picture2);

// The tree of the last DoConiss over the depth axis of Picture1, stored as
// background, the marker on top.
void DrawConiss(const Session& s, const DiagramSettings& set, const Surface& picture1,
                Surface& picture2);

// Taxon names turned to read upwards over the columns in view; upright
// when they end in "ae", italic otherwise.
void DrawTaxaNames(const Session& s, const DiagramSettings& set, Surface& picture4);
// Where a name's base line stands on the names panel (its own scale, see
// the drawing), and where a column's name starts across.
double TaxonNameY(const Surface& picture4);
double TaxonNameX(const DiagramSettings& set, long t);

// The depth scale left of the diagram, on Picture1's vertical scale: a
// short tick at every sample and its label wherever it has room, from the
// top down. Returns the samples labelled.
std::vector<long> DrawSampleLabels(const Session& s, const Surface& picture1, Surface& scale);

// The line of the selected sample, drawn over the stored background; with
// the marker hidden only the background is put back.
void DrawDiagramMarker(const Session& s, const DiagramSettings& set, Surface& picture1);
void DrawEofMarker(const Session& s, const DiagramSettings& set, Surface& picture2);

// What lies under a point of Picture1: the taxon whose column holds x (0
// when none) and the sample nearest in depth (0 when there is none).
struct DiagramHit {
  long Taxon = 0;
  long Sample = 0;
};
DiagramHit HitDiagram(const Session& s, const DiagramSettings& set, double x, double y);

// The EOF half width as shown under the panel: "-4", "", "4".
QString ZoomLabel(double scatterZoom, int which);

}  // namespace varnoth
