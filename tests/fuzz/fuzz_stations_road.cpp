// A fuzzed station table down the interpolation road: the targets of the
// starting session, the interpolation in either mode with exponents and
// radii from the input (odd, fractional, zero, huge), the accuracy pairs
// of every parameter, the climate file, the leave-one-out table and the
// accuracy files, then a reconstruction and error model on the result.
// Each stage ends either in the run-time failure or in finite results and
// files.
#include "FuzzSupport.h"
#include "RoadSupport.h"
#include "interpolation/Accuracy.h"
#include "interpolation/Interpolation.h"
#include "interpolation/StationImport.h"

using namespace varnoth;
using namespace varnoth::fuzz;

namespace {

const char* const kExponents[] = {"-2", "-1", "-3", "1", "3", "-0.5", "0", "-7", "2.5", "x"};
const char* const kRadii[] = {"3", "0.5", "1", "10", "180", "0", "-1", "1000", "1e-300", "x"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Session start = [] {
    Session s = AnalysedSession(true);
    s.Interp.InterpWindowOpen = true;
    return s;
  }();
  const unsigned a = Setting(data, size, 0), b = Setting(data, size, 1), c = Setting(data, size, 2);
  const std::size_t skip = size < 3 ? size : 3;
  Session s = start;
  FuzzDialogs yes(true);
  NoProgress progress;
  if (!ImportData(s, kStationFile, WriteInput("road-stations", data + skip, size - skip), yes).Ok)
    return 0;
  Reached("stations imported");
  if (!ImportData(s, kTargetFile, WriteInput("road-targets", kTargetTable), yes).Ok) return 0;

  InterpolationSettings st;
  st.Mode = a & 1 ? InterpMode::MinimumDistance : InterpMode::Interpolation;
  st.Exponent = kExponents[(a >> 1) % 10];
  st.Radius = kRadii[b % 10];
  if (!Stage([&] { DoInterpolation(s, st, progress); })) return 0;
  InterpolationState& in = s.Interp;
  FUZZ_REQUIRE(AllFinite(in.InterpTargetEstimate) && AllFinite(in.InterpRefEstimate));
  FUZZ_REQUIRE(AllFinite(s.ClimateData));
  Reached(st.Mode == InterpMode::MinimumDistance ? "interpolation, nearest station"
                                                 : "interpolation, weighted");

  const std::string out = WriteInput("road-interp-out", "");
  FUZZ_SAVED(SaveInterpolatedClimate(s, out, progress), out);
  FUZZ_SAVED(SaveTestFile(s, out, progress), out);
  for (Count k = 6; k <= in.InterpColumnCount; ++k) {
    in.InterpCurrentParam = k;
    const ScatterPairs pairs = ScatterPairsPL(s);
    // The coefficient shown is a number, or none when the run ended first.
    if (pairs.Correlation) {
      FUZZ_REQUIRE(std::isfinite(*pairs.Correlation));
      Reached("accuracy correlation");
    }
    FUZZ_REQUIRE(pairs.CorrelationText.find("NaN") == std::string::npos);
    if (pairs.Counted)
      FUZZ_REQUIRE(std::isfinite(pairs.MeanEstimate) && std::isfinite(pairs.MeanObserved));
    // The scatter's axes: a range, or the overflow failure for values past it.
    Stage([&] {
      const AxisRange range = AutoScale(s);
      FUZZ_REQUIRE(std::isfinite(range.Min) && std::isfinite(range.Max));
    });
    FUZZ_SAVED(SaveInterpMatrix(s, out, progress), out);
  }
  in.InterpCurrentParam = 6;
  s.SiteInfoLoaded = true;
  if (ReconstructAndSave(s, AnalogueSettingsFrom(s, c, b))) Reached(kRoadEnd);
  return 0;
}
