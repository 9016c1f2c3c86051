// The station table of the interpolation tool: a failed or refused file
// leaves what was loaded before; a complete one holds the stations and
// columns it counts, all finite.
#include "FuzzSupport.h"
#include "interpolation/StationImport.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = InterpolationSession(false);
  Session s = start;
  FuzzDialogs dialogs(true);
  const InterpImportResult r =
      ImportData(s, kStationFile, WriteInput("stations", data, size), dialogs);
  FUZZ_REQUIRE(SameReference(s, start) && SameFossil(s, start));
  const InterpolationState& a = s.Interp;
  if (!r.Ok) {
    FUZZ_REQUIRE(SameInterpolationInputs(s, start));
    FUZZ_REQUIRE(r.MessageShown || r.Failure);
    return 0;
  }
  const long n = a.InterpRefCount, c = a.InterpColumnCount;
  FUZZ_REQUIRE(a.InterpRefLoaded && n >= 1 && c >= 1);
  FUZZ_REQUIRE(a.InterpRefNames.Upper() >= n && a.InterpParamNames.Upper() >= c);
  FUZZ_REQUIRE(a.InterpRefClimate.Upper0() >= n && a.InterpRefClimate.Upper1() >= c);
  FUZZ_REQUIRE(AllFinite(a.InterpRefClimate) && AllFinite(a.InterpRefLapse));
  FUZZ_REQUIRE(AllFinite(a.InterpRefLon) && AllFinite(a.InterpRefLat) && AllFinite(a.InterpRefAlt));
  return 0;
}
