#include "interpolation/StationImport.h"

#include <vector>

#include "state/CellReader.h"
#include "state/Format.h"
#include "state/ReadProblem.h"

namespace varnoth {

namespace {

constexpr long kCellUpper = 1000;    // first cells: 0..1000
constexpr long kRowUpper = 9999;     // labels: 0..9999
constexpr long kColumnUpper = 1000;  // value columns: 0..1000

// The import ends after a message the user has seen, or a No.
struct ImportAbort {
  std::string What;
};

// Where the read stands, for a user without the window: rows count the
// header as row 1, columns the label as column 1; cells while the width is
// sought; 0 where not known.
struct Where : ReadPlace {
  bool header = false;
};

// Rows of values as they arrive; the limits are those of a working matrix
// of 0..9999 rows by 0..1000 columns, without holding it all at once.
class ValueRows {
 public:
  explicit ValueRows(long columns) : columns_(columns) {
    if (columns_ < 1 || columns_ > kColumnUpper) ThrowSubscript();
  }
  double* Row(long r) {
    if (r < 0 || r > kRowUpper) ThrowSubscript();
    const std::size_t need = static_cast<std::size_t>(r + 1) * Width();
    if (values_.size() < need) values_.resize(need, 0.0);
    return values_.data() + static_cast<std::size_t>(r) * Width();
  }
  // The working matrix is 1000 columns wide whatever the table: a column
  // beyond the table's reads 0.
  double At(long r, long c) {
    if (c < 0 || c > kColumnUpper) ThrowSubscript();
    return c > columns_ ? 0.0 : Row(r)[c];
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(columns_) + 1; }
  long columns_;
  std::vector<double> values_;
};

struct Table {
  Count Columns = 0;  // data columns without the label column
  Count Rows = 0;
  Array1<std::string> Header;  // header cells 0..n, the corner first
  Array1<std::string> Labels;  // 1..rows
  ValueRows Values{1};
};

std::string NormalisedLabel(std::string_view cell) { return FormatGeneral(LenientParse(cell)); }

Table ReadTable(CellReader& in, Count mode, Dialogs& dialogs, Where& where) {
  // The first cells up to the first number cell, then as many again as it
  // takes to reach the second row's label (text labels) or the first row's
  // last value but one (numeric labels).
  Array1<std::string> t(kCellUpper);
  long c = 0;
  where.header = true;
  for (;;) {
    where.cell = c + 1;
    std::string_view cell = in.Next();
    t(c) = std::string(cell);
    ++c;
    if (IsNumberCell(cell)) break;
  }
  for (long i = c; i <= 2 * c - 4; ++i) {
    where.cell = i + 1;
    t(i) = std::string(in.Next());
  }
  where.header = false;
  where.cell = 0;
  const bool text = !IsNumberCell(t(2 * c - 4));
  const Count n = ToCount(static_cast<long long>(text ? c - 3 : c - 2));
  if (mode == kStationFile && n == 5) {
    dialogs.Message(kNoClimateDataMessage, "Error");
    throw ImportAbort{"No climate column after the five of the positions and lapse rates"};
  }

  Table table;
  table.Columns = n;
  table.Values = ValueRows(n);
  table.Header.ReDim(n);
  for (long k = 0; k <= n; ++k) table.Header(k) = t(k);
  Array1<std::string> labels(kRowUpper);

  // Row 1 from the cells read: its values must be numbers, but for the
  // last one behind a numeric label, which is read on.
  labels(1) = t(n + 1);
  double* v = table.Values.Row(1);
  if (text) {
    for (long k = 1; k <= n; ++k) {
      where.At(2, k + 1);
      v[k] = StrictParse(t(n + 1 + k));
    }
  } else {
    for (long k = 1; k <= n - 1; ++k) {
      where.At(2, k + 1);
      v[k] = StrictParse(t(n + 1 + k));
    }
    where.At(2, n + 1);
    v[n] = LenientParse(in.Next());
  }
  // Row 2: numbers leniently, an empty cell as 0.
  labels(2) = text ? t(2L * n + 2) : NormalisedLabel(in.Next());
  v = table.Values.Row(2);
  bool empty = false;
  for (long k = 1; k <= n; ++k) {
    where.At(3, k + 1);
    v[k] = in.NextLenient(empty);
  }
  // Rows 3 on: an empty cell stops the import.
  long r = 2;
  while (!in.AtEnd()) {
    ++r;
    where.At(r + 1, 1);
    std::string& label = labels(r);
    std::string_view cell = in.Next();
    label = text ? std::string(cell) : NormalisedLabel(cell);
    v = table.Values.Row(r);
    // The column is noted only when the row fails: this loop reads nearly
    // every cell of a table.
    long k = 1;
    try {
      for (; k <= n; ++k) {
        v[k] = in.NextLenient(empty);
        if (empty) {
          dialogs.Message(kStationBlankCellMessage, "Error");
          throw ImportAbort{"An empty cell"};
        }
      }
    } catch (...) {
      where.column = k + 1;
      throw;
    }
  }
  where.At(0, 0);
  table.Rows = ToCount(static_cast<long long>(r));
  labels.ReDimPreserve(r);
  table.Labels = std::move(labels);
  return table;
}

// Positions of the rows as singles: columns 1, 2 and 3.
struct Positions {
  Array1<float> Lon, Lat, Alt;
};

Positions PositionsOf(Table& table) {
  Positions p;
  p.Lon.ReDim(table.Rows);
  p.Lat.ReDim(table.Rows);
  p.Alt.ReDim(table.Rows);
  for (long i = 1; i <= table.Rows; ++i) {
    p.Lon(i) = ToSingle(table.Values.At(i, 1));
    p.Lat(i) = ToSingle(table.Values.At(i, 2));
    p.Alt(i) = ToSingle(table.Values.At(i, 3));
  }
  return p;
}

// Lapse rates per row and column under the station file's column names;
// every row's columns 4 and 5 carry its own two rates.
void BuildLapse(Table& table, long columns, const Array1<std::string>& names, Array2<double>& lapse,
                Array1<std::uint8_t>& nonNegative) {
  lapse.ReDim(table.Rows, columns);
  nonNegative.ReDim(columns);
  std::vector<LapseKind> kinds(static_cast<std::size_t>(columns) + 1, LapseKind::None);
  for (long k = 6; k <= columns; ++k) {
    kinds[static_cast<std::size_t>(k)] = ColumnLapseKind(names(k));
    nonNegative(k) = kinds[static_cast<std::size_t>(k)] == LapseKind::Precipitation;
  }
  for (long i = 1; i <= table.Rows; ++i) {
    const double temperature = table.Values.At(i, 4), precipitation = table.Values.At(i, 5);
    lapse(i, 4) = temperature;
    lapse(i, 5) = precipitation;
    for (long k = 6; k <= columns; ++k) {
      const LapseKind kind = kinds[static_cast<std::size_t>(k)];
      if (kind == LapseKind::Temperature)
        lapse(i, k) = temperature;
      else if (kind == LapseKind::Precipitation)
        lapse(i, k) = precipitation;
    }
  }
}

void ImportStations(Session& s, Table& table) {
  InterpolationState& st = s.Interp;
  const long n = table.Columns;
  Array1<std::string> names(n);
  for (long k = 1; k <= n; ++k) names(k) = table.Header(k);
  Positions p = PositionsOf(table);
  Array2<double> climate(table.Rows, n);
  for (long i = 1; i <= table.Rows; ++i) {
    double* row = climate.Row(i, n);
    const double* v = table.Values.Row(i);
    for (long k = 1; k <= n; ++k) row[k] = v[k];
  }
  Array2<double> lapse;
  Array1<std::uint8_t> nonNegative;
  BuildLapse(table, n, names, lapse, nonNegative);

  // Everything is read: the new table replaces the old.
  st.InterpColumnCount = table.Columns;
  st.InterpRefCount = table.Rows;
  st.InterpRefNames = std::move(table.Labels);
  st.InterpParamNames = std::move(names);
  st.InterpRefLon = std::move(p.Lon);
  st.InterpRefLat = std::move(p.Lat);
  st.InterpRefAlt = std::move(p.Alt);
  st.InterpRefClimate = std::move(climate);
  st.InterpRefLapse = std::move(lapse);
  st.InterpNonNegative = std::move(nonNegative);
  s.ClimateParamCount = table.Columns;

  st.MinLon = 180;
  st.MaxLon = -180;
  st.MinLat = 90;
  st.MaxLat = -90;
  for (long i = 1; i <= st.InterpRefCount; ++i) {
    const float lon = st.InterpRefLon(i), lat = st.InterpRefLat(i);
    if (lon > st.MaxLon) st.MaxLon = lon;
    if (lat > st.MaxLat) st.MaxLat = lat;
    if (lon < st.MinLon) st.MinLon = lon;
    if (lat < st.MinLat) st.MinLat = lat;
  }
  RoundBoundsOutward(st);
  st.InterpRefLoaded = true;
}

void ImportTargets(Session& s, Table& table, Dialogs& dialogs, Where& where) {
  InterpolationState& st = s.Interp;
  st.InterpTargetCount = table.Rows;
  if (table.Rows != s.RefSiteCount) {
    dialogs.Message(kSiteCountMessage, "Error");
    throw ImportAbort{std::to_string(table.Rows) + " target sites where the reference table has " +
                      std::to_string(s.RefSiteCount)};
  }
  for (long i = 1; i <= table.Rows; ++i) {
    const std::string& target = table.Labels(i);
    const std::string& site = s.RefSiteNames(i);
    if (target == site) continue;
    if (!dialogs.Question("Name inconsistent.  [" + target + "] = [" + site + "]?", "Error")) {
      where.At(i + 1, 1);
      throw ImportAbort{"The site names [" + target + "] and [" + site +
                        "] were not accepted as the same"};
    }
  }
  Positions p = PositionsOf(table);
  // The columns follow the station file: its names decide the rates.
  Array2<double> lapse;
  Array1<std::uint8_t> nonNegative;
  BuildLapse(table, st.InterpColumnCount, st.InterpParamNames, lapse, nonNegative);

  st.SiteMapNames = std::move(table.Labels);
  st.SiteLongitude = std::move(p.Lon);
  st.SiteLatitude = std::move(p.Lat);
  st.SiteAltitude = std::move(p.Alt);
  st.InterpTargetLapse = std::move(lapse);
  st.InterpNonNegative = std::move(nonNegative);
  st.InterpTargetLoaded = true;
}

bool StartsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }
bool EndsWith(std::string_view s, std::string_view p) {
  return s.size() >= p.size() && s.substr(s.size() - p.size()) == p;
}

}  // namespace

