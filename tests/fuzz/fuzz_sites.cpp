// The positions of the reference sites for h-block cross-validation, with
// both answers to the name question: a read positions every site on the
// globe, and the grid's pairs within h are those that a distance per pair
// finds, each list ascending and the relation symmetric.
#include <cmath>

#include "FuzzSupport.h"
#include "reconstruction/HBlock.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = AnalysedSession(false);
  const std::string path = WriteInput("sites", data, size);
  for (bool yes : {false, true}) {
    FuzzDialogs dialogs(yes);
    const SitePositionsResult r = ReadSitePositions(start, path, dialogs);
    if (!r.Ok) {
      FUZZ_REQUIRE(!r.Problem.empty() && r.Lon.empty());
      continue;
    }
    const long n = start.RefSiteCount;
    FUZZ_REQUIRE(static_cast<long>(r.Lon.size()) == n && static_cast<long>(r.Lat.size()) == n);
    FUZZ_REQUIRE(yes || dialogs.questions == 0);
    for (long i = 0; i < n; ++i)
      FUZZ_REQUIRE(std::isfinite(r.Lon[i]) && r.Lat[i] >= -90 && r.Lat[i] <= 90);
    // Distances from the first two bytes: from nothing to round the globe.
    const double h = size >= 2 ? (data[0] * 256 + data[1]) * 0.35 : 100;
    for (double km : {0.0, 1.0, h, 20100.0}) {
      const SiteNeighbours near = SitesWithin(r.Lon, r.Lat, km);
      if (near.All) {
        FUZZ_REQUIRE(km >= 20015);
        continue;
      }
      FUZZ_REQUIRE(static_cast<long>(near.Start.size()) == n + 1 && near.Start[0] == 0);
      const analogue::Exclusion e = near.View();
      for (long i = 0; i < n; ++i) {
        FUZZ_REQUIRE(near.Start[i] <= near.Start[i + 1]);
        for (long j = 0; j < n; ++j) {
          if (j == i) {
            FUZZ_REQUIRE(!e.Excludes(i, j));
            continue;
          }
          const double d = GreatCircleKm(r.Lon[i], r.Lat[i], r.Lon[j], r.Lat[j]);
          FUZZ_REQUIRE(e.Excludes(i, j) == e.Excludes(j, i));
          // Away from the edge the two measures cannot disagree.
          if (km > 0 && d < km * (1 - 1e-9)) FUZZ_REQUIRE(e.Excludes(i, j));
          if (km == 0 || d > km * (1 + 1e-9)) FUZZ_REQUIRE(!e.Excludes(i, j));
        }
      }
    }
  }
  return 0;
}
