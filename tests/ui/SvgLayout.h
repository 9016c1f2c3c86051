#pragma once
// Reads a figure's SVG back as a reader would see it: the page size, every
// text with the box its font gives it, and the bounds of every shape, so
// that tests can say that nothing leaves the page and no two texts meet.
#include <QFont>
#include <QFontMetricsF>
#include <QRectF>
#include <QRegularExpression>
#include <QString>
#include <QXmlStreamReader>
#include <algorithm>
#include <vector>

namespace varnoth::uitest {

struct SvgText {
  QString Words;
  QRectF Box;
};

struct SvgLayout {
  bool Valid = false;
  double Width = 0, Height = 0;  // millimetres
  std::vector<SvgText> Texts;
  std::vector<QRectF> Shapes;
  int DashedLines = 0;

  bool HasText(const QString& words) const {
    return std::any_of(Texts.begin(), Texts.end(),
                       [&](const SvgText& t) { return t.Words == words; });
  }
  // Texts lying wholly or partly off the page, and every shape too.
  QStringList OffPage() const {
    QStringList off;
    // Compared edge by edge: a line along an axis has no area.
    auto inside = [this](const QRectF& r) {
      return r.left() >= -1e-3 && r.top() >= -1e-3 && r.right() <= Width + 1e-3 &&
             r.bottom() <= Height + 1e-3;
    };
    for (const SvgText& t : Texts)
      if (!inside(t.Box)) off << t.Words;
    for (const QRectF& r : Shapes)
      if (!inside(r)) off << QStringLiteral("shape at %1,%2").arg(r.x()).arg(r.y());
    return off;
  }
  // Pairs of texts whose boxes overlap (touching is allowed).
  QStringList Overlaps() const {
    QStringList pairs;
    for (std::size_t i = 0; i < Texts.size(); ++i)
      for (std::size_t j = i + 1; j < Texts.size(); ++j) {
        const QRectF a = Texts[i].Box.adjusted(0.02, 0.02, -0.02, -0.02);
        if (a.intersects(Texts[j].Box.adjusted(0.02, 0.02, -0.02, -0.02)))
          pairs << Texts[i].Words + " / " + Texts[j].Words;
      }
    return pairs;
  }
};

inline double Attr(const QXmlStreamAttributes& a, const char* name, double fallback = 0) {
  const QString v = a.value(QString::fromLatin1(name)).toString();
  bool ok = false;
  const double d = v.toDouble(&ok);
  return ok ? d : fallback;
}

inline QRectF PointsBounds(const QString& points, double half) {
  QRectF r;
  bool first = true;
  for (const QString& pair : points.split(' ', Qt::SkipEmptyParts)) {
    const QStringList xy = pair.split(',');
    const QPointF p(xy.value(0).toDouble(), xy.value(1).toDouble());
    r = first ? QRectF(p, p) : r.united(QRectF(p, p));
    first = false;
  }
  return r.adjusted(-half, -half, half, half);
}

inline SvgLayout ReadSvgLayout(const QByteArray& svg) {
  SvgLayout out;
  QXmlStreamReader xml(svg);
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(1000);
  bool inText = false;
  QXmlStreamAttributes textAttributes;
  QString words;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isStartElement()) {
      const QXmlStreamAttributes a = xml.attributes();
      const QString name = xml.name().toString();
      const double half = Attr(a, "stroke-width") / 2;
      if (name == "svg") {
        out.Valid = true;
        const QStringList box = a.value("viewBox").toString().split(' ');
        out.Width = box.value(2).toDouble();
        out.Height = box.value(3).toDouble();
      } else if (name == "text") {
        inText = true;
        textAttributes = a;
        words.clear();
      } else if (name == "line") {
        out.Shapes.push_back(
            QRectF(QPointF(Attr(a, "x1"), Attr(a, "y1")), QPointF(Attr(a, "x2"), Attr(a, "y2")))
                .normalized()
                .adjusted(-half, -half, half, half));
        if (a.hasAttribute("stroke-dasharray")) ++out.DashedLines;
      } else if (name == "polyline" || name == "polygon") {
        out.Shapes.push_back(PointsBounds(a.value("points").toString(), half));
      } else if (name == "rect" || name == "image") {
        out.Shapes.push_back(QRectF(Attr(a, "x"), Attr(a, "y"), Attr(a, "width"), Attr(a, "height"))
                                 .adjusted(-half, -half, half, half));
      } else if (name == "circle") {
        const double r = Attr(a, "r") + half;
        out.Shapes.push_back(QRectF(Attr(a, "cx") - r, Attr(a, "cy") - r, 2 * r, 2 * r));
      }
    } else if (xml.isCharacters() && inText) {
      words += xml.text();
    } else if (xml.isEndElement() && xml.name() == QStringLiteral("text")) {
      inText = false;
      QFont f = font;
      f.setItalic(textAttributes.value("font-style") == QStringLiteral("italic"));
      f.setBold(textAttributes.value("font-weight") == QStringLiteral("bold"));
      const QFontMetricsF m(f);
      const QFontMetricsF plain(font);
      const double size = Attr(textAttributes, "font-size") / 1000;
      const double w = m.horizontalAdvance(words) * size;
      const double cap = plain.capHeight() * size, desc = plain.descent() * size;
      const double x = Attr(textAttributes, "x"), y = Attr(textAttributes, "y");
      const QString anchor = textAttributes.value("text-anchor").toString();
      const double a0 = anchor == "middle" ? -w / 2 : anchor == "end" ? -w : 0;
      QRectF box(x + a0, y - cap, w, cap + desc);
      if (textAttributes.value("transform").toString().startsWith("rotate(-90")) {
        // Turned a quarter to the left about (x, y): along becomes up.
        box = QRectF(QPointF(x - cap, y - a0 - w), QPointF(x + desc, y - a0));
      }
      out.Texts.push_back({words, box});
    }
  }
  if (xml.hasError()) out.Valid = false;
  return out;
}

}  // namespace varnoth::uitest
