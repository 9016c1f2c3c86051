#pragma once
// The result files of the reconstruction: curves with and without their
// conventional error, the analogue details and the estimated-observed
// scatter. Each takes the path the save dialog gave (nothing when the user
// cancelled) and returns whether the file was written; a cancel or a file
// that cannot be created writes nothing and shows nothing.
#include <optional>
#include <string>

#include "state/Array.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// The parameter shown (CurrentParameter), value only.
bool SaveCurve(const Session& s, const std::optional<std::string>& path, Progress& progress);
// The parameter shown with the analogues' range and count.
bool SaveCurveWithE(const Session& s, const std::optional<std::string>& path, Progress& progress);
// All parameters, values only.
bool SaveCurveAll(const Session& s, const std::optional<std::string>& path, Progress& progress);
// All parameters with their ranges, and the count last.
bool SaveCurveAllwithE(const Session& s, const std::optional<std::string>& path,
                       Progress& progress);

// Site names and positions delivered by the interpolation tool.
struct SiteInfo {
  const Array1<std::string>& SiteMapNames;
  const Array1<float>& SiteLongitude;
  const Array1<float>& SiteLatitude;
  const Array1<float>& SiteAltitude;
};
// The analogues of every sample: with site information (the climate came
// from the interpolation tool) five records per sample, else two.
bool SaveDistAna(const Session& s, const std::optional<std::string>& path, Progress& progress,
                 const SiteInfo* siteInfo = nullptr);
// The leave-one-out estimate and the climate value of every site, for the
// parameter shown.
bool SaveScatter(const Session& s, const std::optional<std::string>& path, Progress& progress);

}  // namespace varnoth
