#pragma once

namespace varnoth {

// The choices of the pre-treatment dialog, read from its controls.
struct PreTreatmentSettings {
  bool ConvertToPercent = true;  // "Convert to % values" (else "Don't convert")
  bool Enhance = false;          // "Enhance minor taxa"
  bool SquareRoot = true;        // "Square root" (else "Log"), read only with Enhance
  bool Correlation = false;      // "Correlation" (else "Variance / Covariance")
};

}  // namespace varnoth
