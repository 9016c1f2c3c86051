#pragma once
// The two pair sets of the calibration tool: taken over from the session or
// read from a pair file, the range that sets the grid, the straight line of
// a pair set with its correlation and residual deviation, and the matrix
// handed back to the reconstruction window.
#include <functional>
#include <string>
#include <vector>

#include "calibration/CalibState.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// The Vest-Vobs pairs of the interpolation tool, when the climate data came
// from it: the parameter is found by its column name.
struct InterpolatedPairs {
  long InterpColumnCount = 0;
  long InterpRefCount = 0;
  std::function<std::string(long c)> InterpParamNames;
  std::function<double(long s, long c)> InterpRefEstimate, InterpRefClimate;
  std::string ParameterShown;  // the text of the reconstruction window's list
  long AccuracyCount = 0;      // pairs of the accuracy check, shown as Label12(1)
};

// Fills pair set 0 from the leave-one-out estimates and the climate data of
// the current parameter (and pair set 1 from the interpolation tool when
// `interpolated` is given). `dialogFileName` is what Label21(0) shows.
void TransferData(CalibState& c, const Session& s, const std::string& dialogFileName,
                  const InterpolatedPairs* interpolated = nullptr);

// Reads a pair file into pair set k. True when the file was read to its end;
// on any failure (no file, more than 10000 rows, a row cut short, a number
// too large) the rows read so far stay and the labels are left as they were,
// and `problem`, when given, tells what failed, in which file and where.
bool ImportPairFile(CalibState& c, int k, const std::string& path, std::string* problem = nullptr);

// Validates the range boxes and derives the grid from them. T1 = T2 shows
// "Please set valid range." and puts the last valid strings back.
void SetRange(CalibState& c, Dialogs& dialogs);

// Least squares line and correlation of pair set k over the rows that
// Label12(k) counts. With all x equal the line stays as it was.
void FitLine(CalibState& c, int k);

// What the scatter of pair set 1 computes beside drawing: its line, the
// line's caption, the residual deviation (divided by the rows used) and the
// correlation. Runs only with more than one pair.
void FitPairSet1(CalibState& c);

// The reconstruction window's matrix picture, scaled to the shown bins.
class MatrixPainter {
 public:
  virtual ~MatrixPainter() = default;
  virtual void Clear() = 0;
  // cls 1 in the second, 2 or more in the first region colour.
  virtual void Region(int p, int q, int cls) = 0;
  // The rainbow colour of `value` (the probability times its colour
  // factor; the painter applies the Z-axis enhancement).
  virtual void Probability(float value, int p, int q) = 0;
};

// Slot 8 = slot 7 + slot 6 cell by cell, and the matrix is ready for the
// reconstruction window, which shows the regions under its "Confidence"
// choice and the probability where a region lies under "Probability".
void ReturnData(CalibState& c, bool confidenceView = false, MatrixPainter* painter = nullptr);

// The caption Command10 writes to the reconstruction window.
std::string ReturnCaption(const CalibState& c);

// v rounded half to even to `places` decimals, as text.
std::string RoundedText(double v, int places);
// The residual deviation rounded by its size (5 places below 10, ... 1).
std::string DeviationText(double v);

}  // namespace varnoth
