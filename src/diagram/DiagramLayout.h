#pragma once
// The geometry of the stratigraphic diagram as plain functions of the data
// and a few settings: where samples stand on the depth axis, where each
// taxon's column stands, which parts each curve style draws, and the small
// rules of ticks, dots, names and stepping. The window only paints.
#include <string>
#include <vector>

#include "state/Array.h"
#include "state/Numeric.h"
#include "state/Session.h"

namespace varnoth {

// Height of sample i on all depth figures: 10 i with text labels; with
// number labels the depth spread evenly from 10 (first sample) to 10 N
// (last). Equal first and last depths are the division failure, a label
// that is no number the conversion failure.
double SamplePosition(const Session& s, long i);
// y(1..N) at once.
Array1<double> SamplePositions(const Session& s);

// The column table of the taxa, from the horizontal exaggeration slider
// (Slider3) and the width of the diagram surface in its own units.
struct TaxaColumns {
  float DiagramHScale = 0;           // percent unit to surface unit
  Count DiagramColumnGap = 0;        // gap between columns, percent units
  Array1<float> DiagramColumnStart;  // 0..T + 1: each taxon's zero line
  float DiagramLastWidth = 0;        // largest percentage of the last taxon
  // The horizontal scroll bar (HScroll1); its value returns to 0.
  bool ScrollVisible = false;
  long ScrollMax = 0, ScrollLargeChange = 0, ScrollSmallChange = 10;
};
inline constexpr double kDiagramScaleWidth = 500;  // Picture1's user width

TaxaColumns LayoutTaxaColumns(const Array2<double>& proportion, long samples, long taxa,
                              int hScaleSlider, double scaleWidth = kDiagramScaleWidth);

// Where taxon t stands with the scroll bar at `scroll`, in surface units.
double ColumnOffset(const TaxaColumns& c, long t, long scroll);  // off, percent units
double ZeroLineX(const TaxaColumns& c, long t, long scroll);
double ValueX(const TaxaColumns& c, long t, long scroll, double proportion);
// Columns out of view are skipped.
bool ColumnInView(const TaxaColumns& c, long t, long scroll,
                  double scaleWidth = kDiagramScaleWidth);
// The tick values of a column's scale, 0, 10, 20, ...: at least one, and
// more while the column's full extent is above the next value plus 5.
std::vector<double> ColumnTickValues(const TaxaColumns& c, long t);

// The curve styles by their menu entries.
enum class DiagramStyle {
  Bar,       // mnuBar "&Bar"
  Area,      // mnuArea "&Curve"
  Dot,       // mnuDot "&Dot (>0.5%)"
  Curve,     // mnuCurve "Bar and curve"
  DotCurve,  // mnuDotCurve "Dot and curve"
};
// The parts a style draws, in the order A to F.
struct StyleParts {
  bool Bars = false;         // A: a bar at every sample
  bool ClosingBars = false;  // B
  bool Curve = false;        // C: the connecting curve
  bool ZeroLine = true;      // D
  bool Dots = false;         // E
  bool Ticks = true;         // F
};
StyleParts PartsOf(DiagramStyle style);

// A dot is drawn from half a percent on, that value included.
inline bool HasDot(double proportion) { return proportion >= 0.005; }

// B, the closing bars of the "&Curve" style, in drawing order: a bar before
// each gap, the ends of the core, and last every marked sample again in the
// mark colour. MarkColour is whether the bar takes the mark colour.
struct Bar {
  long Sample;
  bool MarkColour;
};
std::vector<Bar> ClosingBars(const Array1<Flag>& empty, const Array1<Flag>& marked, long n);
// C: the samples i whose segment from i - 1 to i is drawn (neither empty).
std::vector<long> CurveSegments(const Array1<Flag>& empty, long n);

// The EOF axis: half width 2 ^ Slider2, its tick distance, and the ticks
// from the rounded -zoom to the rounded zoom.
double ScatterZoomFor(int slider2);
Count EofTickFor(double scatterZoom);
std::vector<double> EofAxisTicks(double scatterZoom);
// Samples drawn as bars on the EOF curve: marked and not empty.
long OutCount(const Session& s);
std::string OutCountText(long count);  // "Out count:  " with two blanks

// Names stand upright when they end in "ae" or "AE", the others in
// italics; when no name ends so, all stand upright. Index 1..T.
std::vector<bool> TaxonNameItalic(const Array1<std::string>& names, long taxa);

// UpDown1 and the stepping buttons: one sample on, wrapping above N to 1
// and below 1 to N.
Count StepSample(Count cursor, int step, Count n);

}  // namespace varnoth
