#pragma once
// Number text: one general format for everything written and for the number
// cell test, and the two parses that every table reader uses.
#include <string>
#include <string_view>

namespace varnoth {

// Up to 15 significant digits, no trailing zeros, a zero before the point,
// exponent form only where %G would choose it (0.5, 12, 1.5E-05, 1E+20).
std::string FormatGeneral(double v);
// The same for a single: up to 7 significant digits.
std::string FormatSingle(float v);
// The same texts written in place, for writers of many numbers: `out` has
// room for kNumberTextMax characters; the end of the text is returned.
constexpr int kNumberTextMax = 48;
char* WriteGeneral(char* out, double v);
char* WriteSingle(char* out, float v);

// The longest leading decimal number of the text, 0 where there is none.
// Never fails, except for a number too large for a double (overflow).
double LenientParse(std::string_view text);
// The whole text must be one number (surrounding blanks allowed); otherwise,
// and for an empty text, the type mismatch failure.
double StrictParse(std::string_view text);
// Exact powers of ten, 1e0 to 1e15: an integer below 2^53 divided by one of
// them is correctly rounded, as a full decimal conversion would be.
extern const double kExactPowersOfTen[16];

// A cell is a number cell when printing its lenient value gives the cell back.
bool IsNumberCell(std::string_view cell);

}  // namespace varnoth
