#pragma once
// The three score files of the EOF analysis, for the user's spreadsheet.
#include <string>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// Date and time as written into file headers.
struct FileStamp {
  std::string Date;  // short form, 2026-11-22
  std::string Time;  // 13:45:07
};
FileStamp CurrentStamp();

// Each creates or replaces the file at `path`; a file that cannot be
// written is the file failure.
void SaveLoading(const Session& s, const std::string& path, const FileStamp& stamp,
                 Progress& progress);
void sSaveScore(const Session& s, const std::string& path, const FileStamp& stamp,
                Progress& progress);
void fSaveScore(const Session& s, const std::string& path, const FileStamp& stamp,
                Progress& progress);

}  // namespace varnoth
