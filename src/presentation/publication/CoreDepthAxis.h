#pragma once
// The depth axis of a core drawn down the page, shared by the figures that
// run along the core.
#include <QString>

#include "presentation/publication/Axis.h"
#include "state/Session.h"

namespace varnoth::pub {

// Round depths from the first to the last sample, or, where the samples are
// labelled by text, every label that has room at an even stride. The title
// is the fossil table's first header cell, else "Sample" or "Depth".
Axis CoreDepthAxis(const Session& s, const QString& title, const LinearScale& depth,
                   double plotHeight, bool narrow, const FigureStyle& st);

}  // namespace varnoth::pub
