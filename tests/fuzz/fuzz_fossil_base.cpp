// The fossil table as the first table of a session, and its EOF analysis
// when small.
#include "FuzzSupport.h"
#include "eof/PreTreatment.h"
#include "state/Failure.h"
#include "state/Import.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session fresh = FreshSession();
  Session s = fresh;
  FuzzDialogs dialogs(true);
  NoProgress progress;
  const ImportResult r = ImportFossil(s, WriteInput("fossil-base", data, size), dialogs, progress);
  FUZZ_REQUIRE(s.RefTaxaCount == 0 && !s.RefData.Allocated());
  if (!r.Ok) {
    FUZZ_REQUIRE(s.FossilTaxaCount == 0 && s.FossilImportOpen && !r.Problem.empty());
    // The fossil's failure path shows no message of its own.
    FUZZ_REQUIRE(dialogs.messages <= 1);
    return 0;
  }
  const long n = s.FossilTaxaCount, rows = s.FossilSampleCount;
  FUZZ_REQUIRE(r.IsBase && s.FossilIsBase && !s.ReferenceIsBase);
  FUZZ_REQUIRE(n >= 1 && n <= 500 && rows >= 1);
  FUZZ_REQUIRE(s.TaxaCount == n && s.BaseRowCount == rows);
  FUZZ_REQUIRE(s.FossilData.Upper0() == rows && s.FossilData.Upper1() == n);
  FUZZ_REQUIRE(s.FossilLabels.Upper() == rows && s.FossilEmptySample.Upper() == rows);
  FUZZ_REQUIRE(s.SampleCursor >= 1 && s.SampleCursor <= rows);
  FUZZ_REQUIRE(!s.FossilEmptySample(s.SampleCursor));
  FUZZ_REQUIRE(AllFinite(s.FossilData));
  FUZZ_REQUIRE(!s.FossilImportOpen && s.ReferenceImportOpen);

  if (n > 40 || rows > 400) return 0;
  try {
    PreTreatmentSettings p;
    p.Correlation = size > 0 && (data[0] & 4);
    ApplyPreTreatment(s, p, progress);
  } catch (const RuntimeFailure&) {
    FUZZ_REQUIRE(s.FossilTaxaCount == n);
    return 0;
  }
  FUZZ_REQUIRE(AllFinite(s.EofMatrix) && AllFinite(s.EigenVectors) && AllFinite(s.Loadings));
  FUZZ_REQUIRE(AllFinite(s.FossilScores) && AllFinite(s.Contribution));
  return 0;
}
