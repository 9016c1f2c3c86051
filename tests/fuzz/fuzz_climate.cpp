// The climate file after both tables are analysed, with both answers to
// the site name question; a file that is read is reconstructed with the
// window's default settings, and every estimate is finite.
#include "FuzzSupport.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = AnalysedSession(true);
  const std::string path = WriteInput("climate", data, size);
  for (bool yes : {false, true}) {
    Session s = start;
    FuzzDialogs dialogs(yes);
    const ClimateImportResult r = Inport_climate_data(s, path, dialogs);
    FUZZ_REQUIRE(SameReference(s, start) && SameFossil(s, start) && SameEofResults(s, start));
    if (!r.Ok) {
      FUZZ_REQUIRE(!s.ClimateLoaded && !r.Problem.empty());
      continue;
    }
    const long m = s.ClimateParamCount;
    FUZZ_REQUIRE(s.ClimateLoaded && m >= 1);
    FUZZ_REQUIRE(s.ClimateData.Upper0() == s.RefSiteCount && s.ClimateData.Upper1() == m);
    FUZZ_REQUIRE(s.ClimateParamNames.Upper() == m);
    FUZZ_REQUIRE(s.ClimateSiteNames.Upper() == s.RefSiteCount);
    FUZZ_REQUIRE(AllFinite(s.ClimateData));
    FUZZ_REQUIRE(yes || dialogs.questions == 0);
    if (m > 50) continue;
    NoProgress progress;
    AnalogueSettings st;
    try {
      RunReconstruction(s, st, progress);
      GenerateErrorModel(s, st, progress);
    } catch (const RuntimeFailure&) {
      continue;
    }
    FUZZ_REQUIRE(AllFinite(s.ReconValue) && AllFinite(s.ReconRefValue));
    FUZZ_REQUIRE(AllFinite(s.AnalogueDistance));
  }
  return 0;
}
