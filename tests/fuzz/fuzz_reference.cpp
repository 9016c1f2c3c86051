// The reference table as the first table of a session, and its EOF analysis
// when the table is small enough to analyse at fuzzing speed.
#include "FuzzSupport.h"
#include "eof/PreTreatment.h"
#include "state/Failure.h"
#include "state/Format.h"
#include "state/Import.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session fresh = FreshSession();
  Session s = fresh;
  FuzzDialogs dialogs(true);
  NoProgress progress;
  const ImportResult r = ImportReference(s, WriteInput("reference", data, size), dialogs, progress);
  FUZZ_REQUIRE(s.FossilTaxaCount == 0 && !s.FossilData.Allocated());
  if (!r.Ok) {
    FUZZ_REQUIRE(s.RefTaxaCount == 0);
    FUZZ_REQUIRE(s.ReferenceImportOpen);
    FUZZ_REQUIRE(!s.EofDone);
    FUZZ_REQUIRE(!r.Problem.empty());
    // The reference's failure path always shows the format error.
    FUZZ_REQUIRE(dialogs.messages >= 1);
    return 0;
  }
  const long n = s.RefTaxaCount, rows = s.RefSiteCount;
  FUZZ_REQUIRE(r.IsBase && s.ReferenceIsBase && !s.FossilIsBase);
  // The end test comes at the start of a row, so a file that ends with the
  // cells the width detection took reads as a table of no sites.
  FUZZ_REQUIRE(n >= 1 && n <= 500 && rows >= 0 && rows <= 9999);
  FUZZ_REQUIRE(s.TaxaCount == n && s.EigenOrder == n && s.BaseRowCount == rows);
  FUZZ_REQUIRE(s.RefTaxaNames.Upper() == n && s.RefSiteNames.Upper() == rows);
  FUZZ_REQUIRE(s.RefData.Upper0() == rows && s.RefData.Upper1() == n);
  FUZZ_REQUIRE(s.RefScores.Upper0() == rows && s.RefScoreRaw.Upper1() == n);
  FUZZ_REQUIRE(s.SiteIsExtreme.Upper() == rows);
  FUZZ_REQUIRE(AllFinite(s.RefData));
  FUZZ_REQUIRE(!s.ReferenceImportOpen && s.FossilImportOpen);
  FUZZ_REQUIRE(dialogs.messages == 0);
  // Number labels after the first row are stored in their general form.
  if (!s.RefLabelsAreText)
    for (long i = 2; i <= rows; ++i) FUZZ_REQUIRE(IsNumberCell(s.RefSiteNames(i)));

  if (n > 40 || rows > 400) return 0;
  const Session imported = s;
  try {
    PreTreatmentSettings p;
    p.Enhance = size > 0 && (data[0] & 1);
    p.SquareRoot = size > 0 && (data[0] & 2);
    p.Correlation = size > 0 && (data[0] & 4);
    ApplyPreTreatment(s, p, progress);
  } catch (const RuntimeFailure&) {
    // Ends at the window's boundary; the table itself stays as read.
    FUZZ_REQUIRE(s.RefSiteNames == imported.RefSiteNames && s.RefTaxaCount == n);
    return 0;
  }
  // What the analysis hands on to files and figures is never NaN or infinite.
  FUZZ_REQUIRE(AllFinite(s.EofMatrix) && AllFinite(s.EigenVectors) && AllFinite(s.Loadings));
  FUZZ_REQUIRE(AllFinite(s.Contribution) && AllFinite(s.CumContribution));
  FUZZ_REQUIRE(AllFinite(s.RefScores) && AllFinite(s.RefScoreRaw) && AllFinite(s.RefProportion));
  FUZZ_REQUIRE(s.EofDone == (n > 2));
  return 0;
}
