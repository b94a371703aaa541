// Prints docs/validation.md. Ends with 1 when a number leaves its tolerance.
#include <cstdio>
#include <exception>

#include "validation/published_case.h"

int main() {
  try {
    const zentor::validation::Page page = zentor::validation::ValidationPage();
    std::fputs(page.text.c_str(), stdout);
    if (!page.all_agree) std::fputs("validation_report: a number left its tolerance\n", stderr);
    return page.all_agree ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "validation_report: %s\n", error.what());
    return 2;
  }
}
