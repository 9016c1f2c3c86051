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
  } catch (const RuntimeFailure&) {
  }
  progress.Step(0);
  progress.Finish();
  return written;
}

}  // namespace varnoth
