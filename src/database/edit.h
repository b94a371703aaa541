// Fixed-column output: the I, F, E and X edits of the listing.
//
// Rules: integers and reals are right-aligned; a value that cannot fit fills its field with asterisks; F and
// E are correctly rounded from the exact binary value (ties to even); the optional zero before the point is
// dropped when the field is too narrow for it; E writes 0.ddddE+ee, and 0.ddd+eee when the exponent needs
// three digits; NaN and infinities are right-aligned as NaN, Infinity / Inf.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zentor {

// A line of the listing under construction. Every call appends one field and returns the line:
//   listing.Line(Edit().X(2).I(3, loading).E(10, 4, cycles).str());
class Edit {
 public:
  Edit() { line_.reserve(132); }
  Edit& I(int width, std::int64_t value);          // I w
  Edit& F(int width, int decimals, double value);  // F w.d
  Edit& E(int width, int decimals, double value);  // E w.d
  Edit& X(int count);                              // n X
  Edit& Text(std::string_view text);               // a literal
  // Integer that widens the line instead of becoming asterisks when it outgrows its columns.
  Edit& WideningI(int width, std::int64_t value);

  const std::string& str() const { return line_; }
  void Clear() { line_.clear(); }

 private:
  std::string line_;
};

// The widest field that F and E fill.
inline constexpr int kMaxEditWidth = 180;

// The edits on their own, appending to a text (used where lines are formatted by the million).
void AppendI(std::string& out, int width, std::int64_t value);
void AppendF(std::string& out, int width, int decimals, double value);
void AppendE(std::string& out, int width, int decimals, double value);

}  // namespace zentor
