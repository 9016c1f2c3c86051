// The pollen diagram for a paper, drawn as stratigraphic plots are by
// convention: depth down the page, taxa in the table's order with their
// names on top, every column at the same percentage scale.
#include <algorithm>
#include <cmath>
#include <fstream>

#include "presentation/publication/Axis.h"
#include "presentation/publication/CoreDepthAxis.h"
#include "presentation/publication/Figures.h"
#include "presentation/publication/Tree.h"
#include "state/Format.h"

namespace varnoth::pub {

namespace {

const QColor kBlack(Qt::black);
const QColor kSilhouette(96, 96, 96);
const QColor kExaggerated(205, 205, 205);
const QColor kZoneLine(60, 60, 60);
// Taxa below this percentage get the ten times outline when asked.
constexpr double kExaggerateBelow = 10;

bool Empty(const Session& s, long i) {
  return s.FossilEmptySample.Allocated() && s.FossilEmptySample(i);
}

// A taxon's name is upright when it ends in "ae" (a family), italic
// otherwise (a genus), unless no name of the list ends so.
bool ItalicNames(const Session& s) {
  for (long t = 1; t <= s.FossilTaxaCount; ++t) {
    const std::string& n = s.FossilTaxaNames(t);
    if (n.size() >= 2 &&
        (n.compare(n.size() - 2, 2, "ae") == 0 || n.compare(n.size() - 2, 2, "AE") == 0))
      return true;
  }
  return false;
}
bool Italic(const std::string& n, bool rule) {
  if (!rule) return false;
  return !(n.size() >= 2 &&
           (n.compare(n.size() - 2, 2, "ae") == 0 || n.compare(n.size() - 2, 2, "AE") == 0));
}

// Column widths at one percentage scale, each at least `minimum` wide so
// that its name fits: the scale that fills `room` exactly.
double ColumnScale(const std::vector<double>& extents, double minimum, double room) {
  double lo = 0, hi = 1e6;
  for (int k = 0; k < 80; ++k) {
    const double mid = (lo + hi) / 2;
    double used = 0;
    for (double e : extents) used += std::max(minimum, e * mid);
    (used > room ? hi : lo) = mid;
  }
  return lo;
}

}  // namespace

bool HasConissTree(const Session& s) {
  const long n = s.FossilSampleCount;
  return n >= 2 && s.ConissHeight.Allocated() &&
         s.ConissHeight.Size() > static_cast<std::size_t>(n - 1) && s.ConissHeight(n - 1) > 0;
}

QString FossilCornerCell(const Session& s) {
  // Only the first cell is read, by the table's own rules: a comma or a
  // line end ends it, leading blanks go, quotes round it go.
  std::ifstream in(s.FossilFileName, std::ios::binary);
  std::string cell;
  char c = 0;
  while (in.get(c) && c != ',' && c != '\n' && c != '\r') cell += c;
  if (cell.rfind("\xEF\xBB\xBF", 0) == 0) cell.erase(0, 3);
  const auto first = cell.find_first_not_of(' ');
  cell = first == std::string::npos ? std::string() : cell.substr(first);
  if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"')
    cell = cell.substr(1, cell.size() - 2);
  return QString::fromStdString(cell).trimmed();
}

PollenOptions DefaultPollenOptions(const Session& s, double widthMm) {
  PollenOptions o;
  o.WidthMm = widthMm;
  o.DepthTitle = s.FossilLabelsAreText ? QStringLiteral("Sample") : FossilCornerCell(s);
  o.ShownEof = s.DisplayAxes.Allocated() ? s.DisplayAxes(1) : 1;
  o.EofPanel = s.ProjectionDone || (s.EofDone && s.FossilIsBase);
  o.ConissPanel = HasConissTree(s);
  return o;
}

Page PollenDiagramFigure(const Session& s, const PollenOptions& o) {
  const FigureStyle st = StyleFor(o.WidthMm);
  const double W = o.WidthMm;
  const long n = s.FossilSampleCount;
  const bool narrow = W < 120;

  // The taxa shown, in the table's order.
  std::vector<long> taxa;
  std::vector<double> maxima;
  for (long t = 1; t <= s.FossilTaxaCount; ++t) {
    double m = 0;
    for (long i = 1; i <= n; ++i)
      if (!Empty(s, i)) m = std::max(m, s.FossilProportion(i, t) * 100);
    if (m + 1e-9 >= o.MinMaxPercent) {
      taxa.push_back(t);
      maxima.push_back(m);
    }
  }
  const bool italicRule = ItalicNames(s);

  // Heights: the names over the columns, then the plot, then the scales.
  double namesHeight = 0;
  for (long t : taxa)
    namesHeight =
        std::max(namesHeight, Page::TextWidth(QString::fromStdString(s.FossilTaxaNames(t)),
                                              st.TextPt, Italic(s.FossilTaxaNames(t), italicRule)));
  const double plotTop = st.MarginMm + namesHeight + 1.0;
  const double plotHeight = narrow ? 100 : 110;
  const double plotBottom = plotTop + plotHeight;

  // Depth: the numbers of the labels, first at the top; text labels stand
  // evenly, one per sample.
  const bool text = s.FossilLabelsAreText;
  const double d1 = text ? 1 : LenientParse(s.FossilLabels(1));
  const double dn = text ? static_cast<double>(n) : LenientParse(s.FossilLabels(n));
  const LinearScale depth{d1, dn == d1 ? d1 + 1 : dn, plotTop, plotBottom};
  auto yOf = [&](long i) {
    return depth(text ? static_cast<double>(i) : LenientParse(s.FossilLabels(i)));
  };
  // A position of the tree (10 to 10 N, in proportion to depth).
  auto yOfPosition = [&](double pos) {
    return n <= 1 ? plotTop : plotTop + (pos - 10) / (10.0 * n - 10) * plotHeight;
  };

  const Axis depthAxis = CoreDepthAxis(s, o.DepthTitle, depth, plotHeight, narrow, st);
  Page page(W, plotBottom + 20);
  const double plotLeft = st.MarginMm + AxisDepth(page, depthAxis, st);

  // Across: depth axis, taxon columns, EOF curve, tree.
  const double panelGap = narrow ? 2.0 : 3.5;
  const bool eof = o.EofPanel && s.FossilScores.Allocated() && o.ShownEof >= 1;
  const bool tree = o.ConissPanel && HasConissTree(s);
  const double eofWidth = eof ? W * (narrow ? 0.13 : 0.11) : 0;
  const double treeWidth = tree ? W * (narrow ? 0.12 : 0.10) : 0;
  const double right = W - st.MarginMm - 2.0;  // room for the last scale label
  const double treeLeft = right - treeWidth;
  const double eofRight = tree ? treeLeft - panelGap : right;
  const double eofLeft = eofRight - eofWidth;
  const double columnsRight = eof ? eofLeft - panelGap : eofRight;
  const double columnGap = narrow ? 0.5 : 1.0;
  const double minimum = Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt) + 0.3;
  // Columns too many for the width: the rarest taxa give way, and a note
  // under the figure says where the cut lies.
  double cut = 0;
  while (!taxa.empty() && (minimum + columnGap) * static_cast<double>(taxa.size()) >
                              0.85 * (columnsRight - plotLeft)) {
    cut = *std::min_element(maxima.begin(), maxima.end());
    std::vector<long> keptTaxa;
    std::vector<double> keptMaxima;
    for (std::size_t c = 0; c < taxa.size(); ++c)
      if (maxima[c] > cut) {
        keptTaxa.push_back(taxa[c]);
        keptMaxima.push_back(maxima[c]);
      }
    taxa.swap(keptTaxa);
    maxima.swap(keptMaxima);
  }
  const double room = columnsRight - plotLeft - columnGap * std::max<double>(0, taxa.size() - 1.0);
  const double mmPerPercent = std::max(1e-6, ColumnScale(maxima, minimum, room));

