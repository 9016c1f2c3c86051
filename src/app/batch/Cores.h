#pragma once
// Many cores in one run: the reference read, treated, decomposed and (with
// --error-model) cross-validated once, then every core of --cores in turn.
#include "Batch.h"
#include "state/ScoreFiles.h"

namespace varnoth::batch {

// The options as the steps' own checks are to see them with --cores (a
// core standing in for --fossil); throws UsageError for options that do
// not go with --cores.
Options CoresCheckOptions(const Options& o);

// The whole run; returns the exit code: 0 when every core succeeded, 3 when
// some failed (see failures.csv), 1 when the reference stage or the list
// failed, 2 for a wrong option found late.
int RunCores(const Options& o, const FileStamp& stamp);

}  // namespace varnoth::batch
