// Numbers that others published, beside what whole runs of the driver make of the same input. One list of
// cases: the tests judge it, docs/validation.md shows it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zentor::validation {

struct Comparison {
  std::string quantity;
  double published = 0;  // not 0
  double computed = 0;
  double tolerance = 0;  // of the relative difference

  double Difference() const;  // relative, not negative; NaN when the computed value is
  bool Agrees() const;
};

struct PublishedCase {
  std::string_view title;
  std::string_view source;
  std::string_view input;       // what is evaluated
  std::string_view definition;  // where the source means something else by its words; empty when nowhere
  std::vector<Comparison> (*run)();
};

// By the file that holds them.
std::vector<PublishedCase> CountedHistories();
std::vector<PublishedCase> DamageCases();
std::vector<PublishedCase> ClosedForms();
std::vector<PublishedCase> Invariances();

std::vector<PublishedCase> AllCases();

// The page in Markdown. The numbers have 6 or 7 digits, and differences below a millionth are not told apart,
// so that it is the same on every machine.
struct Page {
  std::string text;
  bool all_agree = true;
};
Page ValidationPage();

}  // namespace zentor::validation
