// A fuzzed Vest-Vobs pair file through the whole calibration: the pairs
// of an analysed session's error model beside it, the chain with the
// fitted model and settings from the input, "Return", the matrix down the
// core, and the three matrix files. Each stage ends either in the run-time
// failure or in finite matrices and files.
#include "FuzzSupport.h"
#include "RoadSupport.h"
#include "calibration/CalibrationFiles.h"
#include "calibration/HistMatrix.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

using namespace varnoth;
using namespace varnoth::fuzz;

namespace {

// An analysed session with climate, a reconstruction and an error model.
const Session& Modelled() {
  static const Session s = [] {
    Session s = AnalysedSession(true);
    FuzzDialogs yes(true);
    if (!Inport_climate_data(s, WriteInput("chain-climate", ClimateFor(s, 2.5)), yes).Ok)
      Broken("the starting climate imports", __FILE__, __LINE__);
    AnalogueSettings st;
    DefineThreshold(st, 200);
    if (!ReconstructAndSave(s, st)) Broken("the starting error model", __FILE__, __LINE__);
    return s;
  }();
  return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CalibState fresh;
  const unsigned a = Setting(data, size, 0), b = Setting(data, size, 1), d = Setting(data, size, 2);
  const std::size_t skip = size < 3 ? size : 3;
  Session s = Modelled();
  CalibState c = fresh;
  FuzzDialogs yes(true);
  NoProgress progress;
  const double t1 = -4 + static_cast<double>(a % 5), t2 = 5 + static_cast<double>(b % 40);
  c.Text1 = FormatGeneral(t1);
  c.Text2 = FormatGeneral(t2);
  c.CalibToolOpen = true;
  if (!Stage([&] { TransferData(c, s, ""); })) return 0;
  SetRange(c, yes);
  bool read = false;
  if (!Stage([&] {
        read = ImportPairFile(c, 1, WriteInput("chain-pairs", data + skip, size - skip));
      }))
    return 0;
  if (!read) return 0;
  Reached("pair file read");

  CalibSettings st;
  st.Slider1 = static_cast<long>(a * 4 % 1001);
  st.Slider2 = static_cast<long>(b * 4 % 1001);
  st.Slider3 = static_cast<long>(1 + d % 20);
  st.Slider5 = static_cast<long>(d % 11);
  st.Slider6 = static_cast<long>((d >> 4) % 11);
  st.Check4 = false;  // the fitted model of the pair file
  st.Check5 = (a >> 7) & 1;
  ChainContext chain;
  chain.RefSiteCount = s.RefSiteCount;
  chain.ProgressBar = &progress;
  if (!Stage([&] { StartChain(c, st, chain); })) return 0;
  Reached("calibration chain");
  if (!Stage([&] { ReturnData(c); })) return 0;
  Reached("Return");
  for (long k = 0; k <= 8; ++k)
    for (long i = 0; i <= kGridLast; ++i)
      for (long j = 0; j <= kGridLast; ++j) FUZZ_REQUIRE(std::isfinite(c.CalibMatrix(k, i, j)));

  const std::string out = WriteInput("chain-out", "");
  FUZZ_SAVED(SaveProbability(c, st, out, progress), out);
  FUZZ_SAVED(SaveConfidence(c, st, out, progress), out);
  AnalogueChoices choices;
  DefineThreshold(choices.Settings, 200);
  choices.ThresholdSlider = 200;
  FUZZ_SAVED(SaveOstrel(s, c, st, choices, t1, {"2026-01-02", "03:04:05"}, out, progress), out);

  const long smoothing = 1 + static_cast<long>(b % 4);
  HistState h;
  if (!Stage([&] {
        if (smoothing > 1) SmoothCurve(s, 1, smoothing);
        BuildHistMatrix(h, s, c, t1, t2, smoothing, static_cast<Count>(1 + d % 200), progress);
      }))
    return 0;
  Reached("matrix down the core");
  FUZZ_SAVED(
      SaveTamsek(s, c, st, choices, h, smoothing, t1, {"2026-01-02", "03:04:05"}, out, progress),
      out);
  Reached(kRoadEnd);
  return 0;
}
