#include "database/edit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace zentor {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct RealCase {
  char edit;
  int width, decimals;
  double value;
  const char* text;
};

constexpr RealCase E(int width, int decimals, double value, const char* text) {
  return {'E', width, decimals, value, text};
}
constexpr RealCase F(int width, int decimals, double value, const char* text) {
  return {'F', width, decimals, value, text};
}

// Expectations of an independent implementation of fixed-column output.
const RealCase kRealCases[] = {
    // The optional zero goes when its column is needed.
    E(10, 5, 0.012345, ".12345E-01"), E(11, 5, 0.012345, "0.12345E-01"), E(11, 5, -0.012345, "-.12345E-01"),
    E(10, 5, -0.012345, "**********"),
    // Zero, carries and the three-digit exponent.
    E(10, 4, 0.0, "0.0000E+00"), E(10, 4, -0.0, "-.0000E+00"), E(9, 3, 9.9995, "0.100E+02"),
    E(10, 4, 9.9995, "0.9999E+01"), E(10, 4, 1e99, "0.1000+100"), E(10, 4, 1e-100, "0.1000E-99"),
    E(15, 6, 1.7976931348623157e308, "   0.179769+309"), E(15, 6, 5e-324, "   0.494066-323"),
    // Ties go to the even digit of the exact binary value; fields that are too narrow.
    E(7, 1, 0.25, "0.2E+00"), E(8, 2, 0.375, "0.38E+00"), E(7, 1, -123456.789, "-.1E+06"),
    E(6, 1, -123456.789, "******"), F(5, 0, 2.5, "   2."), F(1, 0, 0.5, "*"), F(7, 1, 99999.95, "99999.9"),
    F(7, 1, 999999.5, "*******"), F(2, 1, 0.95, ".9"), F(3, 2, -0.95, "***"), F(6, 3, -0.00049999, "-0.000"),
    F(2, 0, 99.5, "**"), F(15, 6, 1.7976931348623157e308, "***************"),
    F(20, 0, 123456789012345678.0, " 123456789012345680."),
    // What is not a number.
    E(10, 4, kNaN, "       NaN"), F(2, 1, kNaN, "**"), F(7, 4, kInf, "    Inf"), E(8, 2, kInf, "Infinity"),
    E(8, 2, -kInf, "    -Inf"), E(9, 3, -kInf, "-Infinity")};

TEST(Edit, RealsAsFixedColumnsShowThem) {
  for (const RealCase& c : kRealCases) {
    std::string text;
    c.edit == 'F' ? AppendF(text, c.width, c.decimals, c.value) : AppendE(text, c.width, c.decimals, c.value);
    EXPECT_EQ(text, c.text) << c.edit << c.width << '.' << c.decimals << " of " << c.value;
  }
}

TEST(Edit, ALineOfFields) {
  const std::string line =
      Edit().X(2).I(3, 999).I(3, -99).I(2, 100).I(3, -100).Text(" | ").WideningI(3, 7).str();
  EXPECT_EQ(line, "  999-99***** |   7");
  EXPECT_EQ(Edit().WideningI(3, 12345).F(5, 1, 2.25).I(20, std::numeric_limits<std::int64_t>::min()).str(),
            "12345  2.2-9223372036854775808");
}

// Every edit at any magnitude gives exactly its width, also where the digits of the value are hundreds.
TEST(Edit, NeverLeavesItsColumns) {
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    for (const double sign : {1.0, -1.0}) {
      std::string text;
      AppendF(text, 15, 6, std::ldexp(sign * 1.9, exponent));
      AppendF(text, 1, 0, std::ldexp(sign, exponent));
      AppendF(text, 180, 100, std::ldexp(sign, exponent));
      AppendE(text, 180, 170, std::ldexp(sign, exponent));
      ASSERT_EQ(text.size(), 15U + 1U + 180U + 180U) << exponent;
    }
  }
}

// Values of every magnitude, and ties between two neighbours in the last place.
TEST(Edit, RoundsAsTheCLibraryDoes) {
  std::minstd_rand random(5);
  for (int i = 0; i < 200000; ++i) {
    const double any =
        std::ldexp(1.0 + static_cast<double>(random()) / 3e9, static_cast<int>(random() % 80) - 45);
    const double tie = static_cast<double>(random() % 100000) / 1024.0;
    const int decimals = i % 11;
    const double value = (i % 2 == 0 ? any : tie) * (i % 3 == 0 ? -1.0 : 1.0);
    char printed[64];
    std::snprintf(printed, sizeof printed, "%#40.*f", decimals, value);
    std::string text;
    AppendF(text, 40, decimals, value);
    ASSERT_EQ(text, printed);
  }
}

}  // namespace
}  // namespace zentor
