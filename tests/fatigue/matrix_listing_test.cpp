#include "fatigue/matrix_listing.h"

#include <sstream>
#include <string>
#include <vector>

#include "fatigue/unit_matrix.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "platform/files.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using test::UnitMatrix;
using ::testing::ElementsAre;

struct Printed {
  std::vector<std::string> lines;
  int occupied = 0;
};

Printed Print(RangeMeanMatrix& m) {
  const test::TempFolder folder;
  const std::string path = folder.Path("listing");
  Printed printed;
  {
    TextRecordFile listing;
    listing.Open(platform::NativeFileSystem(), path, TextRecordFile::Mode::kNew);
    printed.occupied = PrintRangeMeanMatrix(listing, m);
    listing.Close();
  }
  std::istringstream in(test::ReadText(path));
  for (std::string line; std::getline(in, line);) printed.lines.push_back(line);
  return printed;
}

constexpr std::size_t kHeadingLines = 13;  // before the column line

TEST(MatrixListing, ExponentFormFromTenThousandOn) {
  RangeMeanMatrix m = UnitMatrix(3, 2, -9999.0F);
  m.counts[m.Index(2, 1)] = 7;
  m.counts[m.Index(3, 2)] = 1234567;
  const Printed printed = Print(m);
  const std::vector<std::string> table(printed.lines.begin() + kHeadingLines,
                                       printed.lines.begin() + kHeadingLines + 6);
  EXPECT_EQ(printed.occupied, 2);
  EXPECT_THAT(table, ElementsAre("                -0.100E+05 -0.100E+05 ",  //
                                 " R ", " A ",                              // no rows for them
                                 " N 0.000E+00        0          0  ",      //
                                 " G 0.100E+01        7          0  ",      //
                                 " E 0.200E+01        0    1234567  "));
}

struct MarginCase {
  int range_bins;
  const char* margins;  // of the rows and the lines around them; '.' is none
  int before, after;    // single lines
};

void ExpectMargins(const MarginCase& c) {
  const auto [range_bins, margins, before, after] = c;
  RangeMeanMatrix m = UnitMatrix(range_bins, 1);
  m.counts[0] = 1;
  const Printed printed = Print(m);
  std::string found;
  int row = -before;
  for (std::size_t k = kHeadingLines + 3; printed.lines[k] != " "; ++k, ++row) {
    const std::string& line = printed.lines[k];
    EXPECT_EQ(line.size(), row >= 0 && row < range_bins ? 19U : 3U) << line;
    found += line[1] == ' ' ? '.' : line[1];
  }
  EXPECT_EQ(found, margins);
  EXPECT_EQ(row, range_bins + after);
}

TEST(MatrixListing, SpellsRangeAroundTheMiddle) {
  for (const MarginCase& c : {MarginCase{1, "RANGE", 3, 1},
                              {2, "RANGE", 2, 1},
                              {4, "RANGE", 1, 0},
                              {5, "ANGE.", 0, 0},
                              {25, ".........RANGE...........", 0, 0}}) {
    SCOPED_TRACE(c.range_bins);
    ExpectMargins(c);
  }
}

TEST(MatrixListing, ThirtyTwoColumnsALine) {
  RangeMeanMatrix m = UnitMatrix(6, 65);
  m.counts[m.Index(2, 1)] = 3;
  m.counts[m.Index(2, 65)] = 4;
  const Printed printed = Print(m);
  const auto& lines = printed.lines;
  EXPECT_EQ(lines[kHeadingLines + 1].substr(0, 14), "  32.0   33.0 ");
  EXPECT_EQ(lines[kHeadingLines + 2], "  64.0 ");
  EXPECT_EQ(lines[kHeadingLines + 8].substr(0, 19), " A 0.100E+01     3 ");
  EXPECT_EQ(lines[kHeadingLines + 10], "     4 ");

  RangeMeanMatrix full = UnitMatrix(6, 32);
  full.counts[full.Index(2, 1)] = full.counts[full.Index(2, 32)] = 1;
  EXPECT_EQ(Print(full).lines[kHeadingLines + 1], "") << "no empty continuation after exactly 32 columns";
}

}  // namespace
}  // namespace zentor
