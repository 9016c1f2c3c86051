#pragma once
// The two scatter figures of the main window: the taxa by their loadings,
// and the reference sites and fossil samples by their scores, flat on two
// EOFs or turned in three, with a stereo partner view. Plain functions of
// the session, the view settings and the surfaces, so that they draw into
// an image with no window.
#include <QColor>
#include <QString>

#include "presentation/Colours.h"
#include "presentation/Surface.h"
#include "state/Session.h"

namespace varnoth {

enum class NameDisplay { ShowAll = 0, Sequential = 1, Hide = 2 };

// What the display controls of the main window say.
struct ScatterView {
  bool ThreeD = false;         // "3-D" rather than "2-D"
  bool Stereo = false;         // "Stereo": draw the partner view too
  bool TicksAndLabels = true;  // "Tick / Label"
  NameDisplay TaxaNames = NameDisplay::ShowAll;
  NameDisplay SiteNames = NameDisplay::ShowAll;
  NameDisplay SampleNames = NameDisplay::ShowAll;
  double FontSize = 7;
};

// The pair of pictures of one figure; the partner may be absent.
struct FigureSurfaces {
  Surface* Main = nullptr;
  Surface* Partner = nullptr;
};

struct ScreenPoint {
  float X = 0, Y = 0, Depth = 0;
};

// Scale range R of each figure: the taxa keep 1 with a correlation matrix.
double TaxaRange(const Session& s);
double SitesRange(const Session& s);
// Distance between ticks for the range R.
Count TickStep(double range);

// Screen position of (x, y, z): turned by the rotation angles in 3-D, taken
// as it stands in 2-D.
ScreenPoint ProjectPoint(const RotationPair& angles, double x, double y, double z, bool threeD);
// X of the same point in the stereo partner, turned 3 degrees about the
// vertical.
double StereoPartnerX(double x0, double depth);

void DrawTaxa(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
              Count b, Count c, FigureSurfaces fig);
void DrawSites(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
               Count b, Count c, FigureSurfaces fig);
// Drawn over the sites: the path of the core and its samples outside the
// envelope.
void DrawFossil(const Session& s, const ColourSettings& colours, const ScatterView& view, Count a,
                Count b, Count c, FigureSurfaces fig);

// The one line under the figures that tells how many axes the envelope uses.
QString AxesLineText(const Session& s);
QColor AxesLineColour(const Session& s, const ColourSettings& colours);
void DrawAxesLine(const Session& s, const ColourSettings& colours, Surface& surface);

// "Temp: 1, 2, 3" and "Axis: 1, 2, 3".
QString TempLabelText(const Session& s);
QString AxisLabelText(const Session& s);

}  // namespace varnoth
