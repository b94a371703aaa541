#include "shell/message_boxes.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "platform/message_box.h"

namespace zentor {
namespace {

using platform::BoxButton;
using platform::BoxButtons;
using platform::BoxIcon;

struct BoxType {
  BoxButtons buttons;
  BoxIcon icon;
};

std::optional<BoxType> TypeOf(BoxStyle style) {
  switch (style) {
    case BoxStyle::kOk:
      return BoxType{BoxButtons::kOk, BoxIcon::kNone};
    case BoxStyle::kError:
      return BoxType{BoxButtons::kOk, BoxIcon::kError};
    case BoxStyle::kOkCancel:
      return BoxType{BoxButtons::kOkCancel, BoxIcon::kNone};
    case BoxStyle::kRetryCancel:
      return BoxType{BoxButtons::kRetryCancel, BoxIcon::kNone};
    case BoxStyle::kYesNoSuspended:
    case BoxStyle::kYesNo:
      return BoxType{BoxButtons::kYesNo, BoxIcon::kNone};
    case BoxStyle::kWarning:
      return BoxType{BoxButtons::kOk, BoxIcon::kWarning};
    case BoxStyle::kYesNoWarning:
      return BoxType{BoxButtons::kYesNo, BoxIcon::kWarning};
    case BoxStyle::kYesNoQuestion:
      return BoxType{BoxButtons::kYesNo, BoxIcon::kQuestion};
    case BoxStyle::kYesNoCancelQuestion:
      return BoxType{BoxButtons::kYesNoCancel, BoxIcon::kQuestion};
    case BoxStyle::kOkCancelWarning:
      return BoxType{BoxButtons::kOkCancel, BoxIcon::kWarning};
    case BoxStyle::kRetryCancelWarning:
      return BoxType{BoxButtons::kRetryCancel, BoxIcon::kWarning};
    case BoxStyle::kOkCancelQuestion:
      return BoxType{BoxButtons::kOkCancel, BoxIcon::kQuestion};
  }
  return std::nullopt;
}

constexpr std::array<std::pair<BoxButton, Answer>, 7> kAnswers = {{
    {BoxButton::kAbort, Answer::kAbort},
    {BoxButton::kCancel, Answer::kCancel},
    {BoxButton::kIgnore, Answer::kIgnore},
    {BoxButton::kNo, Answer::kNo},
    {BoxButton::kOk, Answer::kOk},
    {BoxButton::kRetry, Answer::kRetry},
    {BoxButton::kYes, Answer::kYes},
}};

Answer AnswerOf(BoxButton button) {
  for (const auto& [of, answer] : kAnswers) {
    if (of == button) return answer;
  }
  return Answer::kOk;
}

std::optional<BoxButton> ButtonOf(std::optional<Answer> answer) {
  for (const auto& [button, of] : kAnswers) {
    if (of == answer) return button;
  }
  return std::nullopt;
}

// The words of a box in the language of the catalog; those that it lacks stay English.
platform::BoxWords WordsOf(const MessageCatalog& catalog) {
  platform::BoxWords words;
  const std::array<std::pair<int, std::u16string*>, 9> sources = {{{958, &words.ok},
                                                                   {959, &words.cancel},
                                                                   {960, &words.retry},
                                                                   {961, &words.yes},
                                                                   {962, &words.no},
                                                                   {963, &words.error},
                                                                   {964, &words.warning},
                                                                   {965, &words.enter},
                                                                   {966, &words.escape}}};
  for (const auto& [number, word] : sources) {
    if (const std::u16string_view text = CatalogText(catalog, number); !text.empty()) *word = text;
  }
  return words;
}

// What surrounds an open box: no elapsed time, no progress panel on the terminal.
class BoxScope {
 public:
  BoxScope(ShellContext& shell, ProgressHost& host) : shell_(shell), host_(host), one_box_(shell.box_mutex) {
    shell_.asking = true;
    shell_.clock.Stop();
    if (shell_.window != nullptr) shell_.window->StopTimer(kElapsedTimer);
    if (host_.Loaded()) host_.SetMessageBox(true);
  }
  BoxScope(const BoxScope&) = delete;
  BoxScope& operator=(const BoxScope&) = delete;
  ~BoxScope() {
    if (host_.Loaded()) host_.SetMessageBox(false);
    shell_.clock.Continue();
    if (shell_.window != nullptr) shell_.window->SetTimer(kElapsedTimer, kElapsedPeriod);
    shell_.asking = false;
  }

 private:
  ShellContext& shell_;
  ProgressHost& host_;
  std::lock_guard<std::mutex> one_box_;
};

}  // namespace

Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view title, std::u16string_view text,
                BoxStyle style, std::optional<Answer> of_enter) {
  const std::optional<BoxType> type = TypeOf(style);
  if (shell.hidden || !type) return Answer::kOk;
  const BoxScope scope(shell, host);
  const bool hold =
      style == BoxStyle::kYesNoSuspended && shell.solver != nullptr && !shell.solver->IsCurrent();
  if (hold) shell.solver->Suspend();
  const BoxButton button =
      platform::ShowMessageBox({std::u16string(title), std::u16string(text), type->buttons, type->icon,
                                ButtonOf(of_enter), WordsOf(shell.catalog)},
                               shell.window);
  if (hold) shell.solver->Resume();
  return AnswerOf(button);
}

Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view text, BoxStyle style,
                std::optional<Answer> of_enter) {
  return AskInBox(shell, host, shell.title, text, style, of_enter);
}

}  // namespace zentor