LapseKind ColumnLapseKind(std::string_view name) {
  // Each test overwrites the former, so precipitation wins over temperature.
  LapseKind kind = LapseKind::None;
  if (StartsWith(name, "T") || StartsWith(name, "(T)")) kind = LapseKind::Temperature;
  if (StartsWith(name, "MT") || StartsWith(name, "(t)")) kind = LapseKind::Temperature;
  if (EndsWith(name, "(T)") || EndsWith(name, "(t)")) kind = LapseKind::Temperature;
  if (StartsWith(name, "P") || StartsWith(name, "(P)")) kind = LapseKind::Precipitation;
  if (StartsWith(name, "MP") || StartsWith(name, "(p)")) kind = LapseKind::Precipitation;
  if (EndsWith(name, "(P)") || EndsWith(name, "(p)")) kind = LapseKind::Precipitation;
  return kind;
}

void RoundBoundsOutward(InterpolationState& st) {
  auto down = [](float v) { return ToSingle(Round(static_cast<double>(v) / 5 - 0.5) * 5); };
  auto up = [](float v) { return ToSingle(Round(static_cast<double>(v) / 5 + 0.5) * 5); };
  st.MinLat = down(st.MinLat);
  st.MinLon = down(st.MinLon);
  st.MaxLat = up(st.MaxLat);
  st.MaxLon = up(st.MaxLon);
}

