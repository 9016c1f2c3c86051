#pragma once
// The two input files of the interpolation tool: the station table (the
// reference file) and the positions of the surface pollen sites (the target
// file). Both have a label column, then longitude, latitude, altitude and
// the temperature and precipitation lapse rates per 100 m; every further
// column of the station table is a climate parameter.
#include <optional>
#include <string>
#include <string_view>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "state/Session.h"

namespace varnoth {

inline constexpr Count kStationFile = 0;  // ImportData's mode for the station table
inline constexpr Count kTargetFile = 2;   // and for the target sites

inline constexpr const char* kNoClimateDataMessage = "File does not contain climate data.";
inline constexpr const char* kStationBlankCellMessage = "Blanc cell detected.";
inline constexpr const char* kSiteCountMessage = "Number of surface pollen sites inconsistent.";

struct InterpImportResult {
  bool Ok = false;
  // The import ended after a message or a No to the name question.
  bool MessageShown = false;
  // The failure that ended the import quietly: a cancelled dialog, a file
  // that cannot be read, a cell that is no number, a file over the limits.
  std::optional<FailureKind> Failure;
  // What failed and where, for a user without the window; empty after a
  // success.
  std::string Problem;
};

// Reads the station table (mode 0) or the target sites (mode 2) from `path`
// (nothing: a cancelled dialog). The table's width and the kind of its row
// labels are found from its first cells alone. Only a complete, accepted
// file replaces what was loaded before; the one exception is
// InterpTargetCount, which a target file sets before its checks. The
// target file must have one row per reference site, named alike or
// accepted by the user.
InterpImportResult ImportData(Session& s, Count mode, const std::optional<std::string>& path,
                              Dialogs& dialogs);

enum class LapseKind { None, Temperature, Precipitation };
// Which lapse rate a climate column takes, by its name (case-sensitive).
// A name that fits both kinds, such as T(P), counts as precipitation.
LapseKind ColumnLapseKind(std::string_view name);

// Widens the map bounds to whole multiples of 5 degrees, half to even: a
// bound on an odd multiple moves out by 5, one on an even multiple stays.
void RoundBoundsOutward(InterpolationState& st);

}  // namespace varnoth
