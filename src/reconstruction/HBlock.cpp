#include "reconstruction/HBlock.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "interpolation/StationImport.h"
#include "state/Format.h"

namespace varnoth {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180;

struct Unit {
  double x, y, z;
};

Unit UnitVector(double lonDeg, double latDeg) {
  const double lon = lonDeg * kDegree, lat = latDeg * kDegree;
  return {std::cos(lat) * std::cos(lon), std::cos(lat) * std::sin(lon), std::sin(lat)};
}

// Squared chord between two points of the unit sphere: the same number
// whichever point comes first, so the lists are symmetric.
double Chord2(const Unit& a, const Unit& b) {
  const double dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
  return dx * dx + dy * dy + dz * dz;
}

// The longitude in -180 <= l < 180. The remainder and the one shift are
// exact, so a longitude of any size stands for one place; adding 180 first
// would be lost in the rounding of a longitude of 1e17 or more.
double NormalLongitude(double lon) {
  double l = std::fmod(lon, 360);
  if (l < -180)
    l += 360;
  else if (l >= 180)
    l -= 360;
  return l;
}

}  // namespace

double GreatCircleKm(double lon1, double lat1, double lon2, double lat2) {
  const double c = std::sqrt(
      Chord2(UnitVector(NormalLongitude(lon1), lat1), UnitVector(NormalLongitude(lon2), lat2)));
  return 2 * kEarthRadiusKm * std::asin(std::min(1.0, c / 2));
}

SiteNeighbours SitesWithin(const std::vector<double>& lonDeg, const std::vector<double>& latDeg,
                           double hKm) {
  const long n = static_cast<long>(std::min(lonDeg.size(), latDeg.size()));
  SiteNeighbours out;
  out.Start.assign(static_cast<std::size_t>(n) + 1, 0);
  if (!(hKm > 0) || n == 0) return out;
  const double angle = hKm / kEarthRadiusKm;  // radians
  if (angle >= kPi) {
    out.All = true;
    return out;
  }
  // Within h exactly when the chord is at most 2 sin(h / 2R).
  const double limit = 4 * std::sin(angle / 2) * std::sin(angle / 2);
  const double angleDeg = angle / kDegree;

  // Cells of at least h on a side (and no smaller than a hundredth of a
  // degree, so that their numbers stay small); a cell's number runs along
  // its latitude row, so the cells of one row in a longitude range are one
  // range of numbers in the sorted list.
  const double cell = std::max(angleDeg, 0.01);
  const long rows = static_cast<long>(std::ceil(180 / cell));
  const long cols = static_cast<long>(std::ceil(360 / cell));
  auto rowOf = [&](double lat) {
    return std::clamp(static_cast<long>(std::floor((lat + 90) / cell)), 0L, rows - 1);
  };
  auto colOf = [&](double lon) {
    return std::clamp(static_cast<long>(std::floor((lon + 180) / cell)), 0L, cols - 1);
  };
  std::vector<Unit> unit(static_cast<std::size_t>(n));
  std::vector<std::pair<long long, int>> byCell(static_cast<std::size_t>(n));
  for (long i = 0; i < n; ++i) {
    const double lon = NormalLongitude(lonDeg[i]);
    unit[i] = UnitVector(lon, latDeg[i]);
    byCell[i] = {static_cast<long long>(rowOf(latDeg[i])) * cols + colOf(lon), static_cast<int>(i)};
  }
  std::sort(byCell.begin(), byCell.end());

  std::vector<int> found;
  const double slack = 1e-9;
  for (long i = 0; i < n; ++i) {
    found.clear();
    const double lat = latDeg[i], lon = NormalLongitude(lonDeg[i]);
    const double south = lat - angleDeg - slack, north = lat + angleDeg + slack;
    // The widest longitude of a cap that reaches no pole.
    const bool pole = south <= -90 || north >= 90;
    double spread = 180;
    if (!pole) {
      const double s = std::sin(angle) / std::cos(lat * kDegree);
      spread = s >= 1 ? 180 : std::asin(s) / kDegree + slack;
    }
    std::vector<std::pair<long, long>> ranges;  // column ranges
    if (spread >= 180) {
      ranges.push_back({0, cols - 1});
    } else {
      const double west = lon - spread, east = lon + spread;
      if (west < -180) {
        ranges.push_back({colOf(west + 360), cols - 1});
        ranges.push_back({0, colOf(east)});
      } else if (east >= 180) {
        ranges.push_back({colOf(west), cols - 1});
        ranges.push_back({0, colOf(east - 360)});
      } else {
        ranges.push_back({colOf(west), colOf(east)});
      }
    }
    for (long r = rowOf(std::max(-90.0, south)); r <= rowOf(std::min(90.0, north)); ++r)
      for (const auto& [c0, c1] : ranges) {
        const long long lo = static_cast<long long>(r) * cols + c0;
        const long long hi = static_cast<long long>(r) * cols + c1;
        auto it = std::lower_bound(byCell.begin(), byCell.end(), std::make_pair(lo, -1));
        for (; it != byCell.end() && it->first <= hi; ++it) {
          const int j = it->second;
          if (j != i && Chord2(unit[i], unit[j]) <= limit) found.push_back(j);
        }
      }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    out.Rows.insert(out.Rows.end(), found.begin(), found.end());
    out.Start[i + 1] = static_cast<long>(out.Rows.size());
  }
  return out;
}

SitePositionsResult ReadSitePositions(const Session& reference,
                                      const std::optional<std::string>& path, Dialogs& dialogs) {
  SitePositionsResult result;
  // The reader checks the rows against the reference's sites and fills
  // the tool's state: a scratch session holds both.
  Session scratch;
  scratch.RefSiteCount = reference.RefSiteCount;
  scratch.RefSiteNames = reference.RefSiteNames;
  // The reader lays out the lapse rates by the station table's columns: the
  // five fixed ones are all a file of positions has.
  scratch.Interp.InterpColumnCount = 5;
  scratch.Interp.InterpParamNames.ReDim(5);
  const InterpImportResult read = ImportData(scratch, kTargetFile, path, dialogs);
  if (!read.Ok) {
    result.Problem = read.Problem;
    return result;
  }
  const InterpolationState& st = scratch.Interp;
  const std::string file = path ? *path : std::string();
  for (long i = 1; i <= st.InterpTargetCount; ++i) {
    const double lon = st.SiteLongitude(i), lat = st.SiteLatitude(i);
    if (!std::isfinite(lon) || !std::isfinite(lat) || lat < -90 || lat > 90) {
      result.Problem = "The position of site " + st.SiteMapNames(i) + " (longitude " +
                       FormatSingle(st.SiteLongitude(i)) + ", latitude " +
                       FormatSingle(st.SiteLatitude(i)) +
                       ") is not on the globe: latitudes run from -90 to 90, in " + file +
                       ", row " + std::to_string(i + 1);
      result.Lon.clear();
      result.Lat.clear();
      return result;
    }
    result.Lon.push_back(lon);
    result.Lat.push_back(lat);
  }
  result.Ok = true;
  return result;
}

}  // namespace varnoth
