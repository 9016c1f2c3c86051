#pragma once
// The analogue choices of the reconstruction step, for the steps after it
// that write them into their file headers.
#include "Batch.h"
#include "reconstruction/AnalogueSettings.h"

namespace varnoth::batch {

AnalogueSettings AnalogueSettingsFrom(const Session& s, const Options& o);
// The threshold slider's value in hundredths (20 by default).
long ThresholdSliderFrom(const Options& o);

}  // namespace varnoth::batch
