#pragma once
// The box for the tool's second confidence coefficient.
#include "ui/frmCC1.h"

namespace varnoth {

class frmCC2 : public CoefficientDialog {
  Q_OBJECT
 public:
  explicit frmCC2(frmCalib& calib);
};

}  // namespace varnoth
