#include "state/Import.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "eof/PreTreatment.h"
#include "eof/Projection.h"
#include "state/CellReader.h"
#include "state/Format.h"
#include "state/Parallel.h"
#include "state/ReadProblem.h"

namespace varnoth {

namespace {

constexpr long kHeaderUpper = 1000;  // header buffer 0..1000
constexpr long kRowUpper = 9999;     // label list and value rows 0..9999
constexpr long kColumnUpper = 1000;  // value columns 0..1000

// Thrown after "Blanc cell detected." or a refused name: the message is
// already shown, the failure path follows.
struct ImportAbort {
  std::string What;
};

// Where the read stands, so that a failure can say where it met the table.
// Rows count the header as row 1 and columns the label as column 1, as a
// spreadsheet shows them; 0 where the place is not known.
struct Where : ReadPlace {
  enum Stage { Reading, Header, Rows, Checking, Treating } stage = Reading;
};

// The variables one import fills: the reference's or the fossil's.
struct Target {
  bool reference;
  std::string* fileName;
  Count* rowCount;
  Count* taxaCount;
  Array1<std::string>* labels;
  Array1<std::string>* names;
  bool* labelsAreText;
  Array2<double>* data;
  Array1<Flag>* rowMarks;
  Array2<double>* scoreRaw;
  Array2<double>* scores;
};

Target ReferenceTarget(Session& s) {
  return {true,
          &s.RefFileName,
          &s.RefSiteCount,
          &s.RefTaxaCount,
          &s.RefSiteNames,
          &s.RefTaxaNames,
          &s.RefLabelsAreText,
          &s.RefData,
          &s.SiteIsExtreme,
          &s.RefScoreRaw,
          &s.RefScores};
}

Target FossilTarget(Session& s) {
  return {false,           &s.FossilFileName,  &s.FossilSampleCount,   &s.FossilTaxaCount,
          &s.FossilLabels, &s.FossilTaxaNames, &s.FossilLabelsAreText, &s.FossilData,
          &s.SampleIsOut,  &s.FossilScoreRaw,  &s.FossilScores};
}

// Rows of values during the read, grown as rows arrive; the capacity limit
// is that of the fixed working matrix.
class ValueRows {
 public:
  explicit ValueRows(long columns) : columns_(columns) {
    if (columns_ > kColumnUpper) ThrowSubscript();
  }
  double* Row(long r) {
    if (r < 0 || r > kRowUpper) ThrowSubscript();
    std::size_t need = static_cast<std::size_t>(r + 1) * Width();
    if (values_.size() < need) values_.resize(need);
    return values_.data() + static_cast<std::size_t>(r) * Width();
  }
  void Reserve(long rows) {
    values_.reserve(static_cast<std::size_t>(std::min(rows, kRowUpper) + 1) * Width());
  }
  // Rows 0..rows in the layout of the data matrix, ready to adopt.
  Storage<double> Take(long rows) {
    values_.resize(static_cast<std::size_t>(rows + 1) * Width());
    return std::move(values_);
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(columns_ + 1); }
  long columns_;
  Storage<double> values_;
};

std::string NormalisedLabel(std::string_view cell) { return FormatGeneral(LenientParse(cell)); }

// Rows of the second half of a large table, read ahead on another core
// while the first half is read in order. The cell stream knows no lines, so
// the part starts at a line start and counts only if the rows read in order
// arrive exactly there; anything unusual (an empty cell, a number too large,
// the end of the cells) ends the part unfinished, and the rows in order
// then read that half themselves, with the messages that belong to it.
class RowsAhead {
 public:
  // `expected` is the number of rows the file size suggests.
  RowsAhead(const CellReader& in, long n, bool text, long expected) {
    const std::size_t left = in.Length() - in.Position();
    if (n < 1 || left < (1u << 20) || WorkerCount() < 2) return;
    start_ = in.NextLineStart(in.Position() + left / 2);
    if (start_ >= in.Length()) return;
    // Room for a little more than half the rows, so that they are not moved.
    const std::size_t room = static_cast<std::size_t>(std::min(expected, kRowUpper) / 2 + 64);
    labels_.reserve(room);
    values_.reserve(room * static_cast<std::size_t>(n + 1));
    try {
      thread_ = std::thread([this, &in, n, text] { Read(in.Part(start_), n, text); });
      KeepOffThisCore(thread_);
    } catch (const std::system_error&) {
      // No thread to be had: the rows in order read everything.
    }
  }
  ~RowsAhead() { Stop(); }
  RowsAhead(const RowsAhead&) = delete;
  RowsAhead& operator=(const RowsAhead&) = delete;

