// A fuzzed reference table down the whole road, with settings from the
// input's first bytes: pre-treatment, EOFs, the same table as fossil and
// its projection, the envelope, CONISS, the score and EOF curve files, a
// climate file for its sites, the reconstruction on either basis with
// every enhancement and weighting, the error model and the EOF-climate
// table. Each stage ends either in the run-time failure or in finite
// results and files without NaN or infinity.
#include "FuzzSupport.h"
#include "RoadSupport.h"
#include "diagram/Coniss.h"
#include "diagram/EofClimateCorrelation.h"
#include "diagram/EofCurveFiles.h"
#include "envelope/Envelope.h"
#include "eof/PreTreatment.h"
#include "reconstruction/ClimateImport.h"
#include "state/Import.h"
#include "state/ScoreFiles.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const unsigned a = Setting(data, size, 0), b = Setting(data, size, 1), c = Setting(data, size, 2);
  const std::size_t skip = size < 3 ? size : 3;
  const std::string table = WriteInput("road-reference", data + skip, size - skip);
  Session s = FreshSession();
  FuzzDialogs yes(true);
  NoProgress progress;
  if (!ImportReference(s, table, yes, progress).Ok) return 0;

  PreTreatmentSettings p;
  p.ConvertToPercent = !(a & 1);
  p.Enhance = (a >> 1) & 1;
  p.SquareRoot = !((a >> 2) & 1);
  p.Correlation = (a >> 3) & 1;
  if (!Stage([&] { ApplyPreTreatment(s, p, progress); })) return 0;
  FUZZ_REQUIRE(s.EofDone);
  FUZZ_REQUIRE(AllFinite(s.RefScores) && AllFinite(s.Loadings) && AllFinite(s.Contribution));

  // The same table as the core: the taxa agree by position and name.
  if (!ImportFossil(s, table, yes, progress).Ok) return 0;
  FUZZ_REQUIRE(s.ProjectionDone);
  FUZZ_REQUIRE(AllFinite(s.FossilScores));

  if (Stage([&] { RunEnvelope(s, static_cast<int>(b % 11), progress); }))
    FUZZ_REQUIRE(s.EnvelopeDone);
  const std::string out = WriteInput("road-files", "");
  auto raising = [&](auto save) {
    // The score and EOF curve files raise the file failure instead.
    bool written = Stage([&] { save(); });
    FUZZ_SAVED(written, out);
  };
  const FileStamp stamp{"2026-01-02", "03:04:05"};
  raising([&] { SaveLoading(s, out, stamp, progress); });
  raising([&] { sSaveScore(s, out, stamp, progress); });
  raising([&] { fSaveScore(s, out, stamp, progress); });
  raising([&] { SaveEOF(s, 1, out, progress); });
  raising([&] { SaveAllEOF(s, out, progress); });
  Stage([&] { DoConiss(s, progress); });

  // Climate for the sites, one parameter of it from the fuzzed data.
  const double extreme = s.RefData(1, 1);
  if (!Inport_climate_data(s, WriteInput("road-climate", ClimateFor(s, extreme)), yes).Ok) return 0;
  Stage([&] {
    const Array2<float> r = EccCorrelationMatrix(s, progress);
    FUZZ_REQUIRE(AllFinite(r));
  });
  ReconstructAndSave(s, AnalogueSettingsFrom(s, c, b));
  return 0;
}
