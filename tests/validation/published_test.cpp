#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "validation/published_case.h"

namespace zentor::validation {
namespace {

class Published : public ::testing::TestWithParam<PublishedCase> {};

TEST_P(Published, IsMetWithinTheTolerance) {
  for (const Comparison& c : GetParam().run()) {
    EXPECT_TRUE(c.Agrees()) << c.quantity << ": " << c.computed << ", published " << c.published;
  }
}
INSTANTIATE_TEST_SUITE_P(Cases, Published, ::testing::ValuesIn(AllCases()),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ValidationPage, IsWhatTheRunsPrint) {
  EXPECT_EQ(test::ReadText(ZENTOR_DOCS "/validation.md"), ValidationPage().text)
      << "renew it: build/bin/validation_report > docs/validation.md";
}

}  // namespace
}  // namespace zentor::validation
