#include "platform/message_box.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "platform/box_text.h"
#include "platform/text.h"
#include "support/standard_streams.h"

namespace zentor::platform {
namespace {

using test::StandardInput;

BoxButton Ask(BoxButtons buttons) { return ShowMessageBox({u"Title", u"Go on?\x1b[2J", buttons}, nullptr); }

TEST(MessageBox, ALineOfAPipeChoosesTheButton) {
  using Case = std::tuple<const char*, BoxButtons, BoxButton>;
  for (const auto& [line, buttons, answer] :
       {Case{"y\n", BoxButtons::kYesNo, BoxButton::kYes}, Case{"No\n", BoxButtons::kYesNo, BoxButton::kNo},
        Case{"  YES\r\n", BoxButtons::kYesNo, BoxButton::kYes},
        Case{"\n", BoxButtons::kYesNo, BoxButton::kYes},
        Case{"maybe\n\x1b\n", BoxButtons::kYesNo, BoxButton::kNo},
        Case{"r\n", BoxButtons::kRetryCancel, BoxButton::kRetry},
        Case{"c\n", BoxButtons::kYesNoCancel, BoxButton::kCancel},
        Case{"т\n", BoxButtons::kYesNo, BoxButton::kNo}}) {  // the key n of a Russian keyboard
    const StandardInput input(line);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Ask(buttons), answer) << line;
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_NE(shown.find("Go on?"), std::string::npos) << "the box is shown where its answer came from";
    EXPECT_EQ(shown.find('\x1b'), std::string::npos) << "no control characters reach a terminal";
  }
}

// Every button can be chosen in the user's language, and no key of it means another button in English.
TEST(MessageBox, KeysAndWordsOfALanguage) {
  MessageBoxRequest request{u"Титул", u"Прервать?", BoxButtons::kYesNoCancel, BoxIcon::kWarning};
  request.words = {u"[O]K",   u"От[м]ена", u"[П]овторить", u"[Д]а", u"[Н]ет",
                   u"ошибка", u"внимание", u"Enter: ",     u"Esc: "};
  request.default_button = BoxButton::kNo;
  const BoxText box(request);
  EXPECT_EQ(box.Question(80),
            "--- Титул (внимание) ---\nПрервать?\n[Д]а  [Н]ет  От[м]ена  (Enter: Нет, Esc: Отмена) ");
  EXPECT_EQ(box.Question(30),
            "--- Титул (внимание) ---\nПрервать?\n[Д]а  [Н]ет  От[м]ена\n(Enter: Нет, Esc: Отмена) ");
  using enum BoxButton;
  for (const auto& [keys, button] : {std::pair(U"дДyYｙ", kYes), {U"нНnт\n", kNo}, {U"мМcс\x1b", kCancel}}) {
    for (const char32_t key : std::u32string_view(keys)) {
      EXPECT_EQ(box.ButtonOfKey(key), button) << ToUtf8(std::u32string(1, key));
    }
  }
  EXPECT_EQ(box.ButtonOfKey(U'x'), std::nullopt);
  request.words.yes = u"[Y] はい";
  EXPECT_EQ(BoxText(request).ButtonOfKey(U'は'), kYes);
}

TEST(MessageBox, WithoutAnAnswerTheCautiousButtonIsTakenAndStandardErrorTold) {
  for (const std::string& text : {std::string(), std::string("x\n"), "x" + std::string(20000, '-')}) {
    for (const auto& [buttons, answer] : {std::pair(BoxButtons::kYesNo, BoxButton::kNo),
                                          {BoxButtons::kYesNoCancel, BoxButton::kNo},
                                          {BoxButtons::kOkCancel, BoxButton::kCancel},
                                          {BoxButtons::kOk, BoxButton::kOk}}) {
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
  for (const BoxButtons buttons : {BoxButtons::kYesNo, BoxButtons::kOk, BoxButtons::kYesNo})
    EXPECT_EQ(Ask(buttons), buttons == BoxButtons::kOk ? BoxButton::kOk : BoxButton::kYes);
  testing::internal::GetCapturedStdout();
  testing::internal::GetCapturedStderr();
}

TEST(MessageBox, ASilentPipeAndAnEndlessOneAreGivenUp) {
  std::string lines;
  for (int i = 0; i < 1000; ++i) lines += "what?\n";
  for (const std::string& text : {std::string(), lines}) {
    const StandardInput open_pipe(text, true);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Ask(BoxButtons::kYesNo), BoxButton::kNo);
    testing::internal::GetCapturedStderr();
  }
}

}  // namespace
}  // namespace zentor::platform
