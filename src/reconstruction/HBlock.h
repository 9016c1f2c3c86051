#pragma once
// h-block cross-validation: the reference sites within h km of each other,
// found through a grid of latitude-longitude cells so that only pairs in
// neighbouring cells are measured, and the positions of the sites read from
// a table in the target format of the interpolation tool.
#include <optional>
#include <string>
#include <vector>

#include "reconstruction/NearestSites.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

inline constexpr double kEarthRadiusKm = 6371;

// Great-circle distance in km on the sphere of radius 6371 km; longitudes
// are taken modulo 360, as SitesWithin takes them.
double GreatCircleKm(double lon1, double lat1, double lon2, double lat2);

// For every site (0-based), the other sites at a great-circle distance of at
// most hKm, ascending. h = 0 keeps nothing apart. Positions in degrees;
// latitudes must lie in -90..90 (longitudes are taken modulo 360).
struct SiteNeighbours {
  std::vector<long> Start;  // Count + 1 entries
  std::vector<int> Rows;
  bool All = false;  // h reaches round the whole sphere: every pair
  long Pairs() const { return static_cast<long>(Rows.size()); }
  analogue::Exclusion View() const {
    analogue::Exclusion e;
    e.Start = Start.empty() ? nullptr : Start.data();
    e.Rows = Rows.data();
    e.All = All;
    return e;
  }
};
SiteNeighbours SitesWithin(const std::vector<double>& lonDeg, const std::vector<double>& latDeg,
                           double hKm);

// The positions of the reference sites, one row per site in its order,
// read by the target-file reader of the interpolation tool (its messages,
// the name question by position, its limits). The session's reference is
// only read.
struct SitePositionsResult {
  bool Ok = false;
  std::vector<double> Lon, Lat;  // site i at index i - 1
  std::string Problem;           // what failed and where
};
SitePositionsResult ReadSitePositions(const Session& reference,
                                      const std::optional<std::string>& path, Dialogs& dialogs);

}  // namespace varnoth