  // One percentage step for every column, wide enough for its label.
  // The widest column must show a number besides its 0.
  const double widest =
      maxima.empty() ? 0 : *std::max_element(maxima.begin(), maxima.end()) * mmPerPercent;
  const double labelWidth = Page::TextWidth(QStringLiteral("80"), st.TextPt);
  double step = 0;
  for (double candidate : {10.0, 20.0, 25.0, 50.0, 100.0}) {
    const bool apart = candidate * mmPerPercent >= labelWidth + 0.6;
    const bool shows = candidate * mmPerPercent + labelWidth / 2 <= widest + 0.3;
    if (apart && step == 0) step = candidate;
    if (apart && shows) {
      step = candidate;
      break;
    }
  }
  if (step == 0) step = 100;

  // The depth axis first: its labels have the first claim on their room.
  DrawAxis(page, depthAxis, plotLeft - (narrow ? 0.8 : 1.2), st);

  double x = plotLeft;
  double scalesDepth = 0;
  bool anyExaggerated = false;
  for (std::size_t c = 0; c < taxa.size(); ++c) {
    const long t = taxa[c];
    const double w = std::max(minimum, maxima[c] * mmPerPercent);
    const double x0 = x;
    auto xOf = [&](double percent) { return x0 + percent * mmPerPercent; };
    // Runs of samples without gaps, each a filled silhouette from the
    // zero line.
    auto silhouettes = [&](double factor, const QColor& fill) {
      long i = 1;
      while (i <= n) {
        while (i <= n && Empty(s, i)) ++i;
        if (i > n) break;
        std::vector<QPointF> shape;
        shape.emplace_back(x0, yOf(i));
        long last = i;
        for (; i <= n && !Empty(s, i); ++i) {
          const double v = std::min(s.FossilProportion(i, t) * 100 * factor, w / mmPerPercent);
          shape.emplace_back(xOf(v), yOf(i));
          last = i;
        }
        shape.emplace_back(x0, yOf(last));
        if (shape.size() == 3) {
          // A lone sample shows as a bar.
          page.Line(x0, shape[1].y(), shape[1].x(), shape[1].y(), fill, 1.0);
        } else {
          page.Polygon(shape, fill);
        }
      }
    };
    // The rare taxa only: a common one would fill its column.
    const bool exaggerated = o.Exaggerate && maxima[c] < kExaggerateBelow;
    if (exaggerated) silhouettes(10, kExaggerated);
    anyExaggerated = anyExaggerated || exaggerated;
    silhouettes(1, kSilhouette);
    page.Line(x0, plotTop, x0, plotBottom, kBlack, st.AxisPt);

    Axis scale;
    scale.Where = Side::Bottom;
    scale.Scale = {0, w / mmPerPercent, x0, x0 + w};
    for (double v = 0; v * mmPerPercent <= w + 1e-6; v += step) {
      // A label running past the column's end would read as the next one's.
      const QString label = TickLabel(v, 0);
      const bool fits = v * mmPerPercent + Page::TextWidth(label, st.TextPt) / 2 <= w + 0.3;
      scale.TickValues.push_back(v);
      scale.TickTexts.push_back(fits || v == 0 ? label : QString());
    }
    // The scale's line runs the column's width.
    Axis line = scale;
    line.TickValues.clear();
    line.Labels = false;
    line.Scale = {0, w, x0, x0 + w};
    DrawAxis(page, line, plotBottom, st);
    scale.Line = false;
    scale.LabelSpaceMm = 1.2;  // a label must not read as the next column's
    scalesDepth = std::max(scalesDepth, DrawAxis(page, scale, plotBottom, st));

    TextStyle name;
    name.Points = st.TextPt;
    name.Upwards = true;
    name.V = VAlign::Middle;
    name.Italic = Italic(s.FossilTaxaNames(t), italicRule);
    page.Text(x0 + std::min(w, minimum) / 2 + 0.1, plotTop - 1.0,
              QString::fromStdString(s.FossilTaxaNames(t)), name);
    x += w + columnGap;
  }
  const double columnsEnd = x - columnGap;
  // One title under all scales.
  TextStyle title;
  title.Points = st.TitlePt;
  title.H = HAlign::Centre;
  title.V = VAlign::Top;
  const double titleY = plotBottom + scalesDepth + st.TitleGapMm;
  page.Text((plotLeft + columnsEnd) / 2, titleY, QStringLiteral("Percentage (%)"), title);
  double bottom = titleY + Page::CapHeight(st.TitlePt) + Page::Descent(st.TitlePt);

