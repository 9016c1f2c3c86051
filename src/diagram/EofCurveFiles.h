#pragma once
// The EOF curves of the core as files for the user's spreadsheet.
#include <string>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// "Depth","EOF-<n>", then per sample its label and its score on EOF n; an
// empty sample has its label only. Creates or replaces the file.
void SaveEOF(const Session& s, long shownEof, const std::string& path, Progress& progress);

// "Depth","EOF-1",...,"EOF-<T-1>","EOF - <T>" (the last heading spelled
// apart, as users' sheets expect it), then per sample its label and the
// scores on EOF 1 to T, T being the fossil taxa count.
void SaveAllEOF(const Session& s, const std::string& path, Progress& progress);

}  // namespace varnoth
