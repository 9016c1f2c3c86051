#pragma once
// The calibration matrix applied down the core: the reconstruction curve
// rasterised on the value bins, one row per depth step, and multiplied by
// slot 8, so that each row holds class and probability of the climate at
// that depth.
#include "calibration/CalibState.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

struct HistState {
  Count HistColumns = 0;
  Array3<float> HistMatrix;  // (0..1, 0..200, 0..HistColumns): layer, value bin, depth row
  Array1<Count> HistModeLine, HistAverageLine;  // per row, -9999 if none
  bool HistReady = false;
};

// Paints one result cell of the histogram picture.
class HistPainter {
 public:
  virtual ~HistPainter() = default;
  virtual void Cell(float value, long bin, long row) = 0;
};

// Rasterises the curve of the current parameter (with curve smoothing L of
// 1 the raw estimates; above 1 the smoothed arrays of the session, which
// must already hold that curve) and applies slot 8. t1, t2 are the range of
// the reconstruction window's boxes. A failure on the way leaves HistReady
// false.
void BuildHistMatrix(HistState& h, Session& s, const CalibState& c, double t1, double t2,
                     long curveSmoothing, Count histColumns, Progress& progress,
                     HistPainter* painter = nullptr);

}  // namespace varnoth
