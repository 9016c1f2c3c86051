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
#include <vector>

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

// Sixteen characters from a register, first in the lowest byte: a store
// only, so the text is never read back from memory while the stores that
// made it are still on their way. The buffers leave room beyond the text.
inline void Store16(char* to, unsigned __int128 text) { std::memcpy(to, &text, 16); }

// The layout %G gives to `count` significant digits with decimal exponent x
// (value = d.ddd x 10^x) at precision `precision`, trailing zeros removed.
// `text` holds all `precision` digits as characters, the first in the lowest
// byte; `out` has room for kNumberTextMax.
inline char* LayOut(char* out, bool negative, unsigned __int128 text, int count, int x,
                    int precision) {
  *out = '-';
  out += negative ? 1 : 0;
  if (x < -4 || x >= precision) {
    out[0] = static_cast<char>(text);
    if (count > 1) {
      out[1] = '.';
      Store16(out + 2, text >> 8);
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
    std::memcpy(out, "0.000", 5);  // up to three zeros after the point
    out += 1 - x;
    Store16(out, text);
    return out + count;
  }
  // x + 1 digits before the point; the text has the zeros where the
  // significant digits end before it.
  Store16(out, text);
  if (count <= x + 1) return out + x + 1;
  out[x + 1] = '.';
  Store16(out + x + 2, text >> (8 * (x + 1)));
  return out + count + 1;
}

// Powers of ten as 64 leading bits: 10^q = (P + f) 2^b with P in [2^63, 2^64)
// and 0 <= f < 1, for q from kLowestPower to kHighestPower. Worked out once by
// exact integer arithmetic.
constexpr int kLowestPower = -310, kHighestPower = 340;

struct PowerOfTen {
  std::uint64_t p;
  int b;
};

class PowerTable {
 public:
  PowerTable() {
    // Non-negative powers: 10^q exactly, as 32-bit limbs, lowest first.
    std::vector<std::uint32_t> n{1};
    for (int q = 0; q <= kHighestPower; ++q) {
      Set(q, n, 0);
      Multiply(n, 10);
    }
    // Negative powers: floor(2^L / 10^k) by repeated exact division by 10
    // (floors of floors are the floor of the whole quotient).
    constexpr int L = 1216;
    std::vector<std::uint32_t> d(L / 32 + 1, 0);
    d.back() = 1u << (L % 32);
    for (int k = 1; k <= -kLowestPower; ++k) {
      Divide(d, 10);
      Set(-k, d, -L);
    }
    // For each binary exponent E of a normal double: the decade of 2^E and
    // the least significand from which the value reaches the next decade.
    for (int biased = 1; biased <= 2046; ++biased) {
      const int E = biased - 1023;
      auto lead = [&](int k) { return (*this)[k].b + 63; };  // floor(log2 10^k)
      int k = (E * 78913) >> 18;
      while (!(lead(k) < E || (k == 0 && E == 0))) --k;
      while (lead(k + 1) < E || (k + 1 == 0 && E == 0)) ++k;
      decade_[biased] = static_cast<std::int16_t>(k);
      std::uint64_t threshold = std::uint64_t{1} << 53;  // beyond every significand
      if (lead(k + 1) == E) {
        // ceil(10^(k+1) / 2^(E-52)): the power's leading 64 bits, 11 below
        // the significand's; exact only for 10^0 to 10^27.
        const std::uint64_t p = (*this)[k + 1].p;
        const bool exact = k + 1 >= 0 && k + 1 <= 27;
        threshold = (p >> 11) + ((p & 0x7FF) != 0 || !exact ? 1 : 0);
      }
      threshold_[biased] = threshold;
    }
  }
  const PowerOfTen& operator[](int q) const { return table_[q - kLowestPower]; }
  // The decade of the normal double with this biased exponent and
  // significand (with its leading bit): floor(log10 v).
  int Decade(int biased, std::uint64_t m) const {
    return decade_[biased] + (m >= threshold_[biased] ? 1 : 0);
  }

 private:
  static void Multiply(std::vector<std::uint32_t>& n, std::uint32_t m) {
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : n) {
      carry += static_cast<std::uint64_t>(limb) * m;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    if (carry) n.push_back(static_cast<std::uint32_t>(carry));
  }
  static void Divide(std::vector<std::uint32_t>& n, std::uint32_t m) {
    std::uint64_t rest = 0;
    for (std::size_t i = n.size(); i-- > 0;) {
      rest = (rest << 32) | n[i];
      n[i] = static_cast<std::uint32_t>(rest / m);
      rest %= m;
    }
    while (n.size() > 1 && n.back() == 0) n.pop_back();
  }
  // The leading 64 bits of n, truncated, with n 2^shift = 10^q.
  void Set(int q, const std::vector<std::uint32_t>& n, int shift) {
    const int top = static_cast<int>(n.size()) - 1;
    const int bits = top * 32 + std::bit_width(n[top]);
    std::uint64_t p = 0;
    for (int bit = bits - 1, k = 0; k < 64; --bit, ++k) {
      p <<= 1;
      if (bit >= 0 && ((n[static_cast<std::size_t>(bit / 32)] >> (bit % 32)) & 1u)) p |= 1;
    }
    table_[q - kLowestPower] = {p, bits - 64 + shift};
  }
  PowerOfTen table_[kHighestPower - kLowestPower + 1];
  std::int16_t decade_[2047] = {};
  std::uint64_t threshold_[2047] = {};
};

const PowerTable& Powers() {
  static const PowerTable table;
  return table;
}

// Eight decimal digits of n < 10^8 at once, first digit in the lowest byte:
// the halves, quarters and pairs are split in parallel lanes of one word.
std::uint64_t EightDigits(std::uint32_t n) {
  const std::uint64_t halves = (n / 10000) | (static_cast<std::uint64_t>(n % 10000) << 32);
  const std::uint64_t hundreds = ((halves * 10486) >> 20) & 0x0000007F0000007FULL;
  const std::uint64_t quarters = hundreds | ((halves - hundreds * 100) << 16);
  const std::uint64_t tens = ((quarters * 103) >> 10) & 0x000F000F000F000FULL;
  return tens | ((quarters - tens * 10) << 8);
}

// Correctly rounded digits from one 64 x 64-bit product: with the truncated
// power the product is known to within m, under 2^-13 of a unit of the last
// digit, so the nearest integer is certain unless the fraction lies that
// close to one half; then, and for the rare subnormal, the C library decides.
template <int precision>
char* WriteDigits(char* out, double v) {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(v);
  const int biased = static_cast<int>((bits >> 52) & 0x7FF);
  if (biased == 0x7FF || (bits << 1) == 0) return WriteSpecial(out, v);
  if (biased == 0) return PrintDigits(out, v, precision);
  const bool negative = (bits >> 63) != 0;
  const std::uint64_t m = (bits & 0x000FFFFFFFFFFFFFULL) | 0x0010000000000000ULL;
  const int e = biased - 1075;                                                    // v = m 2^e
  constexpr std::uint64_t top = precision == 15 ? 1000000000000000u : 10000000u;  // 10^precision
  const PowerTable& powers = Powers();
  int x = powers.Decade(biased, m);
  const PowerOfTen& p = powers[precision - 1 - x];
  // v 10^(precision - 1 - x) = m P 2^-(64 + shift), from 10^(precision - 1)
  // up to 10^precision: 1 <= shift <= 33 for 15 and 7 digits.
  const int shift = -(e + p.b) - 64;
  if (shift < 1 || shift > 63) return PrintDigits(out, v, precision);
  const unsigned __int128 product = static_cast<unsigned __int128>(m) * p.p;
  const std::uint64_t hi = static_cast<std::uint64_t>(product >> 64);
  const std::uint64_t lo = static_cast<std::uint64_t>(product);
  std::uint64_t d = hi >> shift;
  // The leading 64 bits of the fraction; the true product lies in
  // [m P, m P + m), which moves the fraction by less than m 2^-shift + 1.
  const std::uint64_t fraction = (hi << (64 - shift)) | (lo >> shift);
  const std::uint64_t margin = (m >> shift) + 2, half = std::uint64_t{1} << 63;
  // Uncertain for a fraction in (half - margin, half]; otherwise up above
  // one half, without a branch that random digits would make unforeseeable.
  if (fraction - (half - margin + 1) < margin) return PrintDigits(out, v, precision);
  d += fraction > half ? 1 : 0;
  if (d >= top) {  // rounded up into the next decade
    d /= 10;
    ++x;
  }
  if (d < top / 10) return PrintDigits(out, v, precision);
  const std::uint64_t zeros = 0x3030303030303030ULL;
  unsigned __int128 text;
  int count;
  if constexpr (precision == 15) {
    // Sixteen digits, the first a zero, dropped by the shift.
    const std::uint64_t low = EightDigits(static_cast<std::uint32_t>(d % 100000000u));
    const std::uint64_t high = EightDigits(static_cast<std::uint32_t>(d / 100000000u));
    count = low != 0 ? 15 - std::countl_zero(low) / 8 : 7 - std::countl_zero(high) / 8;
    text = ((static_cast<unsigned __int128>(low + zeros) << 64) | (high + zeros)) >> 8;
  } else {
    const std::uint64_t low = EightDigits(static_cast<std::uint32_t>(d));
    count = 7 - std::countl_zero(low) / 8;
    text = (low + zeros) >> 8;
  }
  return LayOut(out, negative, text, count, x, precision);
}

template <int precision>
std::string ToString(double v) {
  char buf[kNumberTextMax];
  return std::string(buf, WriteDigits<precision>(buf, v));
}

}  // namespace

char* WriteGeneral(char* out, double v) { return WriteDigits<15>(out, v); }
char* WriteSingle(char* out, float v) { return WriteDigits<7>(out, static_cast<double>(v)); }

std::string FormatGeneral(double v) { return ToString<15>(v); }
std::string FormatSingle(float v) { return ToString<7>(static_cast<double>(v)); }

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
