#pragma once
// The envelope test: random directions through the EOF space, the range of
// the reference sites on each, and the fossil samples that fall beyond it.
// The windows do the rest (timers, captions, redraws) around these calls.
#include <cstdint>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

inline constexpr std::int32_t kEnvelopeDirectionCount = 3000;

// The tolerance a position of the tightness slider (0 to 10) stands for.
float EnvelopeToleranceFor(int sliderValue);

// The whole test: clears the marks, sets the tolerance from the slider,
// draws 3000 directions with the session's generator, marks the extreme
// sites and the samples Out, and sets EnvelopeDone. Progress counts the
// directions.
void RunEnvelope(Session& s, int sliderValue, Progress& progress);

// Clears the marks. EnvelopeDone stays as it is: after a reset every
// sample counts as In.
void ResetEnvelope(Session& s);

// Step by step, for the tests and the benchmark.

// Sizes EnvelopeDirections and fills directions 1 to 3000 from the
// session's generator: unit vectors in the MoreAxis way, else the three
// components of a point drawn on the sphere.
void DrawEnvelopeDirections(Session& s);

// Clears SiteIsExtreme and SampleIsOut (0 to the counts) and marks them
// from the directions in place. Work is shared over the cores, and progress
// is reported on the calling thread as directions finish.
void MarkEnvelope(Session& s, Progress& progress);

// The same marks by the plain loops, one site and one sample at a time: the
// yardstick for the fast form.
void MarkEnvelopePlain(Session& s, Progress& progress);

}  // namespace varnoth
