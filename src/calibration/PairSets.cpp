#include "calibration/PairSets.h"

#include <cmath>

#include "state/CellReader.h"
#include "state/Finite.h"
#include "state/Format.h"
#include "state/ReadProblem.h"

namespace varnoth {

CalibState::CalibState() {
  PairData.ReDim(1, kPairRowLimit, 2);
  CalibMatrix.ReDim(8, kGridLast, kGridLast);
  ModeIndex.ReDim(kGridLast);
  MedianIndex.ReDim(kGridLast);
  ConfidenceLevel.ReDim(kGridLast, 2);
}

Count HistColumnsFor(long pictureWidth, long pictureHeight) {
  return ToCount(static_cast<long long>(
      Int(static_cast<double>(kMatrixSteps) * static_cast<double>(pictureHeight) /
          static_cast<double>(pictureWidth))));
}

double ShownCoefficient(const CalibSettings& st, int k) {
  const std::string& shown = st.Label4[k == 0 ? 0 : 1];
  if (!shown.empty()) return LenientParse(shown);
  return static_cast<double>(k == 0 ? st.Slider1 : st.Slider2) / 10;
}

std::string RoundedText(double v, int places) {
  const double scale = std::pow(10.0, places);
  return FormatGeneral(std::nearbyint(v * scale) / scale);
}

std::string DeviationText(double v) {
  const int places = v < 10 ? 5 : v < 100 ? 4 : v < 1000 ? 3 : v < 10000 ? 2 : 1;
  return RoundedText(v, places);
}

namespace {

// One value of a pair, as its text: an empty text is a missing value whose
// zero still enters the running largest and smallest value.
void Store(CalibState& c, int k, long s, long col, std::string_view text) {
  const double v = text.empty() ? 0.0 : LenientParse(text);
  if (v > LenientParse(c.PairMax[k])) c.PairMax[k] = FormatGeneral(v);
  if (v < LenientParse(c.PairMin[k])) c.PairMin[k] = FormatGeneral(v);
  c.PairData(k, s, col) = text.empty() ? static_cast<float>(kMissing) : ToSingle(v);
}

void StorePair(CalibState& c, int k, long s, std::string_view x, std::string_view y) {
  Store(c, k, s, 1, x);
  Store(c, k, s, 2, y);
  if (c.PairData(k, s, 1) != static_cast<float>(kMissing) &&
      c.PairData(k, s, 2) != static_cast<float>(kMissing))
    c.PairCount = Increment(c.PairCount);
}

std::string TextOf(double v) { return v == kMissing ? std::string() : FormatGeneral(v); }

long LabelCount(const std::string& label) { return static_cast<long>(Fix(LenientParse(label))); }

void ShowFit(CalibState& c, int k) {
  if (LabelCount(c.Labels.Label12[k]) > 1) {
    FitLine(c, k);
    c.Labels.Label13[k] = RoundedText(c.FitCorrelation[k], 4);
  }
}

// What stopped the read of a pair file, in the words of the reader
// messages: the cause, the file, the row and column.
std::string PairProblem(FailureKind kind, const std::string& path, ReadPlace place,
                        const std::string& x) {
  const std::string name = FailureName(kind);
  if (IsFileFailure(kind) || kind == FailureKind::OutOfMemory) return name + " (" + path + ")";
  if (kind == FailureKind::InputPastEnd)
    return place.Text("The file ends inside a row (" + name + ")", path);
  if (kind == FailureKind::SubscriptOutOfRange) {
    place.column = 0;
    return place.Text("More than " + std::to_string(kPairRowLimit) + " pairs (" + name + ")", path);
  }
  if (kind == FailureKind::Overflow) {
    // The x value is converted first: y overflowed when x did not.
    try {
      ToSingle(LenientParse(x));
    } catch (const RuntimeFailure&) {
      place.column = 1;
    }
    return place.Text("A value is too large (" + name + ")", path);
  }
  return place.Text(name, path);
}

}  // namespace

void TransferData(CalibState& c, const Session& s, const std::string& dialogFileName,
                  const InterpolatedPairs* interpolated) {
  if (interpolated) {
    long column = 0;
    for (long col = 4; col <= interpolated->InterpColumnCount; ++col)
      if (interpolated->InterpParamNames(col) == interpolated->ParameterShown) column = col;
    for (long r = 1; r <= interpolated->InterpRefCount; ++r) {
      c.PairData(1, r, 1) = ToSingle(interpolated->InterpRefEstimate(r, column));
      c.PairData(1, r, 2) = ToSingle(interpolated->InterpRefClimate(r, column));
    }
  }
  const long p = s.CurrentParameter;
  if (c.CalibToolOpen) {
    c.PairCount = 0;
    c.PairMax[0] = "-99999999";
    c.PairMin[0] = "99999999";
    c.PairLabels[0] = "(Reconstructed)" + s.ClimateParamNames(p);
    c.PairLabels[2] = "(Estimated)" + s.ClimateParamNames(p);
  }
  c.PairRows[0] = s.RefSiteCount;
  for (long r = 1; r <= s.RefSiteCount; ++r)
    StorePair(c, 0, r, TextOf(s.ReconRefValue(r, p)), TextOf(s.ClimateData(r, p)));
  c.Labels.Label12[0] = std::to_string(c.PairCount);
  c.Labels.Label13[0].clear();
  c.Labels.Label14[0] = c.PairLabels[0];
  c.Labels.Label15[0] = c.PairLabels[2];
  c.Labels.Label21[0] = dialogFileName;
  ShowFit(c, 0);
  if (interpolated) {
    c.Labels.Label12[1] = std::to_string(interpolated->AccuracyCount);
    FitPairSet1(c);
  }
}

bool ImportPairFile(CalibState& c, int k, const std::string& path, std::string* problem) {
  // Where the read stands, for the problem text: file rows count the
  // header as row 1, x is column 1 and y column 2.
  ReadPlace place;
  std::string x, y;
  try {
    CellReader cells = CellReader::FromFile(path);
    c.PairCount = 0;
    c.PairMax[k] = "-99999999";
    c.PairMin[k] = "99999999";
    c.PairRows[static_cast<std::size_t>(k)] = 0;
    for (long n = 0; !cells.AtEnd(); ++n) {
      place.At(n + 1, 1);
      x = cells.Next();
      place.At(n + 1, 2);
      y = cells.Next();
      if (n == 0) {
        c.PairLabels[k] = x;
        c.PairLabels[k + 2] = y;
      } else {
        StorePair(c, k, n, x, y);  // row 10001 is the subscript failure
        c.PairRows[static_cast<std::size_t>(k)] = n;
      }
    }
  } catch (const RuntimeFailure& e) {
    if (problem) *problem = PairProblem(e.kind(), path, place, x);
    return false;
  }
  c.Labels.Label12[k] = std::to_string(c.PairCount);
  c.Labels.Label13[k].clear();
  if (k == 1) {
    c.Labels.Label17.clear();
    c.Labels.Label19.clear();
  }
  c.Labels.Label14[k] = c.PairLabels[k];
  c.Labels.Label15[k] = c.PairLabels[k + 2];
  c.Labels.Label21[k] = path;
  ShowFit(c, k);
  FitPairSet1(c);
  return true;
}

void SetRange(CalibState& c, Dialogs& dialogs) {
  if (c.Text1.empty() || c.Text2.empty()) {
    c.Text1 = c.LastText1;
    c.Text2 = c.LastText2;
  }
  const double t1 = LenientParse(c.Text1), t2 = LenientParse(c.Text2);
  if (t1 == t2) {
    dialogs.Message("Please set valid range.", "Error");
    c.Text1 = c.LastText1;
    c.Text2 = c.LastText2;
  } else {
    c.LastText1 = c.Text1;
    c.LastText2 = c.Text2;
    c.GridLow = ToSingle(1.125 * t1 - 0.125 * t2);
    c.GridHigh = ToSingle(1.125 * t2 - 0.125 * t1);
    c.MatrixStepSize = (t2 - t1) / static_cast<double>(kMatrixSteps);
  }
  c.RangeWidth = ToSingle(std::fabs(LenientParse(c.Text1) - LenientParse(c.Text2)));
}

void FitLine(CalibState& c, int k) {
  const long n = LabelCount(c.Labels.Label12[k]);
  const float missing = static_cast<float>(kMissing);
  auto x = [&](long s) { return static_cast<double>(c.PairData(k, s, 1)); };
  auto y = [&](long s) { return static_cast<double>(c.PairData(k, s, 2)); };
  auto hasX = [&](long s) { return c.PairData(k, s, 1) != missing; };
  auto hasY = [&](long s) { return c.PairData(k, s, 2) != missing; };
  double m = 0, sumX = 0, sumY = 0;
  for (long s = 1; s <= n; ++s)
    if (hasX(s) && hasY(s)) {
      m += 1;
      sumX += x(s);
      sumY += y(s);
    }
  const double meanX = Div(sumX, m), meanY = Div(sumY, m);
  double sxy = 0, sxx = 0, syy = 0;
  for (long s = 1; s <= n; ++s) {
    if (hasX(s) && hasY(s)) sxy += (x(s) - meanX) * (y(s) - meanY);
    if (hasX(s)) sxx += (x(s) - meanX) * (x(s) - meanX);
    if (hasY(s)) syy += (y(s) - meanY) * (y(s) - meanY);
  }
  if (sxx == 0) return;
  c.FitSlope[k] = ToSingle(sxy / sxx);
  c.FitIntercept[k] = ToSingle(meanY - meanX * static_cast<double>(c.FitSlope[k]));
  const double d = std::pow(sxx * syy, 0.5);
  if (d != 0) c.FitCorrelation[k] = ToSingle(sxy / d);
  // Sums of huge pairs overflow to an infinity that a single still holds.
  RequireFinite(c.FitSlope.data(), c.FitSlope.size());
  RequireFinite(c.FitIntercept.data(), c.FitIntercept.size());
  RequireFinite(c.FitCorrelation.data(), c.FitCorrelation.size());
}

void FitPairSet1(CalibState& c) {
  const long n = LabelCount(c.Labels.Label12[1]);
  if (n <= 1) return;
  FitLine(c, 1);
  c.Labels.Label14[1] = c.PairLabels[1];
  c.Labels.Label15[1] = c.PairLabels[3];
  const double a = c.FitSlope[1], b = c.FitIntercept[1];
  c.Labels.Label17 = "y = " + RoundedText(a, 3) + " x + " + RoundedText(b, b < 100 ? 3 : 2);
  const float missing = static_cast<float>(kMissing);
  double sum = 0, rows = 0;
  for (long s = 1; s <= n; ++s) {
    const float x = c.PairData(1, s, 1), y = c.PairData(1, s, 2);
    if (x == missing || y == missing) continue;
    const double r = static_cast<double>(y) - (a * static_cast<double>(x) + b);
    sum += r * r;
    rows += 1;
  }
  c.FitStdDev[1] = ToSingle(std::pow(Div(sum, rows), 0.5));
  c.Labels.Label19 = DeviationText(c.FitStdDev[1]);
  c.Labels.Label13[1] = RoundedText(c.FitCorrelation[1], 4);
}

void ReturnData(CalibState& c, bool confidenceView, MatrixPainter* painter) {
  for (long p = 0; p <= kGridLast; ++p)
    for (long q = 0; q <= kGridLast; ++q)
      c.CalibMatrix(8, p, q) = c.CalibMatrix(7, p, q) + c.CalibMatrix(6, p, q);
  if (painter) {
    painter->Clear();
    for (long p = kShownFirst; p <= kShownLast; ++p)
      for (long q = kShownFirst; q <= kShownLast; ++q) {
        const float cls = std::fabs(c.CalibMatrix(7, p, q));
        const int pi = static_cast<int>(p), qi = static_cast<int>(q);
        if (confidenceView) {
          if (cls >= 1) painter->Region(pi, qi, cls >= 2 ? 2 : 1);
        } else if (cls != 0) {
          painter->Probability(std::fabs(c.CalibMatrix(6, p, q)) * 1.25f * (200.0f / 10.0f), pi,
                               qi);
        }
      }
  }
  c.CalibReady = true;
}

std::string ReturnCaption(const CalibState& c) {
  return "R1 = " + c.Labels.Label13[0] + " / R2 = " + c.Labels.Label13[1];
}

}  // namespace varnoth
