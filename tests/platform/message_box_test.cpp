#include "platform/message_box.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/standard_streams.h"

namespace zentor::platform {
namespace {

using test::StandardInput;

BoxButton Ask(BoxButtons buttons) { return ShowMessageBox({u"Title", u"Go on?\x1b[2J", buttons}, nullptr); }

TEST(MessageBox, ALineOfAPipeChoosesTheButton) {
  struct Case {
    const char* input;
    BoxButtons buttons;
    BoxButton answer;
  };
  const std::vector<Case> cases = {{"y\n", BoxButtons::kYesNo, BoxButton::kYes},
                                   {"No\n", BoxButtons::kYesNo, BoxButton::kNo},
                                   {"  YES\r\n", BoxButtons::kYesNo, BoxButton::kYes},
                                   {"y", BoxButtons::kYesNo, BoxButton::kYes},
                                   {"\n", BoxButtons::kYesNo, BoxButton::kYes},
                                   {"maybe\n\x1b\n", BoxButtons::kYesNo, BoxButton::kNo},
                                   {"r\n", BoxButtons::kRetryCancel, BoxButton::kRetry},
                                   {"c\n", BoxButtons::kYesNoCancel, BoxButton::kCancel},
                                   {"o\n", BoxButtons::kOkCancel, BoxButton::kOk}};
  for (const Case& c : cases) {
    const StandardInput input(c.input);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Ask(c.buttons), c.answer) << c.input;
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_NE(shown.find("Go on?"), std::string::npos) << "the box is shown where its answer came from";
    EXPECT_EQ(shown.find('\x1b'), std::string::npos) << "no control characters reach a terminal";
  }
}

TEST(MessageBox, WithoutAnAnswerTheCautiousButtonIsTakenAndStandardErrorTold) {
  const std::vector<std::pair<BoxButtons, BoxButton>> cases = {{BoxButtons::kYesNo, BoxButton::kNo},
                                                               {BoxButtons::kYesNoCancel, BoxButton::kNo},
                                                               {BoxButtons::kOkCancel, BoxButton::kCancel},
                                                               {BoxButtons::kRetryCancel, BoxButton::kCancel},
                                                               {BoxButtons::kOk, BoxButton::kOk}};
  for (const std::string& text : {std::string(), std::string("x\n"), "x" + std::string(20000, '-')}) {
    for (const auto& [buttons, answer] : cases) {
      const StandardInput input(text);
      testing::internal::CaptureStderr();
      EXPECT_EQ(Ask(buttons), answer);
      EXPECT_NE(testing::internal::GetCapturedStderr().find("Go on?"), std::string::npos);
    }
  }
}

TEST(MessageBox, EachBoxTakesOneLineAndABoxWithOneButtonNone) {
  const StandardInput input("y\ny\n");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(Ask(BoxButtons::kYesNo), BoxButton::kYes);
  EXPECT_EQ(Ask(BoxButtons::kOk), BoxButton::kOk);
  EXPECT_EQ(Ask(BoxButtons::kYesNo), BoxButton::kYes);
  testing::internal::GetCapturedStdout();
  testing::internal::GetCapturedStderr();
}

TEST(MessageBox, ASilentPipeAndAnEndlessOneAreGivenUp) {
  std::string lines;
  for (int i = 0; i < 1000; ++i) lines += "what?\n";
  const auto start = std::chrono::steady_clock::now();
  testing::internal::CaptureStderr();
  for (const std::string& text : {std::string(), lines}) {
    const StandardInput open_pipe(text, true);
    EXPECT_EQ(Ask(BoxButtons::kYesNo), BoxButton::kNo);
  }
  testing::internal::GetCapturedStderr();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace zentor::platform
