#include "presentation/Colours.h"

#include "state/Failure.h"
#include "state/Numeric.h"

namespace varnoth {

Rgb& ColourSettings::Slot(int number) {
  return const_cast<Rgb&>(static_cast<const ColourSettings&>(*this).Slot(number));
}

const Rgb& ColourSettings::Slot(int number) const {
  switch (number) {
    case 1:
      return CursorColour;
    case 2:
      return ColourSlot2;
    case 3:
      return SmoothCurveColour;
    case 4:
      return ColourSlot4;
    case 5:
      return DiagramCurveColour;
    case 6:
      return CurveColour;
  }
  ThrowSubscript();
}

void ApplyColourPreset(ColourSettings& c) {
  c.CursorColour = {0, 0, 255};
  c.ColourSlot2 = {0, 255, 0};
  c.SmoothCurveColour = {255, 0, 0};
  c.ColourSlot4 = {255, 150, 0};
  c.DiagramCurveColour = {0, 128, 0};
  c.CurveColour = {0, 0, 128};
  const float breaks[4][3] = {
      {0.3f, 0.15f, 0.0f}, {0.45f, 0.3f, 0.15f}, {0.65f, 0.45f, 0.25f}, {0.95f, 0.65f, 0.35f}};
  for (int r = 0; r < 4; ++r)
    for (int ch = 0; ch < 3; ++ch) c.Break(ch, r) = breaks[r][ch];
  c.PaletteWhite = 0.1f;
  c.GreyMode = false;
}

void ApplyGreyPreset(ColourSettings& c) {
  c.CursorColour = {100, 100, 100};
  c.ColourSlot2 = {100, 100, 100};
  c.ColourSlot4 = {150, 150, 150};
  c.DiagramCurveColour = {100, 100, 100};
  c.CurveColour = {100, 100, 100};
  for (int ch = 0; ch < 3; ++ch) {
    c.Break(ch, 0) = 0;
    c.Break(ch, 1) = 0;
    c.Break(ch, 2) = 0;
    c.Break(ch, 3) = 0.6f;
  }
  c.PaletteWhite = 0;
  c.GreyMode = true;
}

std::array<std::int16_t, 3> EvaluatePalette(ColourSettings& c, double v) {
  if (v <= c.PaletteWhite) {
    c.PaletteRgb = {255, 255, 255};
    return c.PaletteRgb;
  }
  for (int ch = 0; ch < 3; ++ch) {
    const double b0 = c.Break(ch, 0), b1 = c.Break(ch, 1), b2 = c.Break(ch, 2), b3 = c.Break(ch, 3);
    // Each band is tested as a half-open interval, so a band of zero width
    // (equal breaks) is never entered and never divides.
    double level = 0;
    if (v < b0 || v >= b3)
      level = 0;
    else if (v < b1)
      level = Round((v - b0) / (b1 - b0) * 255);
    else if (v < b2)
      level = 255;
    else
      level = Round((b3 - v) / (b3 - b2) * 255);
    c.PaletteRgb[static_cast<std::size_t>(ch)] = static_cast<std::int16_t>(level);
  }
  return c.PaletteRgb;
}

QColor PaletteColour(ColourSettings& c, double v) {
  auto rgb = EvaluatePalette(c, v);
  return QColor(rgb[0], rgb[1], rgb[2]);
}

}  // namespace varnoth
