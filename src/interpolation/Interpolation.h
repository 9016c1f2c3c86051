#pragma once
// Climate at every target site from the station table, corrected for
// altitude, and the same estimate at every station with itself left out.
#include <string>
#include <string_view>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

enum class InterpMode {
  MinimumDistance = 0,  // the nearest station alone
  Interpolation = 1,    // inverse-distance weighting within the radius
};

// The three controls of the tool, as text where the user types.
struct InterpolationSettings {
  InterpMode Mode = InterpMode::Interpolation;
  std::string Exponent = "-2";  // weights d^p; the number rounded to a whole p
  std::string Radius = "3";     // in degrees of the coordinate plane
};

// Fills InterpTargetEstimate, InterpRefEstimate and InterpNearest from the
// loaded files, then hands the target estimates of columns 6..C to the
// reconstruction as ClimateData with ClimateParamNames and sets
// ClimateLoaded. Distances are flat, in degrees; a station at zero distance
// never takes part, which makes the station rows a leave-one-out estimate.
// -9999 marks a row with no station in reach. Rows run on all cores; each
// row sums its stations in file order, so the results do not depend on it.
void DoInterpolation(Session& s, InterpMode mode, std::string_view exponent,
                     std::string_view radius, Progress& progress);
inline void DoInterpolation(Session& s, const InterpolationSettings& st, Progress& progress) {
  DoInterpolation(s, st.Mode, st.Exponent, st.Radius, progress);
}

// The interpolated climate as a climate file ("Site", the parameter names,
// then one row per reference site), as the reconstruction reads it back.
bool SaveInterpolatedClimate(const Session& s, const std::optional<std::string>& path,
                             Progress& progress);

}  // namespace varnoth
