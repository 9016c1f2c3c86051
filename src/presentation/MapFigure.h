#pragma once
// The map of the interpolation tool: a world coastline of straight
// segments in plain longitude and latitude, the stations, the target
// sites, the targets without data, the reach of the interpolation around a
// target, the magnifier and the analogues of the selected sample.
#include <QColor>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "presentation/Surface.h"
#include "state/Session.h"

namespace varnoth {

struct Coastline {
  std::vector<std::array<float, 4>> Segments;  // x1, y1, x2, y2 in degrees
};

inline constexpr int kCoastPieces = 12;  // drawn one after another, for the progress

// Four numbers per line; lines that are not four numbers are skipped. An
// unreadable file gives an empty coastline.
Coastline LoadCoastline(const std::string& path);
// The program's coastline, read once from the first of `candidates` that
// holds one.
const Coastline& WorldCoastline(const std::vector<std::string>& candidates);

// Segments [first, last) of piece 1..12: consecutive slices of the table.
std::pair<std::size_t, std::size_t> CoastPiece(const Coastline& coast, int piece);
void DrawCoastPiece(Surface& s, const Coastline& coast, int piece);
// All pieces; `afterPiece` is told each finished piece, 1 to 12.
void DrawCoastline(Surface& s, const Coastline& coast,
                   const std::function<void(int)>& afterPiece = {});

// Colours of the map.
inline const QColor kCoastColour{126, 126, 126};
inline const QColor kStationColour{0, 255, 0};
inline const QColor kTargetFill{255, 255, 0};
inline const QColor kTargetOutline{255, 100, 0};
inline const QColor kNoDataFill{200, 200, 200};
inline const QColor kNoDataOutline{126, 126, 0};
inline const QColor kReachColour{255, 0, 0};

inline constexpr double kMapMark = 0.25;       // radius of a site on the map, degrees
inline constexpr double kMapHover = 0.2;       // how near the pointer names a site
inline constexpr double kMagnifierHalf = 1.2;  // the magnifier's reach, in radii

// The map's scale from its bounds: top the upper latitude, latitude up.
void SetMapScale(Surface& s, double lowLat, double highLat, double lowLon, double highLon);

void DrawStations(Surface& s, const InterpolationState& in, double radius);
void DrawTargets(Surface& s, const InterpolationState& in, double radius);
// Targets whose first climate value is missing, in grey.
void DrawNoDataTargets(Surface& s, const Session& session, double radius);
// A target's mark and its reach: a red disc, a red line out to the radius
// and the red circle of the radius.
void DrawReach(Surface& s, double lon, double lat, double mark, double reach);

// The site under the pointer within `tol`: stations, then targets, in file
// order; the last one found wins, so a target wins over a station.
std::string SiteNameAt(const InterpolationState& in, double x, double y, double tol);
// The targets within `tol` of the pointer, in file order.
std::vector<Count> TargetsAt(const InterpolationState& in, double x, double y, double tol);

// The magnifier around (x, y): coastline, stations and targets (with the
// grey marks once climate is in), `half` degrees each way.
void DrawMagnifier(Surface& s, const Session& session, const Coastline& coast, double x, double y,
                   double half);

// Red rings at the analogue sites of the selected sample; nothing when it
// has none.
void DrawAnalogueRings(Surface& s, const Session& session, double radius);

}  // namespace varnoth