  // Where the part starts; no position when there is none.
  std::size_t Start() const { return thread_.joinable() ? start_ : std::string::npos; }
  // Waits for the part: true when it read every row to the end of the cells.
  bool Finish() {
    if (thread_.joinable()) thread_.join();
    return complete_;
  }
  void Stop() {
    stop_.store(true, std::memory_order_relaxed);
    if (thread_.joinable()) thread_.join();
  }
  std::size_t Rows() const { return labels_.size(); }
  const double* Values(std::size_t row) const { return values_.data() + row * width_; }
  std::string& Label(std::size_t row) { return labels_[row]; }
  std::size_t End() const { return end_; }

 private:
  void Read(CellReader part, long n, bool text) {
    width_ = static_cast<std::size_t>(n + 1);
    try {
      for (;;) {
        if (stop_.load(std::memory_order_relaxed)) return;
        if (part.AtEnd()) {
          end_ = part.Position();
          complete_ = true;
          return;
        }
        if (static_cast<long>(labels_.size()) >= kRowUpper) return;
        std::string_view label = part.Next();
        labels_.push_back(text ? std::string(label) : NormalisedLabel(label));
        const std::size_t base = values_.size();
        values_.resize(base + width_);
        for (long j = 1; j <= n; ++j) {
          bool empty;
          values_[base + static_cast<std::size_t>(j)] = part.NextLenient(empty);
          if (empty) return;
        }
      }
    } catch (...) {
      // Left to the rows in order, which fail the same way in their place.
    }
  }

