#include "database/edit.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace zentor {

namespace {

// Holds 309 digits before the point of the largest double, sign, point and the decimals of the widest field.
using Digits = std::array<char, 512>;

void AppendStars(std::string& out, int width) { out.append(static_cast<std::size_t>(width), '*'); }

void AppendRight(std::string& out, int width, std::string_view text) {
  out.append(static_cast<std::size_t>(width) - text.size(), ' ').append(text);
}

// NaN and the infinities; the long name where the field has room for it.
void AppendNotFinite(std::string& out, int width, double value) {
  std::string_view text = "NaN";
  if (!std::isnan(value)) {
    text = value < 0 ? "-Infinity" : "Infinity";
    if (static_cast<int>(text.size()) > width) text = value < 0 ? "-Inf" : "Inf";
  }
  if (static_cast<int>(text.size()) > width) return AppendStars(out, width);
  AppendRight(out, width, text);
}

// Appends sign, optional zero, and text that starts with the point; the zero goes when the field has no room
// for it.
void AppendFraction(std::string& out, int width, bool negative, std::string_view from_point) {
  const int length = static_cast<int>(from_point.size()) + (negative ? 1 : 0);
  if (length > width) return AppendStars(out, width);
  const bool zero = length < width;
  out.append(static_cast<std::size_t>(width - length - (zero ? 1 : 0)), ' ');
  if (negative) out.push_back('-');
  if (zero) out.push_back('0');
  out.append(from_point);
}

// A value below the limit, times ten to the power of at most so many decimals, is a 64-bit integer.
constexpr double kScaledLimit = 1e9;
constexpr int kMostScaledDecimals = 9;

// value * 10^decimals, correctly rounded from the exact binary value, ties to even.
// REQUIRES: 0 <= value < kScaledLimit, decimals <= kMostScaledDecimals.
std::uint64_t Scaled(double value, int decimals) {
  __extension__ using Wide = unsigned __int128;
  static constexpr std::array<std::uint64_t, kMostScaledDecimals + 1> kPowers = {
      1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const auto exponent = static_cast<int>(bits >> 52U);
  constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52U;
  const std::uint64_t mantissa = (bits & (kHiddenBit - 1)) | (exponent != 0 ? kHiddenBit : 0);
  const Wide product = Wide{mantissa} * kPowers[static_cast<std::size_t>(decimals)];  // below 2^83
  const int shift = 1075 - std::max(exponent, 1);  // at least 23: the value is below 2^30
  if (shift > 100) return 0;
  const auto quotient = static_cast<std::uint64_t>(product >> shift);
  const Wide rest = product - (Wide{quotient} << shift);
  const Wide half = Wide{1} << (shift - 1);
  return quotient + (rest > half || (rest == half && quotient % 2 == 1) ? 1 : 0);
}

// The digits of a scaled value, point and sign, right-aligned. False when they do not fit.
bool AppendScaled(std::string& out, int width, int decimals, bool negative, std::uint64_t scaled) {
  std::array<char, 24> digits;
  char* const end = digits.data() + digits.size();
  char* p = end;
  for (int d = 0; d < decimals; ++d, scaled /= 10) *--p = static_cast<char>('0' + scaled % 10);
  *--p = '.';
  do {
    *--p = static_cast<char>('0' + scaled % 10);
    scaled /= 10;
  } while (scaled != 0);
  if (negative) *--p = '-';
  if (end - p > width) return false;
  AppendRight(out, width, {p, static_cast<std::size_t>(end - p)});
  return true;
}

}  // namespace

void AppendI(std::string& out, int width, std::int64_t value) {
  assert(width >= 1);
  std::array<char, 24> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
  if (text.size() > static_cast<std::size_t>(width)) return AppendStars(out, width);
  AppendRight(out, width, text);
}

void AppendF(std::string& out, int width, int decimals, double value) {
  assert(width >= 1 && width <= kMaxEditWidth && decimals >= 0);
  if (!std::isfinite(value)) return AppendNotFinite(out, width, value);
  if (decimals >= width) return AppendStars(out, width);
  const bool negative = std::signbit(value);
  const double magnitude = std::fabs(value);
  if (decimals <= kMostScaledDecimals && magnitude < kScaledLimit &&
      AppendScaled(out, width, decimals, negative, Scaled(magnitude, decimals))) {
    return;
  }
  Digits digits;
  char* const first = digits.data();
  char* end = std::to_chars(first, first + digits.size(), magnitude, std::chars_format::fixed, decimals).ptr;
  if (decimals == 0) *end++ = '.';
  const std::string_view text(first, static_cast<std::size_t>(end - first));
  if (text.front() == '0' && decimals > 0) return AppendFraction(out, width, negative, text.substr(1));
  if (static_cast<int>(text.size()) + (negative ? 1 : 0) > width) return AppendStars(out, width);
  out.append(static_cast<std::size_t>(width) - text.size() - (negative ? 1 : 0), ' ');
  if (negative) out.push_back('-');
  out.append(text);
}

void AppendE(std::string& out, int width, int decimals, double value) {
  assert(width >= 1 && width <= kMaxEditWidth && decimals >= 1);
  if (!std::isfinite(value)) return AppendNotFinite(out, width, value);
  if (decimals >= width) return AppendStars(out, width);
  // Scientific form d.ddde-xx, one digit fewer behind the point; the point moves to the front.
  Digits scientific;
  char* const first = scientific.data();
  const char* end = std::to_chars(first, first + scientific.size(), std::fabs(value),
                                  std::chars_format::scientific, decimals - 1)
                        .ptr;
  const char* mark = first + (decimals > 1 ? decimals + 1 : 1);
  int exponent = 0;
  std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
  if (value != 0) ++exponent;

  Digits field;
  char* p = field.data();
  *p++ = '.';
  *p++ = *first;
  for (const char* digit = first + 2; digit < mark; ++digit) *p++ = *digit;
  const int size = exponent < 0 ? -exponent : exponent;
  if (size < 100) *p++ = 'E';
  *p++ = exponent < 0 ? '-' : '+';
  if (size >= 100) *p++ = static_cast<char>('0' + size / 100);
  *p++ = static_cast<char>('0' + size / 10 % 10);
  *p++ = static_cast<char>('0' + size % 10);
  AppendFraction(out, width, std::signbit(value),
                 std::string_view(field.data(), static_cast<std::size_t>(p - field.data())));
}

Edit& Edit::I(int width, std::int64_t value) {
  AppendI(line_, width, value);
  return *this;
}

Edit& Edit::F(int width, int decimals, double value) {
  AppendF(line_, width, decimals, value);
  return *this;
}

Edit& Edit::E(int width, int decimals, double value) {
  AppendE(line_, width, decimals, value);
  return *this;
}

Edit& Edit::X(int count) {
  line_.append(static_cast<std::size_t>(count), ' ');
  return *this;
}

Edit& Edit::Text(std::string_view text) {
  line_.append(text);
  return *this;
}

Edit& Edit::WideningI(int width, std::int64_t value) {
  std::array<char, 24> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  const int length = static_cast<int>(end - digits.data());
  AppendI(line_, length > width ? length : width, value);
  return *this;
}

}  // namespace zentor
