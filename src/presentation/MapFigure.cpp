#include "presentation/MapFigure.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>

namespace varnoth {

namespace {

bool ParseNumber(const char*& p, const char* end, float& v) {
  while (p < end && (*p == ' ' || *p == '\t')) ++p;
  const auto r = std::from_chars(p, end, v);
  if (r.ec != std::errc()) return false;
  p = r.ptr;
  while (p < end && (*p == ' ' || *p == '\t' || *p == ',' || *p == '\r')) ++p;
  return true;
}

// A filled mark with its own outline: thousands a redraw, so the disc and
// the ring go straight onto the raster.
void Mark(Surface& s, double x, double y, double radius, const QColor& fill,
          const QColor& outline) {
  s.SetFillColour(fill);
  s.Circle(x, y, radius, fill);
  s.Ring(x, y, radius, outline);
}

bool Within(float v, double centre, double tol) { return v > centre - tol && v < centre + tol; }

}  // namespace

Coastline LoadCoastline(const std::string& path) {
  Coastline c;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    const char* p = line.data();
    const char* end = p + line.size();
    std::array<float, 4> seg{};
    bool ok = true;
    for (float& v : seg) ok = ok && ParseNumber(p, end, v);
    if (ok) c.Segments.push_back(seg);
  }
  return c;
}

const Coastline& WorldCoastline(const std::vector<std::string>& candidates) {
  static std::map<std::vector<std::string>, Coastline> loaded;
  auto found = loaded.find(candidates);
  if (found != loaded.end()) return found->second;
  Coastline c;
  for (const std::string& path : candidates) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) continue;
    c = LoadCoastline(path);
    if (!c.Segments.empty()) break;
  }
  return loaded.emplace(candidates, std::move(c)).first->second;
}

std::pair<std::size_t, std::size_t> CoastPiece(const Coastline& coast, int piece) {
  const std::size_t n = coast.Segments.size();
  const auto at = [n](int k) { return n * static_cast<std::size_t>(k) / kCoastPieces; };
  return {at(piece - 1), at(piece)};
}

void DrawCoastPiece(Surface& s, const Coastline& coast, int piece) {
  const auto [first, last] = CoastPiece(coast, piece);
  if (last > first) s.Lines(coast.Segments.data() + first, last - first, kCoastColour);
}

void DrawCoastline(Surface& s, const Coastline& coast, const std::function<void(int)>& afterPiece) {
  s.SetDrawWidth(1);
  for (int piece = 1; piece <= kCoastPieces; ++piece) {
    DrawCoastPiece(s, coast, piece);
    if (afterPiece) afterPiece(piece);
  }
}

void SetMapScale(Surface& s, double lowLat, double highLat, double lowLon, double highLon) {
  s.SetScale(lowLon, highLat, highLon - lowLon, lowLat - highLat);
}

void DrawStations(Surface& s, const InterpolationState& in, double radius) {
  s.SetFillStyle(FillStyle::Solid);
  s.SetFillColour(kStationColour);
  for (long j = 1; j <= in.InterpRefCount; ++j)
    s.Circle(in.InterpRefLon(j), in.InterpRefLat(j), radius, kStationColour);
}

void DrawTargets(Surface& s, const InterpolationState& in, double radius) {
  s.SetFillStyle(FillStyle::Solid);
  for (long i = 1; i <= in.InterpTargetCount && i < static_cast<long>(in.SiteLongitude.Size()); ++i)
    Mark(s, in.SiteLongitude(i), in.SiteLatitude(i), radius, kTargetFill, kTargetOutline);
}

void DrawNoDataTargets(Surface& s, const Session& session, double radius) {
  const InterpolationState& in = session.Interp;
  if (!session.ClimateData.Allocated()) return;
  s.SetFillStyle(FillStyle::Solid);
  const long rows = static_cast<long>(session.ClimateData.Rows()) - 1;
  for (long i = 1; i <= in.InterpTargetCount && i <= rows; ++i)
    if (i < static_cast<long>(in.SiteLongitude.Size()) && session.ClimateData(i, 1) == kMissing)
      Mark(s, in.SiteLongitude(i), in.SiteLatitude(i), radius, kNoDataFill, kNoDataOutline);
}

void DrawReach(Surface& s, double lon, double lat, double mark, double reach) {
  s.SetFillStyle(FillStyle::Solid);
  s.SetFillColour(kReachColour);
  s.Circle(lon, lat, mark, kReachColour);
  s.SetFillStyle(FillStyle::Transparent);
  s.Line(lon, lat, lon + reach, lat, kReachColour);
  s.Circle(lon, lat, reach, kReachColour);
}

std::string SiteNameAt(const InterpolationState& in, double x, double y, double tol) {
  std::string name;
  for (long j = 1; j <= in.InterpRefCount && j < static_cast<long>(in.InterpRefLon.Size()); ++j)
    if (Within(in.InterpRefLon(j), x, tol) && Within(in.InterpRefLat(j), y, tol))
      name = in.InterpRefNames(j);
  if (in.InterpTargetLoaded)
    for (long i = 1; i <= in.InterpTargetCount; ++i)
      if (Within(in.SiteLongitude(i), x, tol) && Within(in.SiteLatitude(i), y, tol))
        name = in.SiteMapNames(i);
  return name;
}

std::vector<Count> TargetsAt(const InterpolationState& in, double x, double y, double tol) {
  std::vector<Count> found;
  if (!in.InterpTargetLoaded) return found;
  for (long i = 1; i <= in.InterpTargetCount; ++i)
    if (Within(in.SiteLongitude(i), x, tol) && Within(in.SiteLatitude(i), y, tol))
      found.push_back(static_cast<Count>(i));
  return found;
}

void DrawMagnifier(Surface& s, const Session& session, const Coastline& coast, double x, double y,
                   double half) {
  const InterpolationState& in = session.Interp;
  // Degrees as long across as down, whatever the surface's shape.
  const double width = 2 * half * s.Width() / std::max(1, s.Height());
  s.SetScale(x - width / 2, y + half, width, -2 * half);
  s.FilledBox(s.ScaleLeft(), s.ScaleTop(), s.ScaleLeft() + width, s.ScaleTop() - 2 * half,
              Qt::white);
  DrawCoastline(s, coast);
  const double mark = std::abs(s.ScaleWidth()) / 20;
  if (in.InterpRefLoaded) DrawStations(s, in, mark);
  if (in.InterpTargetLoaded) {
    DrawTargets(s, in, mark);
    if (session.ClimateLoaded) DrawNoDataTargets(s, session, mark);
  }
  s.StoreBackground();
}

void DrawAnalogueRings(Surface& s, const Session& session, double radius) {
  const InterpolationState& in = session.Interp;
  const long k = session.SampleCursor;
  if (!session.AnalogueCount.Allocated() || k < 1 ||
      k >= static_cast<long>(session.AnalogueCount.Size()))
    return;
  s.SetFillStyle(FillStyle::Transparent);
  s.SetDrawWidth(1);
  for (long r = 1; r <= session.AnalogueCount(k); ++r) {
    const long site = session.AnalogueSite(k, r);
    if (site < 1 || site > in.InterpTargetCount ||
        site >= static_cast<long>(in.SiteLongitude.Size()))
      continue;
    s.Circle(in.SiteLongitude(site), in.SiteLatitude(site), radius, kReachColour);
  }
}

}  // namespace varnoth
