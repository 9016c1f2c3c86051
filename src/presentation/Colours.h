#pragma once
// The six colour slots every figure draws with, and the colour ramp of the
// matrix displays, with their two presets.
#include <QColor>
#include <array>
#include <cstdint>

namespace varnoth {

struct Rgb {
  std::int16_t R = 0, G = 0, B = 0;
  QColor ToQColor() const { return QColor(R, G, B); }
  bool operator==(const Rgb&) const = default;
};

struct ColourSettings {
  Rgb CursorColour;        // slot 1: selected-sample lines, taxa marks
  Rgb ColourSlot2;         // slot 2: site marks
  Rgb SmoothCurveColour;   // slot 3: samples outside the envelope, smoothed curve
  Rgb ColourSlot4;         // slot 4: the fossil path
  Rgb DiagramCurveColour;  // slot 5: taxon curves of the diagram
  Rgb CurveColour;         // slot 6: EOF curve, raw curves, scatter points

  // Break r of channel c (0 red, 1 green, 2 blue) is entry c + 3 * r.
  std::array<float, 12> PaletteBreaks{};
  float PaletteWhite = 0;
  std::array<std::int16_t, 3> PaletteRgb{};
  bool PaletteChanged = false;
  bool GreyMode = false;

  // Slot by its number 1 to 6.
  Rgb& Slot(int number);
  const Rgb& Slot(int number) const;
  float& Break(int channel, int r) {
    return PaletteBreaks[static_cast<std::size_t>(channel + 3 * r)];
  }
  float Break(int channel, int r) const {
    return PaletteBreaks[static_cast<std::size_t>(channel + 3 * r)];
  }
};

// The presets of slots and ramp. The grey preset leaves slot 3 alone so that
// marks outside the envelope stay visible.
void ApplyColourPreset(ColourSettings& c);
void ApplyGreyPreset(ColourSettings& c);

// The ramp colour of v in 0..1, stored in PaletteRgb and returned.
std::array<std::int16_t, 3> EvaluatePalette(ColourSettings& c, double v);
QColor PaletteColour(ColourSettings& c, double v);

}  // namespace varnoth
