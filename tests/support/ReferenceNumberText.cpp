#include "support/ReferenceNumberText.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

namespace varnoth::reference {

namespace {

constexpr int kNumberTextMax = 48;

// The C library's text, the reference for every other route.
char* PrintDigits(char* out, double v, int digits) {
  int n = std::snprintf(out, kNumberTextMax, "%.*G", digits, v);
  return out + n;
}

char* WriteSpecial(char* out, double v) {
  const char* text = std::isnan(v) ? "NaN" : v > 0 ? "Inf" : v < 0 ? "-Inf" : "0";
  while (*text) *out++ = *text++;
  return out;
}

constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

// The `count` digits of d, leading zeros included, into out.
void FixedDigits(char* out, std::uint32_t d, int count) {
  int k = count;
  for (; k >= 2; k -= 2) {
    const unsigned pair = d % 100;
    d /= 100;
    out[k - 2] = kDigitPairs[2 * pair];
    out[k - 1] = kDigitPairs[2 * pair + 1];
  }
  if (k == 1) out[0] = static_cast<char>('0' + d % 10);
}

// Up to 16 digits as two independent halves of 8, which the processor can
// work on side by side.
void FixedDigits64(char* out, std::uint64_t d, int count) {
  if (count <= 8) {
    FixedDigits(out, static_cast<std::uint32_t>(d), count);
    return;
  }
  FixedDigits(out, static_cast<std::uint32_t>(d / 100000000u), count - 8);
  FixedDigits(out + count - 8, static_cast<std::uint32_t>(d % 100000000u), 8);
}

// Copies of a fixed 16 bytes, which compile to two moves; the buffers leave
// room for them beyond the text.
inline void Copy16(char* to, const char* from) { std::memcpy(to, from, 16); }

// The layout %G gives to `count` significant digits with decimal exponent x
// (value = d.ddd x 10^x) at precision `precision`, trailing zeros removed.
// `digits` has 32 readable bytes and `out` room for kNumberTextMax.
char* LayOut(char* out, bool negative, const char* digits, int count, int x, int precision) {
  if (negative) *out++ = '-';
  if (x < -4 || x >= precision) {
    out[0] = digits[0];
    if (count > 1) {
      out[1] = '.';
      Copy16(out + 2, digits + 1);
      out += count + 1;
    } else {
      out += 1;
    }
    *out++ = 'E';
    *out++ = x < 0 ? '-' : '+';
    int e = x < 0 ? -x : x;
    if (e >= 100) {
      *out++ = static_cast<char>('0' + e / 100);
      e %= 100;
    }
    *out++ = kDigitPairs[2 * e];
    *out++ = kDigitPairs[2 * e + 1];
    return out;
  }
  if (x < 0) {
    out[0] = '0';
    out[1] = '.';
    out[2] = out[3] = out[4] = '0';  // up to three zeros after the point
    out += 1 - x;
    Copy16(out, digits);
    return out + count;
  }
  // x + 1 digits before the point, zeros where the digits run out.
  Copy16(out, digits);
  if (count <= x + 1) {
    for (int k = count; k <= x; ++k) out[k] = '0';
    return out + x + 1;
  }
  out[x + 1] = '.';
  Copy16(out + x + 2, digits + x + 1);
  return out + count + 1;
}

// Correctly rounded digits by one extended-precision product: v 10^q is
// known to about 2e-19 of itself, so the nearest integer is certain unless
// the fraction lies within 1e-3 of one half, and then the C library decides
// (a few values in a thousand). Powers of ten up to 10^27 are exact in the
// 64-bit significand; larger ones are one rounded product of two.
constexpr bool kExtended = std::numeric_limits<long double>::digits >= 64 &&
                           std::numeric_limits<long double>::max_exponent >= 16384;

long double PowerOfTen(int q) {
  static const long double small[28] = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,
                                        1e7L,  1e8L,  1e9L,  1e10L, 1e11L, 1e12L, 1e13L,
                                        1e14L, 1e15L, 1e16L, 1e17L, 1e18L, 1e19L, 1e20L,
                                        1e21L, 1e22L, 1e23L, 1e24L, 1e25L, 1e26L, 1e27L};
  static const long double large[14] = {1e0L,   1e28L,  1e56L,  1e84L,  1e112L, 1e140L, 1e168L,
                                        1e196L, 1e224L, 1e252L, 1e280L, 1e308L, 1e336L, 1e364L};
  return q < 28 ? small[q] : large[q / 28] * small[q % 28];
}

// FormatGeneral's text with `precision` significant digits (15 or 7).
char* WriteDigits(char* out, double v, int precision) {
  if (!std::isfinite(v) || v == 0) return WriteSpecial(out, v);
  if constexpr (!kExtended) return PrintDigits(out, v, precision);
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(v);
  const bool negative = (bits >> 63) != 0;
  const long double a = std::fabs(static_cast<long double>(v));
  const std::uint64_t top = precision == 15 ? 1000000000000000u : 10000000u;  // 10^precision
  const long double upper = static_cast<long double>(top), lower = upper / 10;
  // Decimal exponent: about log2 |v| log10 2, then stepped to the decade
  // where the scaled value has `precision` digits before the point.
  const int biased = static_cast<int>((bits >> 52) & 0x7FF);
  int x = ((biased != 0 ? biased - 1023 : std::ilogb(v)) * 78913) >> 18;
  long double scaled = 0;
  for (int attempt = 0;; ++attempt) {
    if (attempt == 4) return PrintDigits(out, v, precision);
    int q = precision - 1 - x;
    scaled = q >= 0 ? a * PowerOfTen(q) : a / PowerOfTen(-q);
    if (scaled >= upper) {
      ++x;
    } else if (scaled < lower) {
      --x;
    } else {
      break;
    }
  }
  // Nearest integer, ties to even: adding 2^63 leaves no bits below the
  // point of a 64-bit significand. The result is below 2^53, so it passes
  // through a double exactly and converts without a change of mode.
  const long double nearest = (scaled + 0x1p63L) - 0x1p63L;
  std::uint64_t d = static_cast<std::uint64_t>(static_cast<double>(nearest));
  const long double fraction = scaled - nearest;
  if (fraction > 0.499L || fraction < -0.499L) return PrintDigits(out, v, precision);
  if (d >= top) {  // rounded up into the next decade
    d /= 10;
    ++x;
  }
  char digits[48];
  FixedDigits64(digits, d, precision);
  int count = precision;
  while (digits[count - 1] == '0') --count;
  return LayOut(out, negative, digits, count, x, precision);
}

}  // namespace

char* WriteGeneral(char* out, double v) { return WriteDigits(out, v, 15); }
char* WriteSingle(char* out, float v) { return WriteDigits(out, static_cast<double>(v), 7); }

}  // namespace varnoth::reference
