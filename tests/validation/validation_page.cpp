#include <cmath>
#include <cstdio>

#include "validation/published_case.h"

namespace zentor::validation {

namespace {

constexpr const char* kHead =
    R"(# Validation

What whole runs of the program make of problems with known answers: examples of standards, public test suites of other
programs, closed forms, and random studies that are the same in other words. Every study is written, evaluated by the run
driver and read back from its result files, which hold single precision. The numbers on this page come from such runs:
`validation_report` prints the page, and the test suite fails when a number moves or leaves its tolerance.

    build/bin/validation_report > docs/validation.md

Differences are relative. Most tolerances are a millionth: what single precision of the files leaves.
)";

std::string Number(const char* format, double value) {
  char text[40];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string ShownDifference(const Comparison& comparison) {
  const double difference = comparison.Difference();
  if (difference == 0) return "0";
  return difference < 1e-6 ? "< 1e-6" : Number("%.0e", difference);
}

std::string Section(const PublishedCase& shown, const std::vector<Comparison>& comparisons) {
  const auto paragraph = [](std::string_view text) {
    return text.empty() ? "" : "\n" + std::string(text) + "\n";
  };
  std::string text =
      "\n## " + std::string(shown.title) + "\n\nSource: " + std::string(shown.source) + ".\n" +
      paragraph(shown.input) + paragraph(shown.definition) +
      "\n| quantity | published | computed | difference | tolerance |\n|---|---|---|---|---|\n";
  for (const Comparison& c : comparisons) {
    text += "| " + c.quantity + " | " + Number("%.7g", c.published) + " | " + Number("%.7g", c.computed) +
            " | " + ShownDifference(c) + " | " + Number("%.0g", c.tolerance) +
            (c.Agrees() ? " |\n" : " exceeded |\n");
  }
  return text;
}

}  // namespace

double Comparison::Difference() const { return std::fabs(computed - published) / std::fabs(published); }
bool Comparison::Agrees() const { return Difference() <= tolerance; }

std::vector<PublishedCase> AllCases() {
  std::vector<PublishedCase> all;
  for (const auto& part : {CountedHistories(), DamageCases(), ClosedForms(), Invariances()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

Page ValidationPage() {
  Page page{kHead};
  for (const PublishedCase& shown : AllCases()) {
    const std::vector<Comparison> comparisons = shown.run();
    for (const Comparison& comparison : comparisons) page.all_agree &= comparison.Agrees();
    page.text += Section(shown, comparisons);
  }
  return page;
}

}  // namespace zentor::validation
