#pragma once
// What the display controls of the main window do to the session: the
// turning of the 3-D view, the ring of EOFs on the axes, the stepping
// through taxa, sites and samples, the choice of an item by name and the
// choice between the flat and the turning view. The window keeps its
// timers and controls and asks these functions what changes.
#include <optional>
#include <string>

#include "state/Session.h"

namespace varnoth {

inline constexpr double kTurnPi = 3.1415926535898;

// The display controls that the turning depends on.
struct TurnSettings {
  bool ThreeD = false;   // "3-D" rather than "2-D"
  bool Pause = false;    // "Pause"
  bool Reverse = false;  // "Reverse"
};

// The angle step per tick for a position of the velocity slider (0 to 100).
float RotationStepFor(int velocity);
// The axis-change timer's interval in milliseconds for the interval slider
// (seconds).
int AxisChangeIntervalMs(int seconds);

// The rotate slider's value for the turn angle, in whole degrees (floor).
int RotateSliderFor(double a1);
// The turn angle a position of the rotate slider stands for.
double AngleForSlider(int degrees);

// One tick of the turning timer: in the 3-D view and not paused, the turn
// angle moves by the step (backwards with "Reverse") and wraps once it is
// beyond pi on either side. Returns the value the rotate slider must take,
// or nothing when the angle did not move (flat view, pause, or a step of
// 0), so that a standing view is not nudged by the slider's rounding.
std::optional<int> TurnTick(Session& s, const TurnSettings& t);

// The whole effect of one tick on the session, with the rotate slider
// following: when the slider's value changes, its change sets the angle to
// the slider's whole degrees. `slider` is the slider's value, updated.
void TurnTickWithSlider(Session& s, const TurnSettings& t, int& slider);

// The ring of EOFs on the axes: DisplayAxes(1) to DisplayAxes(
// EnvelopeAxisCount), of which the first three are on screen. "Prev." and
// each tick of the axis-change timer move every entry one place towards
// the start, the first going to the end; "Next" moves them the other way.
void AxisRingPrev(Session& s);
void AxisRingNext(Session& s);

// Which controls the axis-change mode turns on.
struct AxisChangeControls {
  bool Timer2On = false;
  bool IntervalEnabled = false;     // Slider5 and Label7
  bool StepButtonsEnabled = false;  // Command4(0) and Command4(1)
};
AxisChangeControls AxisChangeMode(bool automatic);

// The three lists of the main window.
enum class ListKind { Taxa = 0, Sites = 1, Samples = 2 };

Count ListCount(const Session& s, ListKind list);
// Names of the items of a list: the taxa of the base table, the sites, the
// sample labels.
const Array1<std::string>& ListNames(const Session& s, ListKind list);
Count& ListCursor(Session& s, ListKind list);

// "Prev." (direction -1) or "Next" (+1): the list's cursor moves by one,
// wrapping from 0 to the count and from beyond the count to 1. Empty
// samples are stops like any other. Returns the new cursor.
Count StepCursor(Session& s, ListKind list, int direction);

// A name chosen in a list's combo box: the cursor goes to the last item of
// that name; a name not found leaves it. True when found.
bool MoveRedDot(Session& s, ListKind list, const std::string& name);

// The effect of choosing "2-D" or "3-D".
struct DimensionEffect {
  bool Timer1On = false;         // the turning runs from now on
  bool StopTimer2 = false;       // MoreAxis was given up: the ring stops
  bool ZAxisShown = false;       // the Z combo and its label of the control panel
  bool WithDisplayAxes = false;  // redraw with DisplayAxes, else with EnvelopeAxes
  bool RerunEnvelope = false;    // the envelope's axes changed
};
// Sets VisibleAxisCount, and EnvelopeAxisCount without MoreAxis; with
// MoreAxis and too few axes to leave one invisible, MoreAxis ends.
DimensionEffect ChooseDimension(Session& s, bool threeD, bool paused);

}  // namespace varnoth
