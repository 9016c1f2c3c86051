#include "reconstruction/Curves.h"

#include <algorithm>
#include <cmath>

#include "state/Format.h"

namespace varnoth {

namespace {

// The step for the larger magnitude m; the last row differs by sign.
double Step(double m, bool negative) {
  if (m < 100) return 5;
  if (m < 1000) return 50;
  if (m < 10000) return 500;
  return negative ? 5000 : 1000;
}

}  // namespace

double RoundScaleUp(float v, float other) {
  const double x = v;
  const double m = std::max(std::fabs(x), std::fabs(static_cast<double>(other)));
  if (x == 0) return 0;
  if (x > 0) {
    const double step = Step(m, false);
    return (Int(x / step) + 1) * step;
  }
  const double step = Step(m, true);
  return Fix(x / step) * step;
}

double RoundScaleDown(float v, float other) {
  const double x = v;
  const double m = std::max(std::fabs(x), std::fabs(static_cast<double>(other)));
  if (x == 0) return 0;
  if (x > 0) {
    const double step = Step(m, false);
    return Int(x / step) * step;
  }
  const double step = Step(m, true);
  return (Fix(x / step) - 1) * step;
}

ScaleLimits CurveLimits(const Session& s, long p) {
  ScaleLimits l;
  const float low = s.ReconMin(p), high = s.ReconMax(p);
  if (low == 9999.0f) {
    l.NoAnalogues = true;
    return l;
  }
  l.Low = RoundScaleDown(low, high);
  l.High = RoundScaleUp(high, low);
  return l;
}

Count SetCurrentParameter(Session& s, std::string_view name) {
  for (long q = 1; q <= s.ClimateParamCount; ++q)
    if (s.ClimateParamNames(q) == name) {
      s.CurrentParameter = static_cast<Count>(q);
      break;
    }
  return s.CurrentParameter;
}

void SmoothCurve(Session& s, long p, long level) {
  const long n = s.FossilSampleCount;
  s.SmoothedPosition.ReDim(n);
  s.SmoothedValue.ReDim(n);
  for (long i = 1; i <= n - level + 1; ++i) {
    double position = 0, sum = 0;
    bool missing = false;
    for (long t = 0; t < level; ++t) {
      const long k = i + t;
      position += s.FossilLabelsAreText ? static_cast<double>(k) : LenientParse(s.FossilLabels(k));
      if (missing) continue;
      const double v = s.ReconValue(k, p);
      if (v == kMissing || s.FossilEmptySample(k)) {
        // The point comes out as exactly the missing value.
        sum = static_cast<double>(level) * kMissing;
        missing = true;
        continue;
      }
      sum += v;
    }
    s.SmoothedPosition(i) = ToSingle(position / static_cast<double>(level));
    s.SmoothedValue(i) = ToSingle(sum / static_cast<double>(level));
  }
}

std::optional<double> EstObsCorrelation(const Session& s, long p) {
  double mx = 0, my = 0;
  long count = 0;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const double x = s.ReconRefValue(i, p), y = s.ClimateData(i, p);
    if (x == kMissing || y == kMissing) continue;
    mx += x;
    my += y;
    ++count;
  }
  if (count == 0) return std::nullopt;
  mx /= static_cast<double>(count);
  my /= static_cast<double>(count);
  double sxy = 0, sxx = 0, syy = 0;
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    const double x = s.ReconRefValue(i, p), y = s.ClimateData(i, p);
    if (x == kMissing || y == kMissing) continue;
    sxy += (x - mx) * (y - my);
    sxx += (x - mx) * (x - mx);
    syy += (y - my) * (y - my);
  }
  const double denominator = std::pow(sxx * syy, 0.5);
  if (denominator == 0) return std::nullopt;
  return sxy / denominator;
}

std::string CorrelationCaption(const std::optional<double>& r) {
  if (!r) return "Sample too small";
  return "R = " + FormatGeneral(std::nearbyint(*r * 10000) / 10000);
}

}  // namespace varnoth
