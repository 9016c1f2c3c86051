// The analogue reconstruction: climate file, search over the fossil samples,
// the curve and analogue files, and with --error-model the leave-one-out
// estimates and one scatter file per parameter. The defaults are those of
// the reconstruction window.
#include <cmath>
#include <iostream>

#include "Batch.h"
#include "ReconstructionStep.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Format.h"

namespace varnoth::batch {
namespace {

const std::vector<std::string> kOwnOptions = {
    "--basis", "--analogue-enhance", "--weighting", "--weight-by",  "--min",
    "--max",   "--threshold",        "--parameter", "--error-model"};

void CheckChoice(const Options& o, const std::string& name,
                 const std::vector<std::string>& choices) {
  if (!o.Has(name)) return;
  for (const auto& c : choices)
    if (o.Get(name) == c) return;
  std::string all;
  for (const auto& c : choices) all += (all.empty() ? "" : "|") + c;
  throw UsageError{name + " takes one of: " + all};
}

// A whole number 0..20, as the count sliders hold.
long SliderCount(const Options& o, const std::string& name, long fallback) {
  if (!o.Has(name)) return fallback;
  const std::string v = o.Get(name);
  if (v.empty() || v.size() > 2 || v.find_first_not_of("0123456789") != std::string::npos ||
      std::stol(v) > kMaxRanks)
    throw UsageError{name + " takes a whole number from 0 to 20"};
  return std::stol(v);
}

// The threshold slider's value: T in hundredths, 0 to 200.
long ThresholdSlider(const Options& o) {
  if (!o.Has("--threshold")) return 20;
  const std::string v = o.Get("--threshold");
  const std::string message = "--threshold takes a number from 0 to 2 in steps of 0.01";
  double t;
  try {
    t = StrictParse(v);
  } catch (const RuntimeFailure&) {
    throw UsageError{message};
  }
  const double hundredths = std::nearbyint(t * 100);
  if (!(hundredths >= 0 && hundredths <= 200) || std::fabs(t * 100 - hundredths) > 1e-6)
    throw UsageError{message};
  return static_cast<long>(hundredths);
}

// The interpolated climate stands in for a climate file.
bool Applies(const Options& o) {
  return o.Has("--climate") || (o.Has("--stations") && o.Has("--fossil"));
}

void Check(const Options& o) {
  if (!Applies(o)) {
    for (const auto& name : kOwnOptions)
      if (o.Has(name)) throw UsageError{name + " needs --climate, or --stations with --fossil"};
    return;
  }
  if (!o.Has("--reference") || !o.Has("--fossil"))
    throw UsageError{"--climate needs both --reference and --fossil"};
  CheckChoice(o, "--basis", {"taxa", "eof"});
  CheckChoice(o, "--analogue-enhance", {"none", "sqrt", "log"});
  CheckChoice(o, "--weighting", {"none", "squared", "distance"});
  CheckChoice(o, "--weight-by", {"squared", "distance"});
  const long min = SliderCount(o, "--min", 0), max = SliderCount(o, "--max", 8);
  if (min > std::max(1L, max)) throw UsageError{"--min may not exceed --max"};
  ThresholdSlider(o);
  const std::string weighting = o.Get("--weighting", "none");
  if (weighting != "none" && o.Has("--weight-by") && o.Get("--weight-by") != weighting)
    throw UsageError{"--weight-by contradicts --weighting " + weighting};
  if (o.Get("--analogue-enhance", "none") != "none") {
    // The window offers this choice only on taxa and only for data that
    // pre-treatment left unenhanced.
    if (o.Get("--basis") == "eof")
      throw UsageError{"--analogue-enhance applies to --basis taxa only"};
    if (o.Get("--enhance", "none") != "none")
      throw UsageError{"--analogue-enhance is not available after --enhance"};
  }
}

AnalogueSettings SettingsFrom(const Session& s, const Options& o) {
  AnalogueSettings st;
  if (o.Get("--basis", "taxa") == "eof") {
    st.Basis = AnalogueBasis::EofValues;
    // On this basis the enhancement shown is the one of the pre-treatment;
    // it still sets the units of the threshold.
    if (s.PreTreatment.Enhance)
      st.Enhance = s.PreTreatment.SquareRoot ? AnalogueEnhance::SquareRoot : AnalogueEnhance::Log;
  } else {
    const std::string e = o.Get("--analogue-enhance", "none");
    st.Enhance = e == "sqrt"  ? AnalogueEnhance::SquareRoot
                 : e == "log" ? AnalogueEnhance::Log
                              : AnalogueEnhance::None;
  }
  const std::string weighting = o.Get("--weighting", "none");
  st.InverseWeighting = weighting != "none";
  const std::string by = weighting != "none" ? weighting : o.Get("--weight-by", "squared");
  st.WeightBy = by == "distance" ? AnalogueWeightBy::Distance : AnalogueWeightBy::SquaredDistance;
  st.MaxAnalogues = static_cast<Count>(std::max(1L, SliderCount(o, "--max", 8)));
  st.MinAnalogues = static_cast<Count>(SliderCount(o, "--min", 0));
  DefineThreshold(st, ThresholdSlider(o));
  return st;
}

void RunReconstructionStep(Context& c) {
  Session& s = c.S;
  NoProgress progress;
  if (!s.EofDone || !s.ProjectionDone)
    Stop("The reconstruction needs the EOF analysis of both tables.");
  const std::string path = c.Opts.Get("--climate");
  // Climate handed over by the interpolation needs no file.
  ClimateImportResult imported;
  imported.Ok = s.SiteInfoLoaded;
  if (!imported.Ok) imported = Inport_climate_data(s, path, c.Dialogs);
  if (!imported.Ok) {
    if (imported.Failure && IsFileFailure(*imported.Failure))
      Stop("Cannot read the climate file " + path + " (" + FailureName(*imported.Failure) + ").");
    // After the program's own message, or in its place: what and where.
    Stop(imported.Problem);
  }

  const std::string name = c.Opts.Get("--parameter", s.ClimateParamNames(1));
  s.CurrentParameter = 0;
  if (SetCurrentParameter(s, name) == 0) Stop("No climate parameter is named " + name + ".");

  const AnalogueSettings st = SettingsFrom(s, c.Opts);
  RunReconstruction(s, st, progress);
  if (CurveLimits(s, s.CurrentParameter).NoAnalogues)
    Stop(std::string(kNoAnalogueLines[0]).substr(1) + " " +
         std::string(kNoAnalogueLines[1]).substr(1) + " " +
         std::string(kNoAnalogueLines[2]).substr(1));

  Written(SaveCurveAll(s, c.Out("curve-all.csv"), progress), c.Out("curve-all.csv"));
  Written(SaveCurveAllwithE(s, c.Out("curve-all-with-error.csv"), progress),
          c.Out("curve-all-with-error.csv"));
  const SiteInfo sites{s.Interp.SiteMapNames, s.Interp.SiteLongitude, s.Interp.SiteLatitude,
                       s.Interp.SiteAltitude};
  Written(
      SaveDistAna(s, c.Out("analogue-details.csv"), progress, s.SiteInfoLoaded ? &sites : nullptr),
      c.Out("analogue-details.csv"));
  Written(SaveCurve(s, c.Out("curve.csv"), progress), c.Out("curve.csv"));
  Written(SaveCurveWithE(s, c.Out("curve-with-error.csv"), progress),
          c.Out("curve-with-error.csv"));

  if (!c.Opts.Has("--error-model") && !c.Opts.Has("--calibrate")) return;
  GenerateErrorModel(s, st, progress);
  const Count shown = s.CurrentParameter;
  for (Count p = 1; p <= s.ClimateParamCount; ++p) {
    s.CurrentParameter = p;
    const std::string file = c.Out("scatter-" + FilePart(s.ClimateParamNames(p)) + ".csv");
    Written(SaveScatter(s, file, progress), file);
  }
  s.CurrentParameter = shown;
  s.ErrorModelReady = true;
}

const bool registered = RegisterStep(
    Step{500,
         {{"--climate", "FILE", "climate at the reference sites: runs the reconstruction"},
          {"--basis", "taxa|eof", "compare taxa proportions or EOF values (taxa)"},
          {"--analogue-enhance", "none|sqrt|log", "enhancing minor taxa in the search (none)"},
          {"--weighting", "none|squared|distance", "inversed weighting of the estimate (none)"},
          {"--weight-by", "squared|distance", "the weighting's distance without --weighting"},
          {"--min", "N", "least number of analogues, 0..20 (0)"},
          {"--max", "N", "largest number of analogues, 1..20 (8)"},
          {"--threshold", "T", "dissimilarity threshold, 0..2 in steps of 0.01 (0.2)"},
          {"--parameter", "NAME", "parameter of curve.csv and curve-with-error.csv (the first)"},
          {"--error-model", "", "leave-one-out estimates: one scatter-<parameter>.csv each"}},
         Check,
         Applies,
         RunReconstructionStep});

}  // namespace

AnalogueSettings AnalogueSettingsFrom(const Session& s, const Options& o) {
  return SettingsFrom(s, o);
}
long ThresholdSliderFrom(const Options& o) { return ThresholdSlider(o); }

}  // namespace varnoth::batch
