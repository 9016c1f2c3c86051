#include "ui/frmCC2.h"

namespace varnoth {

frmCC2::frmCC2(frmCalib& calib)
    : CoefficientDialog(calib, 1, "frmCC2", "Coefficient 2 (default = 95.4)") {}

}  // namespace varnoth
