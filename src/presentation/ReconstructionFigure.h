#pragma once
// The reconstruction as plain drawings on surfaces: the down-core curve of
// one climate parameter with its error bars, the samples outside the
// envelope, the moving average and the line of the selected sample; and the
// scatter of the leave-one-out estimates against the observed climate. The
// window reads its controls into a CurveSettings record; tests and
// benchmarks draw into an image with no window.
#include <QColor>
#include <optional>

#include "presentation/Colours.h"
#include "presentation/Surface.h"
#include "state/Session.h"

namespace varnoth {

struct CurveSettings {
  double Low = 0, High = 0;    // the numbers of Text1 and Text2
  bool SelectionShown = true;  // Check3 ticked, or the sizing pointer of a drag
  bool ErrorBars = false;      // Check5 "Show conventional error bars"
  long Smoothing = 3;          // Slider6 "Smoothing level"
  ColourSettings Colours;
};

// The grey of the conventional error bars.
inline const QColor kErrorBarGrey(200, 200, 200);

// The vertical scale of the curve: from the first to the last sample when
// both ends are empty, else the diagram's gaps. Its horizontal scale is
// set by each drawing.
void SetCurveScale(const Session& s, Surface& picture1);

// y of sample k on the curve, the diagram's sample position.
double CurvePosition(const Session& s, long k);

// The curve of parameter p, stored as background, with the selection line
// on top. Nothing is drawn when the two limits are equal (returns false).
// With a smoothing level above 1 the moving average is computed anew into
// SmoothedPosition and SmoothedValue.
bool DrawReconstructionCurve(Session& s, long p, const CurveSettings& set, Surface& picture1);

// The stored curve again with the selection line over it: what a moved
// selection redraws. A histogram panel, if given, gets the same line.
void DrawCurveMarker(const Session& s, const CurveSettings& set, Surface& picture1,
                     Surface* picture3 = nullptr);

// The three lines printed at the left edge of a cleared curve when no
// sample of the parameter has an analogue.
void DrawNoAnalogues(Surface& picture1);

// The leave-one-out estimate against the climate value of every reference
// site for parameter p, as circles of radius |width| / 67 on axes from Low
// to High both ways, stored as background with the estimate of the
// selected sample as a vertical line on top. Returns false (drawing
// nothing) when the limits are equal.
bool DrawEstObsScatter(const Session& s, long p, const CurveSettings& set, Surface& picture2);
void DrawScatterMarker(const Session& s, long p, const CurveSettings& set, Surface& picture2);

// The calibration matrix's companion of the scatter line: the estimate of
// the selected sample as an upright line over the matrix, whose axes run
// over `steps` bins from Low to High after a margin of 25 bins. Drawn over
// the stored matrix; a missing estimate draws nothing.
void DrawMatrixMarker(const Session& s, long p, const CurveSettings& set, long steps,
                      Surface& picture4);

// Where the selection box beside the curve stands, in twips from the top
// of the curve picture: the offset of sample y on a picture `heightTwips`
// high, less the box's own 300.
double SampleBoxOffset(double y, double scaleTop, double scaleHeight, double heightTwips);

// Whether a point of the curve at user height y is close enough to the
// selection line to take hold of it.
bool NearSelectionLine(const Session& s, const Surface& picture1, double y);
// The sample whose position lies nearest to y (the first of equals).
long NearestSample(const Session& s, double y);

}  // namespace varnoth
