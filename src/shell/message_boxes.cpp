#include "shell/message_boxes.h"

#include <optional>

#include "platform/message_box.h"
#include "platform/system.h"

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

Answer AnswerOf(BoxButton button) {
  switch (button) {
    case BoxButton::kAbort:
      return Answer::kAbort;
    case BoxButton::kCancel:
      return Answer::kCancel;
    case BoxButton::kIgnore:
      return Answer::kIgnore;
    case BoxButton::kNo:
      return Answer::kNo;
    case BoxButton::kOk:
      return Answer::kOk;
    case BoxButton::kRetry:
      return Answer::kRetry;
    case BoxButton::kYes:
      return Answer::kYes;
  }
  return Answer::kOk;
}

// What surrounds an open box: no elapsed time, no progress panel on the terminal.
class BoxScope {
 public:
  BoxScope(ShellContext& shell, ProgressHost& host)
      : shell_(shell), host_(host), one_box_(shell.box_mutex), opened_(platform::SecondsSince1970()) {
    shell_.asking = true;
    if (shell_.window != nullptr) shell_.window->StopTimer(kElapsedTimer);
    if (host_.Loaded()) host_.SetMessageBox(true);
  }
  BoxScope(const BoxScope&) = delete;
  BoxScope& operator=(const BoxScope&) = delete;
  ~BoxScope() {
    if (host_.Loaded()) host_.SetMessageBox(false);
    shell_.start_time += platform::SecondsSince1970() - opened_;
    if (shell_.window != nullptr) shell_.window->SetTimer(kElapsedTimer, kElapsedPeriod);
    shell_.asking = false;
  }

 private:
  ShellContext& shell_;
  ProgressHost& host_;
  std::lock_guard<std::mutex> one_box_;
  std::int64_t opened_;
};

}  // namespace

Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view title, std::u16string_view text,
                BoxStyle style) {
  const std::optional<BoxType> type = TypeOf(style);
  if (shell.hidden || !type) return Answer::kOk;
  const BoxScope scope(shell, host);
  const bool hold =
      style == BoxStyle::kYesNoSuspended && shell.solver != nullptr && !shell.solver->IsCurrent();
  if (hold) shell.solver->Suspend();
  const BoxButton button = platform::ShowMessageBox(
      {std::u16string(title), std::u16string(text), type->buttons, type->icon}, shell.window);
  if (hold) shell.solver->Resume();
  return AnswerOf(button);
}

Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view text, BoxStyle style) {
  return AskInBox(shell, host, shell.title, text, style);
}

}  // namespace zentor
