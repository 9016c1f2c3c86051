// The target sites of the interpolation tool after the stations, with both
// answers to the name question; a complete file is interpolated with the
// tool's defaults and every estimate is finite.
#include "FuzzSupport.h"
#include "interpolation/Interpolation.h"
#include "interpolation/StationImport.h"
#include "state/Failure.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = InterpolationSession(true);
  const std::string path = WriteInput("targets", data, size);
  for (bool yes : {false, true}) {
    Session s = start;
    FuzzDialogs dialogs(yes);
    const InterpImportResult r = ImportData(s, kTargetFile, path, dialogs);
    FUZZ_REQUIRE(SameReference(s, start) && SameFossil(s, start));
    const InterpolationState& a = s.Interp;
    if (!r.Ok) {
      FUZZ_REQUIRE(SameInterpolationInputs(s, start));
      FUZZ_REQUIRE(!a.InterpTargetLoaded);
      continue;
    }
    FUZZ_REQUIRE(a.InterpTargetLoaded && a.InterpTargetCount == s.RefSiteCount);
    FUZZ_REQUIRE(yes || dialogs.questions == 0);
    FUZZ_REQUIRE(AllFinite(a.SiteLongitude) && AllFinite(a.SiteLatitude) &&
                 AllFinite(a.SiteAltitude) && AllFinite(a.InterpTargetLapse));
    NoProgress progress;
    try {
      DoInterpolation(s, InterpolationSettings{}, progress);
    } catch (const RuntimeFailure&) {
      continue;
    }
    FUZZ_REQUIRE(AllFinite(a.InterpTargetEstimate) && AllFinite(a.InterpRefEstimate));
    FUZZ_REQUIRE(AllFinite(s.ClimateData));
  }
  return 0;
}