  if (eof) {
    double lo = 0, hi = 0;
    bool any = false;
    for (long i = 1; i <= n; ++i) {
      if (Empty(s, i)) continue;
      const double v = s.FossilScores(i, o.ShownEof);
      lo = any ? std::min(lo, v) : v;
      hi = any ? std::max(hi, v) : v;
      any = true;
    }
    lo = std::min(lo, 0.0);
    hi = std::max(hi, 0.0);
    NiceRange(lo, hi, 3);
    const LinearScale xs{lo, hi, eofLeft, eofRight};
    if (lo < 0 && hi > 0)
      page.Line(xs(0), plotTop, xs(0), plotBottom, QColor(150, 150, 150), st.AxisPt, true);
    std::vector<QPointF> run;
    auto flush = [&] {
      page.Polyline(run, kBlack, st.DataPt);
      run.clear();
    };
    for (long i = 1; i <= n; ++i) {
      if (Empty(s, i)) {
        flush();
        continue;
      }
      run.emplace_back(xs(s.FossilScores(i, o.ShownEof)), yOf(i));
    }
    flush();
    const bool marks =
        s.SampleIsOut.Allocated() && s.SampleIsOut.Size() > static_cast<std::size_t>(n);
    for (long i = 1; i <= n; ++i) {
      if (Empty(s, i)) continue;
      const double px = xs(s.FossilScores(i, o.ShownEof));
      if (marks && s.SampleIsOut(i))
        page.Marker(px, yOf(i), MarkerShape::Circle, narrow ? 1.3 : 1.6, kBlack, Qt::white, 0.5);
      else
        page.Marker(px, yOf(i), MarkerShape::Circle, narrow ? 0.6 : 0.8, QColor(), kBlack);
    }
    Axis a = MakeAxis(Side::Bottom, xs, NiceTicks(lo, hi, 3),
                      QStringLiteral("EOF-%1 score").arg(o.ShownEof));
    bottom = std::max(bottom, plotBottom + DrawAxis(page, a, plotBottom, st));
  }

