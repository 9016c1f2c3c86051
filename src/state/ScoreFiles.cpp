#include "state/ScoreFiles.h"

#include <algorithm>
#include <ctime>
#include <vector>

#include "state/Format.h"
#include "state/Parallel.h"
#include "state/RecordWriter.h"

namespace varnoth {

FileStamp CurrentStamp() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char date[16], time[16];
  std::strftime(date, sizeof date, "%Y-%m-%d", &local);
  std::strftime(time, sizeof time, "%H:%M:%S", &local);
  return {date, time};
}

namespace {

void Heading(RecordWriter& w, const char* title, const Session& s, const FileStamp& stamp) {
  w.Text(title).End();
  w.Text("Date/Time: ").Text(stamp.Date + " (" + stamp.Time + ")").End();
  w.Text("Reference data file: ").Text(s.RefFileName).End();
}

void PreTreatmentLines(RecordWriter& w, const Session& s) {
  const PreTreatmentSettings& p = s.PreTreatment;
  w.Text("Data pre-treatment: ").Text(p.ConvertToPercent ? "Proportion" : "Raw data").End();
  w.Text("Enhancing minor taxa: ")
      .Text(!p.Enhance     ? "N/A"
            : p.SquareRoot ? "Square root"
                           : "Log")
      .End();
  w.Text("Type of matrix: ").Text(p.Correlation ? "Correlation" : "Variance/Covariance").End();
}

void EofNumbers(RecordWriter& w, long count) {
  w.Text("EOF No.:");
  for (long n = 1; n <= count; ++n) w.Integer(n);
  w.End();
}

void Contributions(RecordWriter& w, const Session& s, long count) {
  w.Text("Contribution:");
  for (long n = 1; n <= count; ++n) w.Single(s.Contribution(n));
  w.End();
}

// Writes the file: the heading in `w`, then the rows of a score table, where
// row(r, i) writes record i. Slices of rows are put into text on all cores
// and written in order as they are done, so the file is the one a single
// writer gives.
template <typename Row>
void SaveRows(const RecordWriter& w, const std::string& path, long rows, long columns,
              Progress& progress, Row row) {
  constexpr long kSlice = 256;
  const long slices = std::max(0L, (rows + kSlice - 1) / kSlice);
  w.Save(path, slices, [&](long t, RecordWriter& part) {
    // A number takes at most 22 characters and its comma.
    part.Reserve(static_cast<std::size_t>(kSlice * (23 * columns + 64)));
    for (long i = t * kSlice + 1; i <= std::min(rows, (t + 1) * kSlice); ++i) row(part, i);
  });
  if (rows > 0) progress.Step(rows);
}

}  // namespace

void SaveLoading(const Session& s, const std::string& path, const FileStamp& stamp,
                 Progress& progress) {
  RecordWriter w;
  const long n = s.TaxaCount;
  progress.Start(n);
  Heading(w, "Varnoth 1.0 output file (component loading)", s, stamp);
  if (s.ReferenceIsBase) {
    w.Text("No. of reference taxa: ").Integer(s.RefTaxaCount).End();
    w.Text("No. of reference sites: ").Integer(s.RefSiteCount).End();
  } else {
    w.Text("No. of fossil taxa: ").Integer(s.FossilTaxaCount).End();
    w.Text("No. of depth: ").Integer(s.FossilSampleCount).End();
  }
  EofNumbers(w, n);
  Contributions(w, s, n);
  const Array1<std::string>& names = s.ReferenceIsBase ? s.RefTaxaNames : s.FossilTaxaNames;
  for (long i = 1; i <= n; ++i) {
    w.Text(names(i));
    for (long c = 1; c <= n; ++c) w.Number(s.Loadings(i, c));
    w.End();
    progress.Step(i);
  }
  w.Save(path);
  progress.Finish();
}

void sSaveScore(const Session& s, const std::string& path, const FileStamp& stamp,
                Progress& progress) {
  RecordWriter w;
  const long n = s.RefTaxaCount, sites = s.RefSiteCount;
  progress.Start(n + sites);
  Heading(w, "Varnoth 1.0 output file (component score for reference dataset)", s, stamp);
  PreTreatmentLines(w, s);
  w.Text("No. of reference taxa: ").Integer(n).End();
  w.Text("No. of reference sites: ").Integer(sites).End();
  EofNumbers(w, n);
  Contributions(w, s, n);
  SaveRows(w, path, sites, n, progress, [&](RecordWriter& r, long i) {
    r.Text(s.RefSiteNames(i));
    for (long c = 1; c <= n; ++c) r.Number(s.RefScores(i, c));
    r.End();
  });
  progress.Finish();
}

void fSaveScore(const Session& s, const std::string& path, const FileStamp& stamp,
                Progress& progress) {
  RecordWriter w;
  const long n = s.TaxaCount, samples = s.FossilSampleCount;
  progress.Start(samples);
  Heading(w, "Varnoth 1.0 output file (component score for fossil dataset)", s, stamp);
  w.Text("Fossil data file: ").Text(s.FossilFileName).End();
  PreTreatmentLines(w, s);
  if (s.ReferenceIsBase) {
    w.Text("No. of reference taxa: ").Integer(s.RefTaxaCount).End();
    w.Text("No. of reference sites: ").Integer(s.RefSiteCount).End();
  } else {
    w.Text("No. of reference taxa: ").Text("N/A").End();
    w.Text("No. of reference sites: ").Text("N/A").End();
  }
  w.Text("No. of fossil taxa: ").Integer(s.FossilTaxaCount).End();
  w.Text("No. of fossil samples: ").Integer(samples).End();
  w.Text("Taxa name inconsistency: ");
  if (!s.ReferenceIsBase) {
    w.Text("N/A").End();
  } else {
    // With fewer than two accepted pairs nothing is written and the line
    // stays open, so the next line's fields follow on it.
    long pairs = static_cast<long>(LenientParse(s.TaxaMismatch(0)));
    if (pairs >= 2) {
      for (long c = 1; c <= pairs; ++c) w.Text(s.TaxaMismatch(c));
      w.End();
    }
  }
  w.Text("Tightness of envelope: ").Single(s.EnvelopeTolerance).End();
  w.Text("");
  EofNumbers(w, n);
  w.Text("");
  Contributions(w, s, n);
  w.Text("Depth").Text("Envelope");
  for (long c = 1; c <= n; ++c) {
    bool used = false;
    for (long a = 1; a <= s.EnvelopeAxisCount; ++a) used = used || s.EnvelopeAxes(a) == c;
    w.Text(used ? "Yes" : "No");
  }
  w.End();
  SaveRows(w, path, samples, n, progress, [&](RecordWriter& r, long i) {
    r.Text(s.FossilLabels(i));
    r.Text(!s.EnvelopeDone ? "?" : s.SampleIsOut(i) ? "Out" : "In");
    for (long c = 1; c <= n; ++c) r.Number(s.FossilScores(i, c));
    r.End();
  });
  progress.Finish();
}

}  // namespace varnoth
