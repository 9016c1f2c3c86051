// The interpolation tool: station table and target sites, the run in
// either mode, and its files: the climate at the reference sites in the
// climate file's format, the leave-one-out table, and one accuracy matrix
// per parameter. Without --climate it runs before the reconstruction,
// which then uses the interpolated climate as after "Return to Varnoth".
#include "interpolation/Interpolation.h"

#include <iostream>

#include "Batch.h"
#include "interpolation/Accuracy.h"
#include "interpolation/StationImport.h"

namespace varnoth::batch {
namespace {

const std::vector<std::string> kOwnOptions = {"--targets", "--interp-mode", "--exponent",
                                              "--radius"};

void Check(const Options& o) {
  if (!o.Has("--stations")) {
    for (const auto& name : kOwnOptions)
      if (o.Has(name)) throw UsageError{name + " needs --stations"};
    return;
  }
  if (!o.Has("--targets")) throw UsageError{"--stations needs --targets"};
  if (!o.Has("--reference")) throw UsageError{"--stations needs --reference"};
  if (o.Has("--interp-mode")) {
    const std::string m = o.Get("--interp-mode");
    if (m != "interpolation" && m != "nearest")
      throw UsageError{"--interp-mode takes one of: interpolation|nearest"};
  }
}

void Import(Context& c, Count mode, const std::string& option, const std::string& what) {
  const std::string path = c.Opts.Get(option);
  const InterpImportResult r = ImportData(c.S, mode, path, c.Dialogs);
  if (r.Ok) return;
  if (r.Failure && IsFileFailure(*r.Failure))
    Stop("Cannot read the " + what + " " + path + " (" + FailureName(*r.Failure) + ").");
  // After the program's own message, or in its place: what and where.
  Stop(r.Problem);
}

void RunInterpolationStep(Context& c) {
  Session& s = c.S;
  NoProgress progress;
  Import(c, kStationFile, "--stations", "station file");
  Import(c, kTargetFile, "--targets", "target file");

  InterpolationSettings st;
  st.Mode = c.Opts.Get("--interp-mode", "interpolation") == "nearest" ? InterpMode::MinimumDistance
                                                                      : InterpMode::Interpolation;
  st.Exponent = c.Opts.Get("--exponent", st.Exponent);
  st.Radius = c.Opts.Get("--radius", st.Radius);
  try {
    DoInterpolation(s, st, progress);
  } catch (const RuntimeFailure& e) {
    Stop(std::string(e.what()) + " in the interpolation of " + c.Opts.Get("--stations"));
  }

  // Every parameter's accuracy check before any file: a coefficient that
  // overflowed ends the run with nothing of this step written.
  InterpolationState& in = s.Interp;
  for (Count k = 6; k <= in.InterpColumnCount; ++k) {
    in.InterpCurrentParam = k;
    const ScatterPairs pairs = ScatterPairsPL(s);
    // (A value too large for the packed singles ends only the packing,
    // after the coefficient, as in the window.)
    if (pairs.Failure == FailureKind::Overflow && !pairs.Correlation)
      Stop(std::string(FailureName(*pairs.Failure)) + " in the accuracy check of " +
           in.InterpParamNames(k) + " from " + c.Opts.Get("--stations"));
  }

  Written(SaveInterpolatedClimate(s, c.Out("climate.csv"), progress), c.Out("climate.csv"));
  Written(SaveTestFile(s, c.Out("stations-loo.csv"), progress), c.Out("stations-loo.csv"));
  for (Count k = 6; k <= in.InterpColumnCount; ++k) {
    in.InterpCurrentParam = k;
    ScatterPairsPL(s);
    const std::string file = c.Out("accuracy-" + FilePart(in.InterpParamNames(k)) + ".csv");
    Written(SaveInterpMatrix(s, file, progress), file);
  }
  // The accuracy window opens at the first parameter.
  in.InterpCurrentParam = 6;
  if (in.InterpColumnCount >= 6) ScatterPairsPL(s);
  s.SiteInfoLoaded = true;
}

const std::vector<OptionSpec> kOptions = {
    {"--stations", "FILE", "climate stations: interpolates climate onto the reference sites"},
    {"--targets", "FILE", "positions of the reference sites, in their order"},
    {"--interp-mode", "interpolation|nearest", "weighting or the nearest station (interpolation)"},
    {"--exponent", "TEXT", "weighting factor: w = d^TEXT (-2)"},
    {"--radius", "TEXT", "radius in degrees (3)"}};

// Before the reconstruction when it is to use the interpolated climate;
// after it when a climate file is given.
const bool beforeReconstruction =
    RegisterStep(Step{400, kOptions, Check,
                      [](const Options& o) { return o.Has("--stations") && !o.Has("--climate"); },
                      RunInterpolationStep});
const bool afterReconstruction =
    RegisterStep(Step{600,
                      {},
                      nullptr,
                      [](const Options& o) { return o.Has("--stations") && o.Has("--climate"); },
                      RunInterpolationStep});

}  // namespace
}  // namespace varnoth::batch
