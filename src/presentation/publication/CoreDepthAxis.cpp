#include "presentation/publication/CoreDepthAxis.h"

#include <algorithm>
#include <cmath>

#include "state/Format.h"

namespace varnoth::pub {

Axis CoreDepthAxis(const Session& s, const QString& title, const LinearScale& depth,
                   double plotHeight, bool narrow, const FigureStyle& st) {
  const long n = s.FossilSampleCount;
  const bool text = s.FossilLabelsAreText;
  Axis axis;
  axis.Where = Side::Left;
  axis.Scale = depth;
  axis.Title =
      title.isEmpty() ? (text ? QStringLiteral("Sample") : QStringLiteral("Depth")) : title;
  if (text) {
    const double pitch = plotHeight / std::max<long>(1, n - 1);
    const double need = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 0.6;
    const long stride = std::max<long>(1, static_cast<long>(std::ceil(need / pitch)));
    for (long k = 1; k <= n; k += stride) {
      axis.TickValues.push_back(static_cast<double>(k));
      axis.TickTexts.push_back(QString::fromStdString(s.FossilLabels(k)));
    }
  } else {
    const double d1 = LenientParse(s.FossilLabels(1)), dn = LenientParse(s.FossilLabels(n));
    const Ticks t = NiceTicks(std::min(d1, dn), std::max(d1, dn), narrow ? 8 : 10);
    axis.TickValues = t.Values;
    axis.Decimals = t.Decimals;
  }
  return axis;
}

}  // namespace varnoth::pub
