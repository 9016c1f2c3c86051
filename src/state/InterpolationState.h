#pragma once
// The state of the interpolation tool: the station table and the target
// sites as read, the estimates of the last run and the accuracy pairs. The
// reconstruction window reads the pairs and the site positions, so the
// state lives in the session beside the climate data it fills.
#include <string>

#include "state/Array.h"
#include "state/Numeric.h"

namespace varnoth {

struct InterpolationState {
  // Inputs, replaced only by a complete import.
  Count InterpColumnCount = 0;  // data columns of the station file (C)
  Count InterpRefCount = 0;     // stations (Nr)
  Count InterpTargetCount = 0;  // target sites (Nt); set even by a refused target file
  Array1<std::string> InterpRefNames;
  Array1<std::string> SiteMapNames;
  Array1<std::string> InterpParamNames;  // columns 1..C; the corner cell is dropped
  Array1<float> InterpRefLon, InterpRefLat, InterpRefAlt;
  Array1<float> SiteLongitude, SiteLatitude, SiteAltitude;
  Array2<double> InterpRefClimate;         // (station, column), all C columns
  Array2<double> InterpRefLapse;           // (station, column), per 100 m
  Array2<double> InterpTargetLapse;        // (target, column), columns of the station file
  Array1<std::uint8_t> InterpNonNegative;  // 1 for the precipitation kind of column
  bool InterpRefLoaded = false;
  bool InterpTargetLoaded = false;
  bool InterpWindowOpen = false;
  // Bounds of the map, from the stations, rounded outwards to 5 degrees.
  float MinLon = 0, MaxLon = 0, MinLat = 0, MaxLat = 0;

  // Results of the last run.
  Array2<double> InterpTargetEstimate;  // (target, column)
  Array2<double> InterpRefEstimate;     // (station, column), each station left out
  Array1<Count> InterpNearest;          // nearest station per row, minimum distance only

  // Accuracy pairs of the column shown.
  Count InterpCurrentParam = 6;
  Count InterpPairCount = 0;
  Array2<float> InterpPairEstimates, InterpPairObserved;
  bool InterpCorrelOpen = false;
};

}  // namespace varnoth
