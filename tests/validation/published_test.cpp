#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "validation/published_case.h"

namespace zentor::validation {
namespace {

TEST(Validation, NumbersAgreeAndThePageShowsThem) {
  const Page page = ValidationPage();
  EXPECT_TRUE(page.all_agree) << "a number left its tolerance";
  EXPECT_EQ(test::ReadText(ZENTOR_DOCS "/validation.md"), page.text)
      << "renew it: build/bin/validation_report > docs/validation.md";
}

}  // namespace
}  // namespace zentor::validation
