#pragma once
// The number text routine as it stood before it was made faster, kept as the
// reference that the fast one must match byte for byte (tests and benchmark).

namespace varnoth::reference {

// %.15G-like text of a double (trailing zeros removed, "0" for zeros,
// "NaN", "Inf", "-Inf"); `out` has room for 48 characters.
char* WriteGeneral(char* out, double v);
// The same with 7 significant digits, for a single.
char* WriteSingle(char* out, float v);

}  // namespace varnoth::reference
