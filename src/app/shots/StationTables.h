#pragma once
// Made-up station and target tables for pictures and window tests: the
// example data set has no positions. Sites are scattered over western and
// central Europe from a fixed seed; the climate is a smooth field that
// cools northwards and with altitude, with lapse rates per row, so that the
// map shows real coast and the accuracy check a real correlation.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "state/Format.h"

namespace varnoth::demo {

struct Site {
  std::string Name;
  double Lon = 0, Lat = 0, Alt = 0;
};

class Lcg {
 public:
  explicit Lcg(std::uint64_t seed) : state_(seed) {}
  double Next() {  // [0, 1)
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state_ >> 11) / 9007199254740992.0;
  }

 private:
  std::uint64_t state_;
};

inline std::string Cell(double v) { return FormatGeneral(std::nearbyint(v * 100) / 100); }

inline double Altitude(Lcg& g) { return std::nearbyint(std::pow(g.Next(), 2) * 1500); }

// The climate at a place: January and July temperatures and precipitation.
inline double TJan(double lon, double lat, double alt) {
  return 8 - 0.55 * (lat - 40) - 0.08 * lon - alt * 0.5 / 100;
}
inline double TJul(double lon, double lat, double alt) {
  return 26 - 0.35 * (lat - 40) + 0.05 * lon - alt * 0.6 / 100;
}
inline double PAnn(double lon, double lat, double alt) {
  return 900 - 12 * lon + 4 * (lat - 40) + alt * 30 / 100;
}

// `count` stations over lon -8..28, lat 37..58, with the three parameters.
inline std::string StationTable(int count, std::uint64_t seed = 7) {
  Lcg g(seed);
  std::string t = "Station,Longitude,Latitude,Altitude,T lapse,P lapse,TJan,TJul,PAnn\r\n";
  for (int j = 1; j <= count; ++j) {
    const double lon = -8 + 36 * g.Next(), lat = 37 + 21 * g.Next(), alt = Altitude(g);
    const double noise = (g.Next() - 0.5) * 0.6;
    t += "S" + std::to_string(j) + "," + Cell(lon) + "," + Cell(lat) + "," + Cell(alt) +
         ",-0.5,30," + Cell(TJan(lon, lat, alt) + noise) + "," + Cell(TJul(lon, lat, alt) - noise) +
         "," + Cell(PAnn(lon, lat, alt) + 20 * noise) + "\r\n";
  }
  return t;
}

// One target row per name, scattered over lon -2..24, lat 41..55.
inline std::vector<Site> TargetSites(const std::vector<std::string>& names,
                                     std::uint64_t seed = 11) {
  Lcg g(seed);
  std::vector<Site> sites;
  for (const std::string& n : names) {
    Site s{n, -2 + 26 * g.Next(), 41 + 14 * g.Next(), 0};
    s.Alt = Altitude(g);
    sites.push_back(s);
  }
  return sites;
}

inline std::string TargetTable(const std::vector<Site>& sites) {
  std::string t = "Site,Longitude,Latitude,Altitude,T lapse,P lapse\r\n";
  for (const Site& s : sites)
    t += s.Name + "," + Cell(s.Lon) + "," + Cell(s.Lat) + "," + Cell(s.Alt) + ",-0.6,25\r\n";
  return t;
}

}  // namespace varnoth::demo
