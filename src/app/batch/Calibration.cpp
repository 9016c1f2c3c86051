// The calibration of one parameter after the error model: the leave-one-out
// pairs through the matrix chain with a generated or a fitted error model,
// the matrix handed back and applied down the core, and the three matrix
// files. The defaults are those of the calibration tool and of the
// reconstruction window.
#include <iostream>

#include "Batch.h"
#include "ReconstructionStep.h"
#include "calibration/CalibrationFiles.h"
#include "calibration/HistMatrix.h"
#include "calibration/MatrixChain.h"
#include "calibration/PairSets.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"

namespace varnoth::batch {
namespace {

const std::vector<std::string> kOwnOptions = {"--t1",
                                              "--t2",
                                              "--model-sd",
                                              "--vest-vobs",
                                              "--smoothing",
                                              "--vertical-threshold",
                                              "--horizontal-threshold",
                                              "--coefficient1",
                                              "--coefficient2",
                                              "--skip",
                                              "--hist-rows",
                                              "--curve-smoothing"};

// A whole number from low to high, as a slider holds it.
long Whole(const Options& o, const std::string& name, long low, long high, long fallback) {
  if (!o.Has(name)) return fallback;
  const std::string v = o.Get(name);
  const std::string message =
      name + " takes a whole number from " + std::to_string(low) + " to " + std::to_string(high);
  if (v.empty() || v.size() > 5 || v.find_first_not_of("0123456789") != std::string::npos)
    throw UsageError{message};
  const long n = std::stol(v);
  if (n < low || n > high) throw UsageError{message};
  return n;
}

void CheckNumber(const Options& o, const std::string& name) {
  if (!o.Has(name)) return;
  try {
    StrictParse(o.Get(name));
  } catch (const RuntimeFailure&) {
    throw UsageError{name + " takes a number"};
  }
}

CalibSettings SettingsFrom(const Options& o) {
  CalibSettings st;
  st.Slider1 = Whole(o, "--coefficient1", 0, 1000, 682);
  st.Slider2 = Whole(o, "--coefficient2", 0, 1000, 954);
  st.Slider3 = Whole(o, "--smoothing", 1, 20, 10);
  st.Slider4 = Whole(o, "--model-sd", 1, 20, 5);
  st.Slider5 = Whole(o, "--vertical-threshold", 0, 10, 2);
  st.Slider6 = Whole(o, "--horizontal-threshold", 0, 10, 1);
  st.Check4 = !o.Has("--vest-vobs");
  st.Check5 = o.Has("--skip");
  return st;
}

void Check(const Options& o) {
  if (!o.Has("--calibrate")) {
    for (const auto& name : kOwnOptions)
      if (o.Has(name)) throw UsageError{name + " needs --calibrate"};
    return;
  }
  if (!o.Has("--climate")) throw UsageError{"--calibrate needs --climate"};
  if (o.Has("--model-sd") && o.Has("--vest-vobs"))
    throw UsageError{"--model-sd and --vest-vobs exclude each other"};
  CheckNumber(o, "--t1");
  CheckNumber(o, "--t2");
  SettingsFrom(o);
  Whole(o, "--hist-rows", 1, 32767, 0);
  Whole(o, "--curve-smoothing", 1, 10, 3);
}

[[noreturn]] void Stop(const std::string& message) {
  std::cerr << "Error: " << message << "\n";
  throw RunStopped{};
}

void Write(bool written, const std::string& path) { Written(written, path); }

void RunCalibrationStep(Context& ctx) {
  Session& s = ctx.S;
  const Options& o = ctx.Opts;
  NoProgress progress;
  const std::string name = o.Get("--calibrate");
  s.CurrentParameter = 0;
  if (SetCurrentParameter(s, name) == 0) Stop("No climate parameter is named " + name + ".");
  const long p = s.CurrentParameter;

  // The range the reconstruction window shows for the parameter.
  const ScaleLimits limits = CurveLimits(s, p);
  if (limits.NoAnalogues && !(o.Has("--t1") && o.Has("--t2")))
    Stop(name +
         ": no analogues through the whole sequence, so the curve has no range; give "
         "--t1 and --t2.");
  CalibState c;
  c.Text1 = o.Has("--t1") ? o.Get("--t1") : FormatGeneral(limits.Low);
  c.Text2 = o.Has("--t2") ? o.Get("--t2") : FormatGeneral(limits.High);
  const double t1 = LenientParse(c.Text1), t2 = LenientParse(c.Text2);

  TransferData(c, s, "");
  const int messages = ctx.Dialogs.MessageCount();
  SetRange(c, ctx.Dialogs);
  if (ctx.Dialogs.MessageCount() != messages) throw RunStopped{};

  CalibSettings st = SettingsFrom(o);
  if (o.Has("--vest-vobs")) {
    const std::string path = o.Get("--vest-vobs");
    std::string problem;
    if (!ImportPairFile(c, 1, path, &problem)) Stop(problem);
    if (LenientParse(c.Labels.Label12[1]) <= 1)
      Stop("The pair file " + path + " holds fewer than two complete pairs.");
  } else {
    UseGeneratedModel(c, st, progress);
  }
  ChainContext chain;
  chain.RefSiteCount = s.RefSiteCount;
  chain.ProgressBar = &progress;
  StartChain(c, st, chain);
  ReturnData(c);

  const long curveSmoothing = Whole(o, "--curve-smoothing", 1, 10, 3);
  const Count rows = static_cast<Count>(
      Whole(o, "--hist-rows", 1, 32767, HistColumnsFor(kHistPictureWidth, kHistPictureHeight)));
  if (curveSmoothing > 1) SmoothCurve(s, p, curveSmoothing);
  HistState h;
  BuildHistMatrix(h, s, c, t1, t2, curveSmoothing, rows, progress);

  AnalogueChoices choices{AnalogueSettingsFrom(s, o), ThresholdSliderFrom(o)};
  Write(SaveConfidence(c, st, ctx.Out("common-output.csv"), progress),
        ctx.Out("common-output.csv"));
  Write(SaveOstrel(s, c, st, choices, t1, ctx.Stamp, ctx.Out("ostrel.csv"), progress),
        ctx.Out("ostrel.csv"));
  Write(SaveTamsek(s, c, st, choices, h, curveSmoothing, t1, ctx.Stamp, ctx.Out("tamsek.csv"),
                   progress),
        ctx.Out("tamsek.csv"));
  ctx.Calibration = std::make_shared<CalibrationOutcome>(
      CalibrationOutcome{std::move(c), st, std::move(h), t1, t2});
}

const bool registered = RegisterStep(Step{
    600,
    {{"--calibrate", "NAME", "calibrate the error model of this parameter (implies --error-model)"},
     {"--t1", "X", "lower end of the range (the curve's rounded axis)"},
     {"--t2", "Y", "upper end of the range (the curve's rounded axis)"},
     {"--model-sd", "P", "generated error model, deviation in % of the range, 1..20 (5)"},
     {"--vest-vobs", "FILE", "fitted error model from a Vest-Vobs pair file"},
     {"--smoothing", "N", "smoothing width in % of the range, 1..20 (10)"},
     {"--vertical-threshold", "N", "samples a Vobs bin needs, 0..10 (2)"},
     {"--horizontal-threshold", "N", "samples a Vrec bin needs, 0..10 (1)"},
     {"--coefficient1", "N", "confidence coefficient 1 in tenths of a percent (682)"},
     {"--coefficient2", "N", "confidence coefficient 2 in tenths of a percent (954)"},
     {"--skip", "", "skip the normalisation per Vobs bin"},
     {"--hist-rows", "N", "depth rows of the matrix down the core (the window's default)"},
     {"--curve-smoothing", "N", "moving average of the curve down the core, 1..10 (3)"}},
    Check,
    [](const Options& o) { return o.Has("--calibrate"); },
    RunCalibrationStep});

}  // namespace
}  // namespace varnoth::batch
