// The fossil table after an analysed reference, with both answers to the
// name question: the reference and its EOFs never change, and a fossil
// that is read is projected with finite scores.
#include "FuzzSupport.h"
#include "state/Import.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = AnalysedSession(false);
  const std::string path = WriteInput("fossil", data, size);
  for (bool yes : {false, true}) {
    Session s = start;
    FuzzDialogs dialogs(yes);
    NoProgress progress;
    const ImportResult r = ImportFossil(s, path, dialogs, progress);
    FUZZ_REQUIRE(SameReference(s, start) && SameEofResults(s, start));
    FUZZ_REQUIRE(s.ReferenceIsBase && !s.FossilIsBase);
    if (!r.Ok) {
      FUZZ_REQUIRE(s.FossilTaxaCount == 0 && s.FossilImportOpen && !r.Problem.empty());
      continue;
    }
    const long n = s.FossilTaxaCount, rows = s.FossilSampleCount;
    FUZZ_REQUIRE(n == s.RefTaxaCount && r.Projected && !r.IsBase);
    FUZZ_REQUIRE(yes || dialogs.questions == 0);
    FUZZ_REQUIRE(s.TaxaMismatch(0) == std::to_string(dialogs.questions));
    FUZZ_REQUIRE(s.FossilLabels.Upper() == rows && s.FossilTaxaNames.Upper() == n);
    FUZZ_REQUIRE(s.FossilData.Upper0() == rows && s.FossilData.Upper1() == n);
    FUZZ_REQUIRE(s.FossilScores.Upper0() == rows && s.FossilScores.Upper1() == n);
    FUZZ_REQUIRE(s.FossilEmptySample.Upper() == rows && s.SampleIsOut.Upper() == rows);
    FUZZ_REQUIRE(s.SampleCursor >= 1 && s.SampleCursor <= rows);
    FUZZ_REQUIRE(!s.FossilEmptySample(s.SampleCursor));
    FUZZ_REQUIRE(AllFinite(s.FossilData) && AllFinite(s.FossilScores));
    FUZZ_REQUIRE(AllFinite(s.FossilScoreRaw) && AllFinite(s.FossilProportion));
    FUZZ_REQUIRE(s.ProjectionDone == (rows >= 3));
    FUZZ_REQUIRE(!s.FossilImportOpen && !s.ReferenceImportOpen);
  }
  return 0;
}
