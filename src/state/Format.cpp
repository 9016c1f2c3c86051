#include "state/Format.h"

#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "state/Failure.h"

namespace varnoth {

namespace {

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

std::string ToString(char* (*write)(char*, double, int), double v, int precision) {
  char buf[kNumberTextMax];
  return std::string(buf, write(buf, v, precision));
}

}  // namespace

char* WriteGeneral(char* out, double v) { return WriteDigits(out, v, 15); }
char* WriteSingle(char* out, float v) { return WriteDigits(out, static_cast<double>(v), 7); }

std::string FormatGeneral(double v) { return ToString(WriteDigits, v, 15); }
std::string FormatSingle(float v) { return ToString(WriteDigits, static_cast<double>(v), 7); }

const double kExactPowersOfTen[16] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                      1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

namespace {
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Length of the longest leading decimal number: sign, digits, point, digits,
// exponent (only when digits follow it). 0 when there is no digit at all.
std::size_t NumberPrefix(std::string_view t) {
  std::size_t i = 0, n = t.size();
  if (i < n && (t[i] == '+' || t[i] == '-')) ++i;
  std::size_t mantStart = i;
  bool digits = false;
  while (i < n && IsDigit(t[i])) ++i, digits = true;
  if (i < n && t[i] == '.') {
    ++i;
    while (i < n && IsDigit(t[i])) ++i, digits = true;
  }
  if (!digits) return 0;
  (void)mantStart;
  if (i < n && (t[i] == 'e' || t[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < n && (t[j] == '+' || t[j] == '-')) ++j;
    if (j < n && IsDigit(t[j])) {
      while (j < n && IsDigit(t[j])) ++j;
      i = j;
    }
  }
  return i;
}

// The common short decimals of a table without the general conversion.
bool FastConvert(const char* b, const char* e, double& out) {
  std::uint64_t mantissa = 0;
  int digits = 0, fraction = 0;
  const char* p = b;
  for (; p < e && IsDigit(*p); ++p) {
    if (digits > 0 || *p != '0') ++digits;
    mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
    if (digits > 15) return false;
  }
  if (p < e && *p == '.') {
    for (++p; p < e && IsDigit(*p); ++p) {
      if (digits > 0 || *p != '0') ++digits;
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
      ++fraction;
      if (digits > 15 || fraction > 15) return false;
    }
  }
  if (p != e) return false;  // an exponent: the general way
  out = fraction == 0 ? static_cast<double>(mantissa)
                      : static_cast<double>(mantissa) / kExactPowersOfTen[fraction];
  return true;
}

double Convert(std::string_view t, std::size_t len) {
  const char* b = t.data();
  const char* e = b + len;
  bool negative = false;
  if (*b == '+') {
    ++b;
  } else if (*b == '-') {
    negative = true;
    ++b;
  }
  double v = 0;
  if (!FastConvert(b, e, v)) {
    auto r = std::from_chars(b, e, v);
    if (r.ec == std::errc::result_out_of_range) {
      // Tell an overflow from an underflow the slow way; both are rare.
      std::string s(b, e);
      errno = 0;
      double w = std::strtod(s.c_str(), nullptr);
      if (std::isinf(w)) ThrowOverflow();
      v = 0;
    }
  }
  return negative ? -v : v;
}
}  // namespace

double LenientParse(std::string_view text) {
  // One pass over the usual short decimal; anything longer, or with an
  // exponent, goes the general way.
  const char* p = text.data();
  const char* e = p + text.size();
  while (p < e && IsBlank(*p)) ++p;
  const char* start = p;
  bool negative = false;
  if (p < e && (*p == '+' || *p == '-')) negative = *p++ == '-';
  // Leading zeros count as digits here: a rare long one just takes the
  // general way.
  std::uint64_t mantissa = 0;
  const char* first = p;
  for (; p < e && IsDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
  long whole = p - first, fraction = 0;
  if (p < e && *p == '.') {
    const char* point = ++p;
    for (; p < e && IsDigit(*p); ++p)
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
    fraction = p - point;
  }
  if (whole + fraction == 0) return 0.0;
  bool exponent = p < e && (*p == 'e' || *p == 'E');
  if (!exponent && whole + fraction <= 15) {
    double v = fraction == 0 ? static_cast<double>(mantissa)
                             : static_cast<double>(mantissa) / kExactPowersOfTen[fraction];
    return negative ? -v : v;
  }
  std::string_view t(start, static_cast<std::size_t>(e - start));
  return Convert(t, NumberPrefix(t));
}

double StrictParse(std::string_view text) {
  std::size_t a = 0, b = text.size();
  while (a < b && IsBlank(text[a])) ++a;
  while (b > a && IsBlank(text[b - 1])) --b;
  std::string_view t = text.substr(a, b - a);
  std::size_t len = NumberPrefix(t);
  if (len == 0 || len != t.size()) throw RuntimeFailure(FailureKind::TypeMismatch);
  return Convert(t, len);
}

bool IsNumberCell(std::string_view cell) {
  double v;
  try {
    v = LenientParse(cell);
  } catch (const RuntimeFailure&) {
    return false;  // too large to be a number of this program
  }
  return FormatGeneral(v) == cell;
}

}  // namespace varnoth
