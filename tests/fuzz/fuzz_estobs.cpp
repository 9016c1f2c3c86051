// Files of estimated-observed pairs: a file that is read holds the pairs
// it counts and a finite line through them.
#include <cmath>

#include "FuzzSupport.h"
#include "reconstruction/ClimateImport.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session fresh = FreshSession();
  Session s = fresh;
  FuzzDialogs dialogs(true);
  const EstObsResult r = ImportEstObs(s, WriteInput("estobs", data, size), dialogs);
  if (!r.Ok) {
    FUZZ_REQUIRE(!s.EstObsImported);
    return 0;
  }
  FUZZ_REQUIRE(s.EstObsImported);
  FUZZ_REQUIRE(s.EstObsCount >= 2 && s.EstObsCount <= kMaxEstObsPairs);
  FUZZ_REQUIRE(s.EstObsEstimated.Upper() >= s.EstObsCount);
  for (long i = 1; i <= s.EstObsCount; ++i)
    FUZZ_REQUIRE(std::isfinite(s.EstObsEstimated(i)) && std::isfinite(s.EstObsObserved(i)));
  FUZZ_REQUIRE(std::isfinite(r.Slope) && std::isfinite(r.Intercept));
  FUZZ_REQUIRE(std::isfinite(r.Correlation) && std::fabs(r.Correlation) <= 1.0000001);
  return 0;
}
