#include "support/LiteralInterpolation.h"

#include <cmath>

namespace varnoth::test {

// The computation as a plain loop: full distance arrays, every square and
// root through the power function, the radius read at every station.
LiteralInterpolation RunInterpolationLiteral(const InterpolationState& st, InterpMode mode,
                                             double p, double radius) {
  const long nr = st.InterpRefCount, nt = st.InterpTargetCount, c = st.InterpColumnCount;
  LiteralInterpolation out;
  for (int stage = 0; stage < 2; ++stage) {
    const bool targets = stage == 0;
    const long rows = targets ? nt : nr;
    Array2<double> dist(rows, nr);
    Array2<double>& e = targets ? out.Target : out.Station;
    e.ReDim(rows, c);
    out.Nearest.ReDim(rows);
    for (long i = 1; i <= rows; ++i) {
      const double x = targets ? st.SiteLongitude(i) : st.InterpRefLon(i);
      const double y = targets ? st.SiteLatitude(i) : st.InterpRefLat(i);
      const double alt = targets ? st.SiteAltitude(i) : st.InterpRefAlt(i);
      auto lapse = [&](long k) {
        return targets ? st.InterpTargetLapse(i, k) : st.InterpRefLapse(i, k);
      };
      // The square through the power function is the correctly rounded
      // square, which is the product: optimised builds fold pow(v, 2) into
      // v * v, and an unoptimised one must not call a power function whose
      // last bit may differ.
      auto square = [](double v) { return v * v; };
      for (long j = 1; j <= nr; ++j)
        dist(i, j) = std::pow(square(x - static_cast<double>(st.InterpRefLon(j))) +
                                  square(y - static_cast<double>(st.InterpRefLat(j))),
                              0.5);
      if (mode == InterpMode::Interpolation) {
        double sum = 0;
        for (long k = 1; k <= c; ++k) e(i, k) = 0;
        for (long j = 1; j <= nr; ++j) {
          if (radius >= dist(i, j) && dist(i, j) != 0) {
            const double w = std::pow(dist(i, j), p);
            sum += w;
            for (long k = 6; k <= c; ++k)
              e(i, k) = e(i, k) + w * (st.InterpRefClimate(j, k) -
                                       st.InterpRefAlt(j) * st.InterpRefLapse(j, k) / 100 +
                                       alt * lapse(k) / 100);
          }
        }
        for (long k = 1; k <= c; ++k) {
          e(i, k) = sum == 0 ? -9999 : e(i, k) / sum;
          if (st.InterpNonNegative(k) && e(i, k) < 0 && e(i, k) != -9999) e(i, k) = 0;
        }
      } else {
        dist(i, 0) = 9999;
        out.Nearest(i) = -9999;
        for (long j = 1; j <= nr; ++j) {
          if (dist(i, 0) > dist(i, j) && dist(i, j) != 0) {
            dist(i, 0) = dist(i, j);
            out.Nearest(i) = static_cast<Count>(j);
          }
        }
        for (long k = 6; k <= c; ++k) {
          if (radius < dist(i, 0)) {
            e(i, k) = -9999;
          } else {
            const long n = out.Nearest(i);
            e(i, k) = st.InterpRefClimate(n, k) +
                      (alt - static_cast<double>(st.InterpRefAlt(n))) * lapse(k) / 100;
          }
        }
      }
    }
  }
  return out;
}

}  // namespace varnoth::test
