#pragma once
// The common road of every save: progress over `rows`, the records, the
// file, and progress hidden again whatever happened. No path (a cancelled
// dialog) writes nothing; a failure on the way writes nothing and shows
// nothing.
#include <optional>
#include <string>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "state/RecordWriter.h"

namespace varnoth {

// Why the last save of this thread that wrote nothing failed ("Disk full
// (out/curve.csv)"), for a caller that names the cause; empty after a save
// that wrote its file.
inline thread_local std::string lastSaveFailure;

template <typename Body>
bool SaveRecordFile(const std::optional<std::string>& path, Progress& progress, long rows,
                    Body body) {
  if (!path) return false;
  progress.Start(rows);
  bool written = false;
  try {
    RecordWriter w;
    body(w);
    w.Save(*path);
    written = true;
    lastSaveFailure.clear();
  } catch (const RuntimeFailure& e) {
    lastSaveFailure = e.what();
  }
  progress.Step(0);
  progress.Finish();
  return written;
}

}  // namespace varnoth
