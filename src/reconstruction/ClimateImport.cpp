#include "reconstruction/ClimateImport.h"

#include <cmath>
#include <vector>

#include "state/CellReader.h"
#include "state/Format.h"
#include "state/ReadProblem.h"

namespace varnoth {

namespace {

constexpr long kCellListUpper = 999;  // the first rows' cell list: 1000 cells
constexpr long kParamColumnUpper = 1000;

// The read stops after a message that the user has already seen.
struct ClimateAbort {
  std::string What;
};

// Where the read stands: rows count the header as row 1, columns the site
// name as column 1; 0 where not known.
struct ClimateWhere : ReadPlace {
  bool header = false, rows = false;
};

std::string NumericName(std::string_view cell) { return FormatGeneral(LenientParse(cell)); }

// Rows of parameter values, grown as rows arrive.
class WorkingRows {
 public:
  explicit WorkingRows(long columns) : columns_(columns) {
    if (columns_ < 0 || columns_ > kParamColumnUpper) ThrowSubscript();
  }
  double* Row(long r) {
    const std::size_t width = static_cast<std::size_t>(columns_) + 1;
    const std::size_t need = static_cast<std::size_t>(r + 1) * width;
    if (values_.size() < need) values_.resize(need, 0.0);
    return values_.data() + static_cast<std::size_t>(r) * width;
  }

 private:
  long columns_;
  std::vector<double> values_;
};

void ReadClimate(Session& s, const std::string& path, Dialogs& dialogs, ClimateWhere& where) {
  CellReader in = CellReader::FromFile(path);
  where.header = true;

  // Width detection: the header and the first data row up to its first
  // number cell, then as many cells again as the detection needs.
  Array1<std::string> list(kCellListUpper);
  long n = 0;
  for (;;) {
    where.AtCell(n + 1);
    std::string_view cell = in.Next();
    list(n) = std::string(cell);
    ++n;
    if (IsNumberCell(cell)) break;
  }
  for (long i = n; i <= 2 * n - 4; ++i) {
    where.AtCell(i + 1);
    list(i) = std::string(in.Next());
  }
  where.header = false;
  where.rows = true;
  const bool text = !IsNumberCell(list(2 * n - 4));
  const Count m = ToCount(static_cast<long long>(text ? n - 3 : n - 2));
  s.ClimateSiteNamesAreText = text;
  s.ClimateParamCount = m;
  s.ClimateParamNames.ReDim(m);
  for (long q = 0; q <= m; ++q) s.ClimateParamNames(q) = list(q);

  WorkingRows values(m);
  Array1<std::string> names(0);
  Count rows = 0;
  for (long r = 1;; ++r) {
    if (in.AtEnd()) break;
    where.At(r + 1, 1);
    rows = ToCount(static_cast<long long>(r));
    names.ReDimPreserve(r);
    double* v = values.Row(r);
    if (r == 1) {
      names(r) = list(m + 1);
      if (text) {
        for (long q = 1; q <= m; ++q) v[q] = LenientParse(list(m + 1 + q));
      } else {
        for (long q = 1; q <= m - 1; ++q) v[q] = LenientParse(list(m + 1 + q));
        where.At(2, m + 1);
        v[m] = LenientParse(in.Next());
      }
    } else if (r == 2) {
      names(r) = text ? list(2L * m + 2) : NumericName(in.Next());
      for (long q = 1; q <= m; ++q) {
        where.At(3, q + 1);
        v[q] = LenientParse(in.Next());
      }
    } else {
      std::string_view name = in.Next();
      names(r) = text ? std::string(name) : NumericName(name);
      for (long q = 1; q <= m; ++q) {
        where.At(r + 1, q + 1);
        std::string_view cell = in.Next();
        if (cell.empty()) {
          v[q] = kMissing;
          dialogs.Message(kBlankCellMessage, "Error");
          s.ClimateSiteNames = names;
          throw ClimateAbort{"An empty cell"};
        }
        v[q] = LenientParse(cell);
      }
    }
    if (r > s.RefSiteCount) {
      dialogs.Message(kSiteNumberMessage, "Error");
      s.ClimateSiteNames = names;
      throw ClimateAbort{"More sites than the reference table's " + std::to_string(s.RefSiteCount)};
    }
  }
  where.rows = false;
  where.At(0, 0);
  s.ClimateFileName = path;
  s.ClimateSiteNames = names;
  if (rows != s.RefSiteCount) {
    dialogs.Message(kSiteNumberMessage, "Error");
    throw ClimateAbort{std::to_string(rows) + " sites where the reference table has " +
                       std::to_string(s.RefSiteCount)};
  }

  // Names are compared site by site; each accepted difference is listed in
  // an array sized by the taxa count, which a long list overruns.
  s.ClimateNameMismatch.ReDim(s.RefTaxaCount);
  Count accepted = 0;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const std::string& climate = s.ClimateSiteNames(i);
    const std::string& reference = s.RefSiteNames(i);
    if (climate == reference) continue;
    if (!dialogs.Question("Name inconsistent.  [" + climate + "] = [" + reference + "]?",
                          "Error")) {
      where.At(i + 1, 1);
      throw ClimateAbort{"The site names [" + climate + "] and [" + reference +
                         "] were not accepted as the same"};
    }
    accepted = Increment(accepted);
    s.ClimateNameMismatch(accepted) = "[" + climate + "]/[" + reference + "]";
  }
  s.ClimateNameMismatch(0) = std::to_string(accepted);