  std::thread thread_;
  std::atomic<bool> stop_{false};
  std::size_t start_ = 0, end_ = 0, width_ = 0;
  bool complete_ = false;
  std::vector<std::string> labels_;
  std::vector<double> values_;
};

// Taxa check of the second import: by position, with the user accepting
// differing names as synonyms.
void CheckTaxa(Session& s, Dialogs& dialogs, Where& where) {
  if (s.RefTaxaCount != s.FossilTaxaCount) {
    dialogs.Message("Parameter number inconsistent.", "Error");
    throw ImportAbort{"The tables have " + std::to_string(s.RefTaxaCount) + " and " +
                      std::to_string(s.FossilTaxaCount) + " taxa"};
  }
  s.TaxaMismatch.ReDim(s.RefTaxaCount);
  Count c = 0;
  for (Count j = 1; j <= s.RefTaxaCount; ++j) {
    const std::string& fossil = s.FossilTaxaNames(j);
    const std::string& reference = s.RefTaxaNames(j);
    if (fossil == reference) continue;
    if (!dialogs.Question("Name inconsistent.  [" + fossil + "] = [" + reference + "]?", "Error")) {
      where.At(1, j + 1);
      throw ImportAbort{"The taxon names [" + fossil + "] and [" + reference +
                        "] were not accepted as the same"};
    }
    c = Increment(c);
    s.TaxaMismatch(c) = "[" + fossil + "]/[" + reference + "]";
  }
  s.TaxaMismatch(0) = std::to_string(c);
}

void RunImport(Session& s, const Target& t, const std::optional<std::string>& path,
               Dialogs& dialogs, Where& where) {
  const bool fossil = !t.reference;
  if (!s.ReferenceIsBase && !s.FossilIsBase)
    (t.reference ? s.ReferenceIsBase : s.FossilIsBase) = true;
  const bool isBase = t.reference ? s.ReferenceIsBase : s.FossilIsBase;

  if (!path) throw RuntimeFailure(FailureKind::Cancelled);
  CellReader in = CellReader::FromFile(*path);

  // Header scan: cells up to and including the first number cell.
  Array1<std::string> buffer(kHeaderUpper);
  long k = 0;
  where.stage = Where::Header;
  for (;;) {
    where.AtCell(k + 1);
    std::string_view cell = in.Next();
    buffer(k) = std::string(cell);
    ++k;
    if (IsNumberCell(cell)) break;
  }
  for (long i = k; i <= 2 * k - 4; ++i) {
    where.AtCell(i + 1);
    buffer(i) = std::string(in.Next());
  }
  where.stage = Where::Rows;

  const bool text = !IsNumberCell(buffer(2 * k - 4));
  const Count n = ToCount(static_cast<long long>(text ? k - 3 : k - 2));
  *t.labelsAreText = text;
  *t.taxaCount = n;
  s.TaxaCount = n;

  if (isBase) {
    s.EnvelopeAxes.ReDimPreserve(n);
    s.DisplayAxes.ReDimPreserve(n);
  }

  // Rows. The names stand in the buffer's first n + 1 cells.
  Array1<std::string> labels(kRowUpper);
  ValueRows values(n);
  // Room for as many rows as the rest of the file can hold, a cell being at
  // least a character and its separator: the rows are then never moved, and
  // room that no row takes costs next to nothing.
  const double most = static_cast<double>(in.Length() - in.Position()) / (2.0 * (n + 1)) + 8;
  const long expected = most < kRowUpper ? static_cast<long>(most) : kRowUpper;
  values.Reserve(expected);
  Count& rows = *t.rowCount;
  rows = 0;
  RowsAhead ahead(in, n, text, expected);
  for (long r = 1;; ++r) {
    if (r >= 3 && ahead.Start() == in.Position() && ahead.Finish()) {
      // The rows in order have arrived where the part began: take its rows.
      for (std::size_t k = 0; k < ahead.Rows(); ++k, ++r) {
        // Past the last row the table may hold, the failure names this row.
        where.At(r + 1, 1);
        (void)labels(r);
        rows = ToCount(static_cast<long long>(r));
        double* v = values.Row(r);
        std::memcpy(v + 1, ahead.Values(k) + 1, static_cast<std::size_t>(n) * sizeof(double));
        labels(r) = std::move(ahead.Label(k));
      }
      in.Seek(ahead.End());
      break;
    }
    if (ahead.Start() != std::string::npos && in.Position() > ahead.Start()) ahead.Stop();
    if (in.AtEnd()) break;
    where.At(r + 1, 1);
    (void)labels(r);  // the label list holds rows up to 9999
    rows = ToCount(static_cast<long long>(r));
    double* v = values.Row(r);
    if (r == 1) {
      labels(r) = buffer(n + 1);
      if (text) {
        for (long j = 1; j <= n; ++j) {
          where.At(2, j + 1);
          v[j] = StrictParse(buffer(n + 1 + j));
        }
      } else {
        for (long j = 1; j <= n - 1; ++j) {
          where.At(2, j + 1);
          v[j] = StrictParse(buffer(n + 1 + j));
        }
        where.At(2, n + 1);
        v[n] = LenientParse(in.Next());
      }
    } else if (r == 2) {
      labels(r) = text ? buffer(2L * n + 2) : NormalisedLabel(in.Next());
      bool empty;
      for (long j = 1; j <= n; ++j) {
        where.At(3, j + 1);
        v[j] = in.NextLenient(empty);
      }
    } else {
      std::string_view label = in.Next();
      labels(r) = text ? std::string(label) : NormalisedLabel(label);
      // The column is noted only when the row fails: this loop reads
      // nearly every cell of a table.
      long j = 1;
      try {
        for (; j <= n; ++j) {
          bool empty;
          v[j] = in.NextLenient(empty);
          if (empty) {
            v[j] = kMissing;
            dialogs.Message("Blanc cell detected.", "Error");
            throw ImportAbort{"An empty cell"};
          }
        }
      } catch (...) {
        where.column = j + 1;
        throw;
      }
    }
  }

  where.stage = Where::Checking;
  where.At(0, 0);
  *t.fileName = *path;
  t.rowMarks->ReDim(rows);

  if (isBase) {
    s.BaseRowCount = rows;
    (t.reference ? s.ReferenceImportOpen : s.FossilImportOpen) = false;
  }

  // The names of this table, for the check against the other one.
  Array1<std::string>& names = *t.names;
  names.ReDim(n);
  for (long j = 0; j <= n; ++j) names(j) = buffer(j);

  if (!isBase) CheckTaxa(s, dialogs, where);

  t.scoreRaw->ReDim(rows, n);
  t.scores->ReDim(rows, n);

  if (fossil) {
    s.FossilEmptySample.ReDim(rows);
    for (long i = 1; i <= rows; ++i) {
      const double* v = values.Row(i);
      double sum = 0;
      for (long j = 1; j <= n; ++j) sum += v[j] * v[j];
      s.FossilEmptySample(i) = sum == 0;
    }
    // The sample list starts at the first sample that is not empty; a table
    // of empty samples runs off the end of the list.
    long first = 1;
    while (first <= rows && s.FossilEmptySample(first)) ++first;
    if (first > rows) throw ImportAbort{"Every sample is empty (Subscript out of range)"};
    s.SampleCursor = ToCount(static_cast<long long>(first));
  }

  s.EigenOrder = n;
  labels.ReDimPreserve(rows);
  *t.labels = std::move(labels);
  t.data->Adopt(values.Take(rows), rows, n);
  if (fossil) s.FossilProportion.ReDim(rows, n);

  where.stage = Where::Treating;
  if (s.ReferenceIsBase && fossil) FossilPercentageStep(s);
}

// What a failure of the read means to the user who wrote the table.
std::string Explain(const RuntimeFailure& e, const Where& where) {
  const std::string name = FailureName(e.kind());
  switch (where.stage) {
    case Where::Reading:
      break;
    case Where::Header:
      if (e.kind() == FailureKind::InputPastEnd)
        return "No number cell was found after the taxon names (" + name + ")";
      if (e.kind() == FailureKind::SubscriptOutOfRange)
        return "The header and first row hold more than 1000 cells (" + name + ")";
      break;
    case Where::Rows:
      if (e.kind() == FailureKind::InputPastEnd) return "The file ends inside a row (" + name + ")";
      if (e.kind() == FailureKind::TypeMismatch) return "A value is not a number (" + name + ")";
      if (e.kind() == FailureKind::Overflow) return "A value is too large (" + name + ")";
      if (e.kind() == FailureKind::SubscriptOutOfRange) return "More than 9999 rows (" + name + ")";
      break;
    case Where::Checking:
      break;
    case Where::Treating:
      return "Treating the table failed (" + name + ")";
  }
  return name;
}

std::string Place(const std::string& what, const std::string& file, const Where& where) {
  std::string text = where.Text(what, file);
  if (where.stage == Where::Header) text += FileKindHint(file);
  return text;
}

}  // namespace

static ImportResult Import(Session& s, bool reference, const std::optional<std::string>& path,
                           Dialogs& dialogs, Progress& progress) {
  Target t = reference ? ReferenceTarget(s) : FossilTarget(s);
  ImportResult result;
  bool failed = false;
  Where where;
  const std::string file = path ? *path : std::string("the file");
  try {
    RunImport(s, t, path, dialogs, where);
    result.IsBase = reference ? s.ReferenceIsBase : s.FossilIsBase;
    if (!result.IsBase) {
      if (reference)
        ReferenceEnhancementStep(s);
      else
        FossilEnhancementStep(s);
      where.stage = Where::Treating;
      where.At(0, 0);
      DoProjection(s, progress);
      result.Projected = true;
    }
  } catch (const RuntimeFailure& e) {
    failed = true;
    result.Problem = e.kind() == FailureKind::Cancelled ? std::string(FailureName(e.kind()))
                                                        : Place(Explain(e, where), file, where);
  } catch (const ImportAbort& e) {
    failed = true;
    result.Problem = Place(e.What, file, where);
  }
  if (failed) {
    // What was read stays in place; only the taxa count marks the set absent.
    progress.Finish();
    *t.taxaCount = 0;
    if (reference ? s.FossilImportOpen : s.ReferenceImportOpen)
      s.ReferenceIsBase = s.FossilIsBase = false;
    if (reference) dialogs.Message(kFormatErrorMessage, "Error");
    (reference ? s.ReferenceImportOpen : s.FossilImportOpen) = true;
    result.IsBase = false;
    result.Projected = false;
    return result;
  }
  // Closing steps.
  (reference ? s.ReferenceImportOpen : s.FossilImportOpen) = false;
  if (!reference) {
    long quarter = static_cast<long>(Int(0.25 * s.FossilSampleCount));
    s.DiagramGapA = 10 - quarter;
    s.DiagramGapB = 2 * quarter + 10 * (static_cast<long>(s.FossilSampleCount) - 1);
  }
  if (result.IsBase) (reference ? s.FossilImportOpen : s.ReferenceImportOpen) = true;
  result.Ok = true;
  return result;
}

ImportResult ImportReference(Session& s, const std::optional<std::string>& path, Dialogs& dialogs,
                             Progress& progress) {
  return Import(s, true, path, dialogs, progress);
}

ImportResult ImportFossil(Session& s, const std::optional<std::string>& path, Dialogs& dialogs,
                          Progress& progress) {
  return Import(s, false, path, dialogs, progress);
}

}  // namespace varnoth
