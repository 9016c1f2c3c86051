#pragma once
// The axis settings of the control panel: which EOFs stand on the X, Y and
// Z axes, and which take part in the envelope, with the "Set more axes"
// mode in which the envelope uses EOFs beyond those on screen. The panel
// holds its combo boxes and lists; these functions say what they do to the
// session.
#include <array>
#include <string>
#include <vector>

#include "state/Session.h"

namespace varnoth {

// What the panel's controls hold.
struct AxisChoice {
  bool MoreAxis = false;                   // "Set more axes"
  std::array<Count, 4> Combo{0, 1, 2, 3};  // the EOF on X, Y, Z at 1 to 3
  std::vector<Count> List2;                // the EOFs chosen for the envelope, in order
};

// How many EOFs the panel lists: those of the reference table, or of the
// fossil table while it stands alone.
Count PanelEofCount(const Session& s);

// Opening the panel: the axes on screen by the display option, the
// envelope's axes in the list, the combos on the envelope's first three
// axes. Without MoreAxis the envelope goes back to the axes on screen;
// with it the list keeps every axis of the envelope.
AxisChoice LoadAxisChoice(Session& s, bool threeD);

// "Set more axes" ticked.
void MoreAxisOn(Session& s, AxisChoice& choice);
// "Set more axes" cleared: the envelope goes back to the axes on screen and
// the list loses the entries beyond them.
void MoreAxisOff(Session& s, AxisChoice& choice, bool threeD);

// "Add >>": each chosen EOF not yet in the list joins its end, in order.
void AddToList(std::vector<Count>& list2, const std::vector<Count>& chosen);
// "<< Delete": the chosen entries (positions from 0) go, from the last
// back; the first `keep` entries always stay.
void DeleteFromList(std::vector<Count>& list2, const std::vector<int>& chosen, int keep);

// In the flat view with exactly two EOFs in the list, or in the turning
// view with exactly three, no axis is left to stand invisible.
bool NothingInvisible(bool threeD, std::size_t listCount);

// The apply step: with MoreAxis the list sets the envelope's axes, their
// count and the ring on screen; otherwise the combos set the first three.
void ApplyAxisChoice(Session& s, const AxisChoice& choice);

struct ReflectOutcome {
  bool MoreAxisCleared = false;  // "Set more axes" must be shown cleared
  bool Redraw = false;           // the scatter figures
  bool RunEnvelope = false;
};
// "Reflect" and "OK": MoreAxis ends by itself when nothing would be
// invisible, then the apply step.
ReflectOutcome Reflect(Session& s, AxisChoice& choice, bool threeD);

// The contribution table of the panel and its two summaries.
inline constexpr double kKiyoLineTwips = 227.5;

// How many table lines a picture of this height (pixels) holds, at 15
// twips per pixel.
int KiyoLinesFit(int heightPixels);

struct KiyoText {
  // EOF number, contribution, cumulative; all empty beyond the last EOF.
  std::vector<std::array<std::string, 3>> Lines;
  bool ScrollEnabled = false;
  std::vector<std::string> Summary;   // the first three EOFs, with 4 or more
  std::vector<std::string> Selected;  // the EOFs in the list
};

// A percentage as the table shows it: rounded to 3 decimals, with "%".
std::string KiyoPercent(double value);

// Fills the table from line `first` (an EOF number) for `linesFit` lines
// and the summaries; the envelope's axis count takes the list's length.
KiyoText ShowKiyo(Session& s, const std::vector<Count>& list2, int first, int linesFit);

}  // namespace varnoth
