// The road of the EOF analysis: base import, pre-treatment, analysis, second
// import and projection; and, at the end of the run, the three score files.
#include <filesystem>
#include <iostream>

#include "Batch.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"

namespace varnoth::batch {
namespace {

void CheckChoice(const Options& o, const std::string& name,
                 const std::vector<std::string>& choices) {
  if (!o.Has(name)) return;
  std::string v = o.Get(name);
  for (const auto& c : choices)
    if (v == c) return;
  throw UsageError{name + " takes one of: " + [&] {
    std::string all;
    for (const auto& c : choices) all += (all.empty() ? "" : "|") + c;
    return all;
  }()};
}

PreTreatmentSettings SettingsFrom(const Options& o) {
  PreTreatmentSettings p;
  p.ConvertToPercent = o.Get("--convert", "yes") == "yes";
  std::string enhance = o.Get("--enhance", "none");
  p.Enhance = enhance != "none";
  p.SquareRoot = enhance != "log";
  p.Correlation = o.Get("--matrix", "covariance") == "correlation";
  return p;
}

// The window's failure path of an import may show nothing; here the user
// always learns what failed and where.
void Require(const ImportResult& result) {
  if (result.Ok) return;
  std::cerr << "Error: " << result.Problem << "\n";
  throw RunStopped{};
}

void RunRoad(Context& c) {
  NoProgress progress;
  const Options& o = c.Opts;
  const bool referenceBase = o.Get("--base", "reference") == "reference";
  const PreTreatmentSettings settings = SettingsFrom(o);
  auto importReference = [&] {
    Require(ImportReference(c.S, o.Get("--reference"), c.Dialogs, progress));
  };
  auto importFossil = [&] { Require(ImportFossil(c.S, o.Get("--fossil"), c.Dialogs, progress)); };
  auto analyse = [&](const std::string& file) {
    try {
      ApplyPreTreatment(c.S, settings, progress);
    } catch (const RuntimeFailure& e) {
      std::cerr << "Error: " << e.what() << " in the EOF analysis of " << file << "\n";
      throw RunStopped{};
    }
  };
  if (referenceBase) {
    importReference();
    analyse(o.Get("--reference"));
    if (o.Has("--fossil")) importFossil();
  } else {
    importFossil();
    analyse(o.Get("--fossil"));
    if (o.Has("--reference")) importReference();
  }
}

void WriteScoreFiles(Context& c) {
  NoProgress progress;
  SaveLoading(c.S, c.Out("loading.csv"), c.Stamp, progress);
  if (c.S.ReferenceIsBase) sSaveScore(c.S, c.Out("score-reference.csv"), c.Stamp, progress);
  if (c.S.FossilTaxaCount > 0) fSaveScore(c.S, c.Out("score-fossil.csv"), c.Stamp, progress);
}

const bool roadRegistered = RegisterStep(Step{
    0,
    {{"--reference", "FILE", "reference table (taxa at modern sites)"},
     {"--fossil", "FILE", "fossil table (the same taxa down a core)"},
     {"--base", "reference|fossil", "the table the EOFs are computed from (reference)"},
     {"--convert", "yes|no", "convert to fractions of the row sum (yes)"},
     {"--enhance", "none|sqrt|log", "enhancement of minor taxa (none)"},
     {"--matrix", "correlation|covariance", "matrix of the EOF analysis (covariance)"},
     {"--accept-names", "", "answer Yes when taxa names differ at a position"}},
    [](const Options& o) {
      CheckChoice(o, "--base", {"reference", "fossil"});
      CheckChoice(o, "--convert", {"yes", "no"});
      CheckChoice(o, "--enhance", {"none", "sqrt", "log"});
      CheckChoice(o, "--matrix", {"correlation", "covariance"});
      bool fossilBase = o.Get("--base") == "fossil";
      if (!o.Has(fossilBase ? "--fossil" : "--reference"))
        throw UsageError{fossilBase ? "--base fossil needs --fossil"
                                    : "--reference is required"};
    },
    [](const Options&) { return true; },
    RunRoad});

const bool filesRegistered = RegisterStep(Step{
    1000, {}, nullptr, [](const Options&) { return true; }, WriteScoreFiles});

}  // namespace
}  // namespace varnoth::batch