  s.ClimateData.ReDim(rows, m);
  for (long r = 1; r <= rows; ++r) {
    double* out = s.ClimateData.Row(r, m);
    const double* v = values.Row(r);
    for (long q = 1; q <= m; ++q) out[q] = v[q];
  }
  s.ClimateLoaded = true;
}

std::string Explain(FailureKind kind, const ClimateWhere& where) {
  const std::string name = FailureName(kind);
  if (where.header && kind == FailureKind::InputPastEnd)
    return "No number cell was found after the parameter names (" + name + ")";
  if (where.header && kind == FailureKind::SubscriptOutOfRange)
    return "The header and first row hold more than 1000 cells (" + name + ")";
  if (where.rows && kind == FailureKind::InputPastEnd)
    return "The file ends inside a row (" + name + ")";
  if (where.rows && kind == FailureKind::Overflow) return "A value is too large (" + name + ")";
  return name;
}

std::string Place(const std::string& what, const std::string& file, const ClimateWhere& where) {
  std::string text = where.Text(what, file);
  if (where.header) text += FileKindHint(file);
  return text;
}

}  // namespace

ClimateImportResult Inport_climate_data(Session& s, const std::optional<std::string>& path,
                                        Dialogs& dialogs) {
  ClimateImportResult result;
  if (s.ClimateLoaded) {
    result.Ok = result.AlreadyLoaded = true;
    s.SiteInfoLoaded = false;
    return result;
  }
  if (!path) {
    result.Failure = FailureKind::Cancelled;
    result.Problem = FailureName(FailureKind::Cancelled);
    return result;
  }
  ClimateWhere where;
  try {
    ReadClimate(s, *path, dialogs, where);
    result.Ok = true;
    // The climate in use is now the file's, not the interpolation tool's.
    s.SiteInfoLoaded = false;
  } catch (const ClimateAbort& e) {
    result.Problem = Place(e.What, *path, where);
  } catch (const RuntimeFailure& e) {
    result.Failure = e.kind();
    result.Problem = Place(Explain(e.kind(), where), *path, where);
  }
  return result;
}

EstObsResult ImportEstObs(Session& s, const std::optional<std::string>& path, Dialogs& dialogs) {
  EstObsResult result;
  if (!path) {
    result.Failure = FailureKind::Cancelled;
    return result;
  }
  try {
    CellReader in = CellReader::FromFile(*path);
    in.Next();
    in.Next();
    s.EstObsEstimated.ReDim(kMaxEstObsPairs);
    s.EstObsObserved.ReDim(kMaxEstObsPairs);
    Count count = 0;
    for (long r = 1;; ++r) {
      if (in.AtEnd()) break;
      float* columns[2] = {&s.EstObsEstimated(r), &s.EstObsObserved(r)};
      for (float* target : columns) {
        std::string_view cell = in.Next();
        if (cell.empty()) {
          *target = static_cast<float>(kMissing);
          dialogs.Message(kEmptyCellMessage, "Error");
          return result;
        }
        *target = ToSingle(LenientParse(cell));
      }
      count = ToCount(static_cast<long long>(r));
      s.EstObsCount = count;
    }
    s.EstObsCount = count;
    double mx = 0, my = 0;
    for (long i = 1; i <= count; ++i) {
      mx += s.EstObsEstimated(i);
      my += s.EstObsObserved(i);
    }
    // No pairs at all is a zero variance too.
    if (count > 0) {
      mx /= count;
      my /= count;
    }
    double sxy = 0, sxx = 0, syy = 0;
    for (long i = 1; i <= count; ++i) {
      const double dx = s.EstObsEstimated(i) - mx, dy = s.EstObsObserved(i) - my;
      sxy += dx * dy;
      sxx += dx * dx;
      syy += dy * dy;
    }
    const double root = std::pow(sxx * syy, 0.5);
    if (sxx == 0 || root == 0) {
      dialogs.Message(kEmptyCellMessage, "Error");
      return result;
    }
    result.Slope = sxy / sxx;
    result.Intercept = my - result.Slope * mx;
    result.Correlation = sxy / root;
    s.EstObsImported = true;
    result.Ok = true;
  } catch (const RuntimeFailure& e) {
    result.Failure = e.kind();
  }
  return result;
}

}  // namespace varnoth
