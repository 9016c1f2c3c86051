#pragma once
// The later stages of an analysis for the road targets: a climate file for
// the sites of a session, the reconstruction with settings from the input,
// the error model and the files of both, each stage checked.
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "reconstruction/AnalogueSettings.h"
#include "state/Session.h"

namespace varnoth::fuzz {

// Analogue settings from two bytes of the input: basis, enhancement,
// weighting, the number of analogues and the threshold slider. The
// enhancement follows the window: on EOF values it is the pre-treatment's,
// on taxa only offered for data the pre-treatment left unenhanced.
AnalogueSettings AnalogueSettingsFrom(const Session& s, unsigned a, unsigned b);

// A climate file for the reference sites of `s`, under their own names:
// one parameter of plain values and one taken from `extreme` (the fuzzed
// data, so that huge values reach the climate too).
std::string ClimateFor(const Session& s, double extreme);

// The reconstruction, its files, the error model and its scatter files,
// each stage either the run-time failure or finite files. True when the
// error model is ready.
bool ReconstructAndSave(Session& s, const AnalogueSettings& st);

}  // namespace varnoth::fuzz
