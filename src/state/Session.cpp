#include "state/Session.h"

#include <numbers>

namespace varnoth {

Session::Session() {
  EnvelopeAxes.ReDim(3);
  DisplayAxes.ReDim(3);
  for (Count i = 1; i <= 3; ++i) {
    EnvelopeAxes(i) = i;
    DisplayAxes(i) = i;
  }
  EigenWork.ReDim(1000, 2000);
  EigenVectors.ReDim(1001, 1000);
  RotationAngles.A2 = 15.0 * std::numbers::pi / 180.0;
}

}  // namespace varnoth
