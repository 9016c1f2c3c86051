#include "diagram/EofCurveFiles.h"

#include "state/RecordWriter.h"

namespace varnoth {

void SaveEOF(const Session& s, long shownEof, const std::string& path, Progress& progress) {
  const long n = s.FossilSampleCount;
  progress.Start(n);
  RecordWriter w;
  w.Text("Depth").Text("EOF-" + std::to_string(shownEof)).End();
  for (long i = 1; i <= n; ++i) {
    w.Text(s.FossilLabels(i));
    if (!s.FossilEmptySample(i)) w.Number(s.FossilScores(i, shownEof));
    w.End();
    progress.Step(i);
  }
  w.Save(path);
  progress.Finish();
}

void SaveAllEOF(const Session& s, const std::string& path, Progress& progress) {
  const long n = s.FossilSampleCount, taxa = s.FossilTaxaCount;
  progress.Start(n);
  RecordWriter w;
  w.Text("Depth");
  for (long e = 1; e < taxa; ++e) w.Text("EOF-" + std::to_string(e));
  w.Text("EOF - " + std::to_string(taxa)).End();
  for (long i = 1; i <= n; ++i) {
    w.Text(s.FossilLabels(i));
    if (!s.FossilEmptySample(i)) {
      const double* row = s.FossilScores.Row(i, taxa);
      for (long e = 1; e <= taxa; ++e) w.Number(row[e]);
    }
    w.End();
    progress.Step(i);
  }
  w.Save(path);
  progress.Finish();
}

}  // namespace varnoth
