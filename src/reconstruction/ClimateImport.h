#pragma once
// Climate files: the climate at the reference sites, one row per site in the
// order of the reference table; and files of estimated-observed pairs.
#include <optional>
#include <string>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "state/Session.h"

namespace varnoth {

struct ClimateImportResult {
  bool Ok = false;             // ClimateLoaded is now true
  bool AlreadyLoaded = false;  // nothing was read: the climate was there before
  // A run-time failure met on the way ("Blanc cell detected.", "Site number
  // inconsistent." and a refused name are shown messages, not failures).
  // A cancelled dialog and a file that cannot be read end silently; the
  // caller reports any other kind as the run-time failure.
  std::optional<FailureKind> Failure;
  // What failed and where, for a user without the window; empty after a
  // success.
  std::string Problem;
};

inline constexpr const char* kBlankCellMessage = "Blanc cell detected.";
inline constexpr const char* kSiteNumberMessage = "Site number inconsistent.";

// Reads the climate file at `path` (nothing: a cancelled dialog) into
// ClimateParamCount, ClimateParamNames, ClimateSiteNames,
// ClimateSiteNamesAreText, ClimateData, ClimateFileName and
// ClimateNameMismatch, asking about each site name that differs from the
// reference's. Only a complete read sets ClimateLoaded; after a failure the
// count and names read so far stay, without effect. The window then fills
// its parameter list, enables its controls and runs the reconstruction.
ClimateImportResult Inport_climate_data(Session& s, const std::optional<std::string>& path,
                                        Dialogs& dialogs);

struct EstObsResult {
  bool Ok = false;
  double Slope = 0, Intercept = 0, Correlation = 0;
  std::optional<FailureKind> Failure;
};

inline constexpr const char* kEmptyCellMessage = "Empty cell.";
inline constexpr long kMaxEstObsPairs = 5000;

// Reads a two-column file of estimated and observed values after a header
// row into EstObsEstimated, EstObsObserved and EstObsCount, and fits the
// line observed = a + b estimated with its correlation. An empty cell or a
// zero variance shows "Empty cell." and ends the operation.
EstObsResult ImportEstObs(Session& s, const std::optional<std::string>& path, Dialogs& dialogs);

}  // namespace varnoth
