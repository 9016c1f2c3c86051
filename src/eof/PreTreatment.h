#pragma once
// Percentage conversion and enhancement of minor taxa, before the EOFs.
#include "eof/PreTreatmentSettings.h"
#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

// ln(100 x) / ln(10) / 2 cut at 0, and 0 for x <= 0: 1 % maps to 0, 100 % to 1.
double LogEnhance(double x);
// The enhancement the settings choose; x unchanged without enhancement.
double EnhanceValue(double x, const PreTreatmentSettings& settings);

// The confirm button of the pre-treatment dialog: treats the base data and
// runs the EOF analysis.
void ApplyPreTreatment(Session& s, const PreTreatmentSettings& settings, Progress& progress);

// The second import's own steps, with the settings confirmed for the base.
void FossilPercentageStep(Session& s);
void FossilEnhancementStep(Session& s);
void ReferenceEnhancementStep(Session& s);

}  // namespace varnoth
