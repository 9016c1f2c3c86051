// What the error model gives besides its scatter files: the performance
// table of the leave-one-out estimates, and with --h-block the error model
// again for each h, the sites within h km of the left-out site kept out of
// its candidates, with a scatter file and performance rows of its own.
#include "ErrorModels.h"

#include <algorithm>
#include <sstream>

#include "ReconstructionStep.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/HBlock.h"
#include "reconstruction/Performance.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Format.h"
#include "state/RecordWriter.h"

namespace varnoth::batch {
namespace {

std::vector<double> HBlockValues(const Options& o) {
  std::vector<double> values;
  if (!o.Has("--h-block")) return values;
  const std::string text = o.Get("--h-block");
  const UsageError wrong{"--h-block takes distances in km, 0 or more, as 100,200"};
  std::stringstream in(text);
  std::string item;
  while (std::getline(in, item, ',')) {
    double v;
    try {
      v = StrictParse(item);
    } catch (const RuntimeFailure&) {
      throw wrong;
    }
    if (!(v >= 0) || !std::isfinite(v)) throw wrong;
    if (std::find(values.begin(), values.end(), v) != values.end())
      throw UsageError{"--h-block names " + FormatGeneral(v) + " km twice"};
    values.push_back(v);
  }
  if (values.empty() || text.back() == ',') throw wrong;
  return values;
}

void Check(const Options& o) {
  if (o.Has("--h-block")) {
    HBlockValues(o);
    if (!o.Has("--sites")) throw UsageError{"--h-block needs --sites"};
    if (!o.Has("--error-model")) throw UsageError{"--h-block needs --error-model"};
  } else if (o.Has("--sites")) {
    throw UsageError{"--sites is read for --h-block only"};
  }
}

void AddRows(RecordWriter& w, const Session& s, double h, const Array2<double>& estimates) {
  for (long p = 1; p <= s.ClimateParamCount; ++p) {
    std::vector<double> e, o;
    for (long i = 1; i <= s.RefSiteCount; ++i) {
      e.push_back(estimates(i, p));
      o.push_back(s.ClimateData(i, p));
    }
    const PerformanceFigures f = ComputePerformance(e, o);
    w.Text(s.ClimateParamNames(p)).Number(h).Integer(f.Sites);
    w.Number(f.Rmsep).Number(f.RSquared).Number(f.MeanBias).Number(f.MaxBias);
    w.Number(f.ObservedMin).Number(f.ObservedMax).End();
  }
}

void WriteScatters(Session& s, const std::string& outDir, const std::string& suffix) {
  NoProgress progress;
  const Count shown = s.CurrentParameter;
  for (Count p = 1; p <= s.ClimateParamCount; ++p) {
    s.CurrentParameter = p;
    const std::string file =
        outDir + "/scatter-" + FilePart(s.ClimateParamNames(p)) + suffix + ".csv";
    Written(SaveScatter(s, file, progress), file);
  }
  s.CurrentParameter = shown;
}

void RunStep(Context& c) {
  if (!c.S.ErrorModelReady) return;
  WriteErrorModelTables(c.S, c.Opts, c.Dialogs, c.OutDir);
}

const bool registered = RegisterStep(
    Step{550,
         {{"--sites", "FILE", "positions of the reference sites (target format), for --h-block"},
          {"--h-block", "KM[,KM...]",
           "error model again leaving out the sites within KM km: scatter-<parameter>-h<KM>.csv"}},
         Check,
         [](const Options& o) { return o.Has("--error-model"); },
         RunStep});

}  // namespace

void WriteErrorModelTables(Session& s, const Options& o, Dialogs& dialogs,
                           const std::string& outDir) {
  RecordWriter w;
  w.Text("Parameter").Text("h (km)").Text("Sites").Text("RMSEP").Text("R2");
  w.Text("Mean bias").Text("Maximum bias").Text("Observed minimum").Text("Observed maximum").End();
  AddRows(w, s, 0, s.ReconRefValue);

  const std::vector<double> hs = HBlockValues(o);
  if (!hs.empty()) {
    const SitePositionsResult sites = ReadSitePositions(s, o.Get("--sites"), dialogs);
    if (!sites.Ok) Stop(sites.Problem);
    const AnalogueSettings st = AnalogueSettingsFrom(s, o);
    for (double h : hs) {
      NoProgress progress;
      const SiteNeighbours near = SitesWithin(sites.Lon, sites.Lat, h);
      const analogue::Exclusion excluded = near.View();
      Array2<double> estimates;
      GenerateErrorModelExcluding(s, st, excluded, estimates, progress);
      // The scatter writer reads the session's estimates: lend it these.
      std::swap(estimates, s.ReconRefValue);
      WriteScatters(s, outDir, "-h" + FormatGeneral(h));
      std::swap(estimates, s.ReconRefValue);
      // Leave-one-out is the first row of each parameter already.
      if (h > 0) AddRows(w, s, h, estimates);
    }
  }
  const std::string file = outDir + "/performance.csv";
  w.Save(file);
}

}  // namespace varnoth::batch