  if (tree) {
    const ConissTree joins = ReplayConiss(s);
    double top = 0;
    for (const ConissJoin& j : joins) top = std::max(top, j.Height);
    double lo = 0, hi = top;
    NiceRange(lo, hi, 3);
    const LinearScale xs{0, hi, treeLeft, right};
    for (const ConissJoin& j : joins) {
      const double yl = yOfPosition(j.LeftPosition), yr = yOfPosition(j.RightPosition);
      page.Line(xs(j.LeftHeight), yl, xs(j.Height), yl, kBlack, st.AxisPt);
      page.Line(xs(j.RightHeight), yr, xs(j.Height), yr, kBlack, st.AxisPt);
      page.Line(xs(j.Height), yl, xs(j.Height), yr, kBlack, st.AxisPt);
    }
    Axis a = MakeAxis(Side::Bottom, xs, NiceTicks(0, hi, 3), QStringLiteral("Sum of squares"));
    bottom = std::max(bottom, plotBottom + DrawAxis(page, a, plotBottom, st));
    TextStyle head;
    head.Points = st.TitlePt;
    head.H = HAlign::Centre;
    head.V = VAlign::Bottom;
    page.Text((treeLeft + right) / 2, plotTop - 1.0, QStringLiteral("CONISS"), head);
    if (o.Zones >= 2) {
      for (long last : ZoneBoundaries(joins, o.Zones)) {
        // Half way between the last sample of one zone and the first of the next.
        const double y = (yOf(last) + yOf(last + 1)) / 2;
        page.Line(plotLeft, y, right, y, kZoneLine, st.AxisPt, true);
      }
    }
  }
  if (eof) {
    TextStyle head;
    head.Points = st.TitlePt;
    head.H = HAlign::Centre;
    head.V = VAlign::Bottom;
    page.Text((eofLeft + eofRight) / 2, plotTop - 1.0, QStringLiteral("EOF-%1").arg(o.ShownEof),
              head);
  }
  // Notes under the figure: the outline, and the taxa left out.
  QStringList notes;
  if (anyExaggerated)
    notes << QStringLiteral("Light grey: values ") + QChar(0x00D7) +
                 QStringLiteral("10 for taxa below %1 %.").arg(kExaggerateBelow);
  if (cut > 0)
    notes << QStringLiteral("Taxa never above %1 % not shown.").arg(QString::number(cut, 'g', 3));
  for (const QString& words : notes) {
    TextStyle note;
    note.Points = st.TextPt;
    note.V = VAlign::Top;
    const double y = bottom + 1.0;
    page.Text(st.MarginMm, y, words, note);
    bottom = y + Page::CapHeight(st.TextPt) + Page::Descent(st.TextPt);
  }
  page.SetHeight(bottom + st.MarginMm);
  return page;
}

}  // namespace varnoth::pub