InterpImportResult ImportData(Session& s, Count mode, const std::optional<std::string>& path,
                              Dialogs& dialogs) {
  InterpImportResult result;
  Where where;
  const std::string file = path ? *path : std::string("the file");
  auto place = [&](const std::string& what) {
    std::string text = where.Text(what, file);
    // Before the first row the table's form is still in doubt: say what
    // the file is when it is no text.
    return where.row == 0 ? text + FileKindHint(file) : text;
  };
  try {
    if (mode != kStationFile && mode != kTargetFile) throw RuntimeFailure(FailureKind::InvalidCall);
    if (!path) throw RuntimeFailure(FailureKind::Cancelled);
    CellReader in = CellReader::FromFile(*path);
    Table table = ReadTable(in, mode, dialogs, where);
    if (mode == kStationFile)
      ImportStations(s, table);
    else
      ImportTargets(s, table, dialogs, where);
    result.Ok = true;
  } catch (const ImportAbort& e) {
    result.MessageShown = true;
    result.Problem = place(e.What);
  } catch (const RuntimeFailure& e) {
    result.Failure = e.kind();
    const std::string name = FailureName(e.kind());
    if (e.kind() == FailureKind::InputPastEnd)
      result.Problem =
          place(where.header ? "No number cell was found after the column names (" + name + ")"
                             : "The file ends inside a row (" + name + ")");
    else if (where.header && e.kind() == FailureKind::SubscriptOutOfRange)
      result.Problem = place("The header and first row hold more than 1000 cells (" + name + ")");
    else
      result.Problem = place(name);
  } catch (const std::bad_alloc&) {
    result.Failure = FailureKind::OutOfMemory;
    result.Problem = place(FailureName(FailureKind::OutOfMemory));
  }
  return result;
}

}  // namespace varnoth
