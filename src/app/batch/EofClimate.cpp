// The table of the EOF-climate correlation window in a batch run: the
// coefficient of every EOF with every climate parameter, into
// eof-climate.csv. It reads the climate file of --climate before the
// reconstruction does, which then finds it loaded.
#include <iostream>

#include "Batch.h"
#include "diagram/EofClimateCorrelation.h"
#include "reconstruction/ClimateImport.h"
#include "state/RecordWriter.h"

namespace varnoth::batch {
namespace {

[[noreturn]] void Stop(const std::string& message) {
  std::cerr << "Error: " << message << "\n";
  throw RunStopped{};
}

void WriteEofClimate(Context& c) {
  Session& s = c.S;
  if (!s.EofDone) Stop("The EOF-climate correlation needs the EOF analysis.");
  const std::string path = c.Opts.Get("--climate");
  const ClimateImportResult imported = Inport_climate_data(s, path, c.Dialogs);
  if (!imported.Ok) {
    // After the program's own message, or in its place: what and where.
    if (!imported.Problem.empty()) Stop(imported.Problem);
    throw RunStopped{};
  }
  NoProgress progress;
  Array2<float> m;
  try {
    m = EccCorrelationMatrix(s, progress);
  } catch (const RuntimeFailure& e) {
    Stop(std::string(e.what()) + " in the EOF-climate correlation of " + path);
  }
  // One row per EOF as the window's table has it, the parameters across.
  RecordWriter w;
  w.Text("EOF");
  for (long p = 1; p <= s.ClimateParamCount; ++p) w.Text(s.ClimateParamNames(p));
  w.End();
  for (long e = 1; e <= s.RefTaxaCount; ++e) {
    w.Text("EOF-" + std::to_string(e));
    for (long p = 1; p <= s.ClimateParamCount; ++p) w.Single(m(e, p));
    w.End();
  }
  w.Save(c.Out("eof-climate.csv"));
}

const bool registered = RegisterStep(
    Step{450,
         {{"--eof-climate", "", "EOF-climate correlations of --climate into eof-climate.csv"}},
         [](const Options& o) {
           if (o.Has("--eof-climate") && !o.Has("--climate"))
             throw UsageError{"--eof-climate needs --climate"};
         },
         [](const Options& o) { return o.Has("--eof-climate"); },
         WriteEofClimate});

}  // namespace
}  // namespace varnoth::batch
