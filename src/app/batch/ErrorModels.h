#pragma once
// The performance table and the h-block error models, after the
// leave-one-out error model has filled ReconRefValue.
#include "Batch.h"

namespace varnoth::batch {

// Writes performance.csv into `outDir` and, with --h-block, the
// scatter-<parameter>-h<KM>.csv files; stops the run when the --sites file
// cannot be read.
void WriteErrorModelTables(Session& s, const Options& o, Dialogs& dialogs,
                           const std::string& outDir);

}  // namespace varnoth::batch
