#pragma once
// The modern analogue technique: for every fossil sample the nearest
// reference sites under the count and threshold rules, and every climate
// parameter estimated as the (weighted) mean of their climate; and the same
// search over the reference sites against themselves, leaving each site out
// of its own estimate, as the error model.
#include "reconstruction/AnalogueSettings.h"
#include "reconstruction/NearestSites.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// Recomputes ReconValue, ReconLow, ReconHigh, AnalogueCount, AnalogueSite,
// AnalogueDistance, ReconMin, ReconMax and LastAnalogueCount for all samples
// and parameters. Reads the reference and fossil proportions (or the EOF
// scores, their contributions and the envelope axes) and ClimateData. The
// caller then picks CurrentParameter and draws; a bad count or a sum that
// overflows ends in the run-time failure. Progress runs over the samples.
void RunReconstruction(Session& s, const AnalogueSettings& settings, Progress& progress);

// Fills ReconRefValue: every reference site estimated from the others, with
// the search and estimation of RunReconstruction, except that under
// "Distance" a rank passes the threshold when the square root of its
// distance is below the threshold. The caller marks ErrorModelReady once the
// scatter is shown. Progress runs over the sites.
void GenerateErrorModel(Session& s, const AnalogueSettings& settings, Progress& progress);

// The error model with sites kept apart (h-block cross-validation): as
// GenerateErrorModel, but a site's candidates also leave out the sites that
// `excluded` lists for it, and a site that keeps some sites out and is left
// with no candidate at all has -9999 for every parameter and 0 analogues,
// whatever MinAnalogues asks. Empty lists give GenerateErrorModel's values.
// Writes `out` (site, parameter) and leaves ReconRefValue alone. With
// `literal`, by the plain loops.
void GenerateErrorModelExcluding(const Session& s, const AnalogueSettings& settings,
                                 const analogue::Exclusion& excluded, Array2<double>& out,
                                 Progress& progress, bool literal = false);

// The same two operations written as plain loops on one thread: every
// dissimilarity in full, then one scan of all sites per rank. They are the
// yardstick of the tests and benchmarks, and the fast search falls back on
// them for data so large that a distance could overflow a single.
void RunReconstructionLiteral(Session& s, const AnalogueSettings& settings, Progress& progress);
void GenerateErrorModelLiteral(Session& s, const AnalogueSettings& settings, Progress& progress);

// The largest rank the analogue lists hold (the range of the count slider).
inline constexpr Count kMaxRanks = 20;

}  // namespace varnoth
