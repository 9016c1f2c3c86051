#pragma once
// The calibration chart's grid at double resolution: the probability
// interpolated between the bins of slot 6, its classes, mode, median and
// levels per fine column, and the confidence intervals of a section.
#include <string>
#include <utility>
#include <vector>

#include "calibration/CalibState.h"

namespace varnoth {

struct FineGrid {
  FineGrid();
  Array2<float> FineProb;              // (0..501, 0..500), (pf, qf)
  Array2<float> FineClass;             // same shape
  Array1<Count> FineMode, FineMedian;  // 0..500, -9999 where empty
  Array2<float> FineLevel;             // (0..500, 1..2)
};

// Fills the fine arrays from slots 6 and 7 with the coefficients of the
// tool's sliders (tenths of a percent).
void PrepareChart(const CalibState& c, const CalibSettings& st, FineGrid& fine);

// Rounding for display: 2 places below 10, 1 below 1000, else none.
std::string FormatValue(double v);

// The section column of the chart's slider (0..100 % of the range).
long SectionColumn(long slider1);

struct SectionIntervals {
  // [0]: class 2 (coefficient 1), [1]: class 1 (coefficient 2); at most 11
  // intervals each, "?" for a limit beyond the window of interest.
  std::vector<std::pair<std::string, std::string>> Intervals[2];
  std::string Coefficient[2];  // "68.2 %", "95.4 %"
  std::string Average, Mode;   // a value, or "Out of range"
};

// The interval text of the section at pc, values by the range t1..t2.
SectionIntervals DrawIntervals(const FineGrid& fine, const CalibSettings& st, long pc, double t1,
                               double t2);

}  // namespace varnoth
