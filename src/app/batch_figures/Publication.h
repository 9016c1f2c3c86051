#pragma once
// --figure-style publication: the figures for papers, one file each, drawn
// by the same functions as the windows' "Save Figure for Publication...".
#include <string>

#include "../batch/Batch.h"

namespace varnoth::batch {

void DrawPublicationFigures(Context& c, const std::string& dir);

}  // namespace varnoth::batch
