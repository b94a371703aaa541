#include "fatigue/matrix_listing.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "database/edit.h"

namespace zentor {
namespace {

constexpr int kColumnsPerLine = 32;
constexpr float kWideFrom = 9999.0F;  // mean centres from here on need the exponent form
constexpr std::string_view kMargin = "RANGE";

bool ColumnHasCounts(const RangeMeanMatrix& m, int j) {
  const auto first = m.counts.begin() + static_cast<std::ptrdiff_t>(m.Index(1, j));
  return std::any_of(first, first + m.range_bins, [](std::int32_t count) { return count > 0; });
}

void FindOccupiedMeans(RangeMeanMatrix& m) {
  m.first_mean = m.last_mean = 0;
  for (int j = 1; j <= m.mean_bins; ++j) {
    if (!ColumnHasCounts(m, j)) continue;
    if (m.first_mean == 0) m.first_mean = j;
    m.last_mean = j;
  }
}

int OccupiedBins(const RangeMeanMatrix& m) {
  int occupied = 0;
  for (int i = 1; i <= m.range_bins; ++i) {
    if (m.range_centres[static_cast<std::size_t>(i - 1)] == 0.0F) continue;
    for (int j = 1; j <= m.mean_bins; ++j) occupied += m.Count(i, j) > 0 ? 1 : 0;
  }
  return occupied;
}

float MeanCentre(const RangeMeanMatrix& m, int j) { return m.mean_centres[static_cast<std::size_t>(j - 1)]; }
float RangeCentre(const RangeMeanMatrix& m, int i) {
  return m.range_centres[static_cast<std::size_t>(i - 1)];
}

bool NeedsExponentForm(const RangeMeanMatrix& m) {
  if (m.first_mean == 0) return false;
  return std::fabs(MeanCentre(m, m.first_mean)) >= kWideFrom ||
         std::fabs(MeanCentre(m, m.last_mean)) >= kWideFrom;
}

// A record that starts with `head` and holds one field per occupied mean bin; a new record starts after
// every 32.
template <typename AppendField>
void WriteColumns(TextRecordFile& listing, const RangeMeanMatrix& m, std::string line, AppendField append) {
  int in_line = 0;
  for (int j = m.first_mean; j >= 1 && j <= m.last_mean; ++j) {
    if (in_line == kColumnsPerLine) {
      listing.Line(line);
      line.clear();
      in_line = 0;
    }
    append(line, j);
    ++in_line;
  }
  listing.Line(line);
}

void WriteHeading(TextRecordFile& listing) {
  listing.Blank(4);
  listing.Line("R A N G E - M E A N   M A T R I X   O F   L O A D   H I S T O R Y");
  listing.Line("O B T A I N E D   B Y   R A I N F L O W   C O U N T I N G :");
  listing.Blank();
  listing.Line("(Numbers in the matrices represent numbers of cycles. In ");
  listing.Line("constant amplitude loading, one cycle equals two ranges  )");
  listing.Blank(2);
  listing.Line(Edit().X(9).Text("               \t             MEAN               ").str());
  listing.Line(Edit().X(13).Text("                               ------           ").str());
}

void WriteMeanCentres(TextRecordFile& listing, const RangeMeanMatrix& m, bool exponent_form) {
  WriteColumns(listing, m, std::string(16, ' '), [&](std::string& line, int j) {
    if (exponent_form) {
      AppendE(line, 10, 3, MeanCentre(m, j));
    } else {
      AppendF(line, 6, 1, MeanCentre(m, j));
    }
    line += ' ';
  });
  if (!exponent_form) listing.Blank(2);
}

// The three columns before a row: letter k of RANGE stands beside row R / 2 - 2 + k, k from 0.
std::string MarginOfRow(int range_bins, int row) {
  const int k = row - (range_bins / 2 - 2);
  const bool letter = k >= 0 && k < static_cast<int>(kMargin.size());
  return {' ', letter ? kMargin[static_cast<std::size_t>(k)] : ' ', ' '};
}

void WriteRow(TextRecordFile& listing, const RangeMeanMatrix& m, int i, bool exponent_form) {
  std::string head = MarginOfRow(m.range_bins, i);
  AppendE(head, 9, 3, RangeCentre(m, i));
  WriteColumns(listing, m, std::move(head), [&](std::string& line, int j) {
    AppendI(line, exponent_form ? 9 : 6, m.Count(i, j));
    line.append(exponent_form ? 2 : 1, ' ');
  });
}

void WriteTable(TextRecordFile& listing, const RangeMeanMatrix& m, bool exponent_form) {
  // Small matrices leave no rows for all letters: the missing ones stand alone. With five bins the R has
  // neither a row nor a line of its own.
  const int first_letter_row = m.range_bins / 2 - 2;
  const int last_letter_row = m.range_bins / 2 + 2;
  if (m.range_bins < 5) {
    for (int row = first_letter_row; row < 1; ++row) listing.Line(MarginOfRow(m.range_bins, row));
  }
  for (int i = 1; i <= m.range_bins; ++i) WriteRow(listing, m, i, exponent_form);
  for (int row = m.range_bins + 1; row <= last_letter_row; ++row)
    listing.Line(MarginOfRow(m.range_bins, row));
}

void WriteVector(TextRecordFile& listing, const RangeMeanMatrix& m) {
  listing.Blank(4);
  listing.Line("RAINFLOW RANGE-MEAN OF LOAD IN VECTOR FORMAT: ");
  listing.Blank(2);
  listing.Line("   RANGE        MEAN          CYCLES");
  listing.Line("  -------      ------        --------");
  listing.Blank();
  Edit edit;
  for (int i = 1; i <= m.range_bins; ++i) {
    for (int j = std::max(m.first_mean, 1); j <= m.last_mean; ++j) {
      if (m.Count(i, j) <= 0) continue;
      edit.Clear();
      edit.X(3).E(9, 3, RangeCentre(m, i)).X(3).E(9, 3, MeanCentre(m, j)).X(3).I(9, m.Count(i, j));
      listing.Line(edit.str());
    }
  }
}

}  // namespace

int PrintRangeMeanMatrix(TextRecordFile& listing, RangeMeanMatrix& matrix) {
  FindOccupiedMeans(matrix);
  const bool exponent_form = NeedsExponentForm(matrix);
  WriteHeading(listing);
  WriteMeanCentres(listing, matrix, exponent_form);
  WriteTable(listing, matrix, exponent_form);
  for (int k = 0; k < 3; ++k) listing.Line(" ");
  WriteVector(listing, matrix);
  return OccupiedBins(matrix);
}

}  // namespace zentor
