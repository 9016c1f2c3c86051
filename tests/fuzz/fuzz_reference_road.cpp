// A fuzzed reference table down the whole road, with settings from the
// input's first four bytes: pre-treatment, EOFs, the same table as fossil and
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
  const unsigned a = Setting(data, size, 0), b = Setting(data, size, 1), c = Setting(data, size, 2),
                 d = Setting(data, size, 3);
  const std::size_t skip = size < 4 ? size : 4;
  const std::string table = WriteInput("road-reference", data + skip, size - skip);
  Session s = FreshSession();
  FuzzDialogs yes(true);
  NoProgress progress;
  if (!ImportReference(s, table, yes, progress).Ok) return 0;
  Reached("reference imported");

  PreTreatmentSettings p;
  p.ConvertToPercent = !(a & 1);
  p.Enhance = (a >> 1) & 1;
  p.SquareRoot = !((a >> 2) & 1);
  p.Correlation = (a >> 3) & 1;
  if (!Stage([&] { ApplyPreTreatment(s, p, progress); })) return 0;
  FUZZ_REQUIRE(s.EofDone);
  FUZZ_REQUIRE(AllFinite(s.RefScores) && AllFinite(s.Loadings) && AllFinite(s.Contribution));
  Reached("pre-treatment and EOFs");

  // The same table as the core: the taxa agree by position and name.
  if (!ImportFossil(s, table, yes, progress).Ok) return 0;
  // A core of fewer than three samples is treated but counts as not projected.
  FUZZ_REQUIRE(s.ProjectionDone == (s.FossilSampleCount >= 3));
  if (!s.ProjectionDone) return 0;
  FUZZ_REQUIRE(AllFinite(s.FossilScores));
  Reached("projection");

  if (Stage([&] { RunEnvelope(s, static_cast<int>(b % 11), progress); })) {
    FUZZ_REQUIRE(s.EnvelopeDone);
    Reached("envelope");
  }
  const std::string out = WriteInput("road-files", "");
  auto raising = [&](std::string_view name, auto save) {
    // The score and EOF curve files raise the file failure instead.
    const bool written = Stage([&] { save(); });
    FUZZ_REQUIRE(Saved(name, written, out));
  };
  const FileStamp stamp{"2026-01-02", "03:04:05"};
  raising("SaveLoading", [&] { SaveLoading(s, out, stamp, progress); });
  raising("sSaveScore", [&] { sSaveScore(s, out, stamp, progress); });
  raising("fSaveScore", [&] { fSaveScore(s, out, stamp, progress); });
  raising("SaveEOF", [&] { SaveEOF(s, 1, out, progress); });
  raising("SaveAllEOF", [&] { SaveAllEOF(s, out, progress); });
  if (Stage([&] { DoConiss(s, progress); })) Reached("CONISS");

  // Climate for the sites, one parameter of it from the fuzzed data or a
  // value at the edge of the range (the missing value among them).
  const double extremes[] = {s.RefData(1, 1), 1e308, -1e308, 1e-308, 3.4e38, -9999, 0, 1e154};
  const double extreme = extremes[d % 8];
  if (!Inport_climate_data(s, WriteInput("road-climate", ClimateFor(s, extreme)), yes).Ok) return 0;
  Reached("climate imported");
  Stage([&] {
    const Array2<float> r = EccCorrelationMatrix(s, progress);
    FUZZ_REQUIRE(AllFinite(r));
    Reached("EOF-climate table");
  });
  if (ReconstructAndSave(s, AnalogueSettingsFrom(s, c, b))) Reached(kRoadEnd);
  return 0;
}
