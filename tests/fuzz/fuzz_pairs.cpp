// Pair files of the calibration tool, read into either pair set: a failed
// read leaves what the labels show as it was; a complete one shows the
// pairs it counts and a finite line through them.
#include <cmath>

#include "FuzzSupport.h"
#include "calibration/PairSets.h"
#include "state/Failure.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The nine matrices of the chain (2.3 MB) play no part in reading pairs.
  static const CalibState fresh = [] {
    CalibState c;
    c.CalibMatrix.Erase();
    return c;
  }();
  const std::string path = WriteInput("pairs", data, size);
  for (int k : {0, 1}) {
    CalibState c = fresh;
    bool ok;
    try {
      ok = ImportPairFile(c, k, path);
    } catch (const RuntimeFailure& e) {
      // The fit after a complete read ends at the window's boundary.
      FUZZ_REQUIRE(e.kind() == FailureKind::Overflow || e.kind() == FailureKind::DivisionByZero);
      continue;
    }
    if (!ok) {
      FUZZ_REQUIRE(c.Labels.Label12 == fresh.Labels.Label12);
      FUZZ_REQUIRE(c.Labels.Label21 == fresh.Labels.Label21);
      FUZZ_REQUIRE(c.Labels.Label13 == fresh.Labels.Label13);
      continue;
    }
    FUZZ_REQUIRE(c.Labels.Label21[k] == path);
    FUZZ_REQUIRE(c.PairCount >= 0 && c.PairCount <= kPairRowLimit);
    for (long s = 1; s <= c.PairCount; ++s)
      FUZZ_REQUIRE(std::isfinite(c.PairData(k, s, 1)) && std::isfinite(c.PairData(k, s, 2)));
    FUZZ_REQUIRE(std::isfinite(c.FitSlope[k]) && std::isfinite(c.FitIntercept[k]));
    FUZZ_REQUIRE(std::isfinite(c.FitCorrelation[k]) && std::isfinite(c.FitStdDev[k]));
    FUZZ_REQUIRE(c.Labels.Label13[k].find("NaN") == std::string::npos);
    FUZZ_REQUIRE(c.Labels.Label17.find("NaN") == std::string::npos);
    FUZZ_REQUIRE(c.Labels.Label19.find("NaN") == std::string::npos);
  }
  return 0;
}
