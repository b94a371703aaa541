// Modal message boxes.
#pragma once

#include <string>

#include "platform/shell_window.h"

namespace zentor::platform {

enum class BoxButtons { kOk, kOkCancel, kRetryCancel, kYesNo, kYesNoCancel };
enum class BoxIcon { kNone, kError, kWarning, kQuestion };
enum class BoxButton { kAbort, kCancel, kIgnore, kNo, kOk, kRetry, kYes };

struct MessageBoxRequest {
  std::u16string title;
  std::u16string text;
  BoxButtons buttons = BoxButtons::kOk;
  BoxIcon icon = BoxIcon::kNone;
};

// Shows the box and waits for its button; one box at a time, any thread. In a terminal a key chooses: the
// button's letter, Enter for the first button, Escape for Cancel or No. From a pipe or a file one line
// answers one box: its first letter chooses, an empty line is the first button, after any other line the next
// one is taken.
//
// Nobody there to answer (end of the input, no terminal, nothing in a pipe for two seconds, the owner
// closing): the cautious button, which is No, else Cancel, else OK, and the text goes to standard error.
// Never waits for a user who cannot see the box. owner may be null.
BoxButton ShowMessageBox(const MessageBoxRequest& request, ShellWindow* owner);

}  // namespace zentor::platform
