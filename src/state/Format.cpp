#include "state/Format.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "state/Failure.h"

namespace varnoth {

static std::string FormatDigits(double v, int digits) {
  if (std::isnan(v)) return "NaN";
  if (std::isinf(v)) return v > 0 ? "Inf" : "-Inf";
  if (v == 0) return "0";  // also folds -0
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.*G", digits, v);
  return buf;
}

std::string FormatGeneral(double v) { return FormatDigits(v, 15); }
std::string FormatSingle(float v) { return FormatDigits(static_cast<double>(v), 7); }

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
    for (; p < e && IsDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
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
