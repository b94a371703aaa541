// Modal message boxes.
#pragma once

#include <optional>
#include <string>

#include "platform/shell_window.h"

namespace zentor::platform {

enum class BoxButtons { kOk, kOkCancel, kRetryCancel, kYesNo, kYesNoCancel };
enum class BoxIcon { kNone, kError, kWarning, kQuestion };
enum class BoxButton { kAbort, kCancel, kIgnore, kNo, kOk, kRetry, kYes };

// The words of a box in one language. A button marks its key by brackets (AnswerLabel).
struct BoxWords {
  std::u16string ok = u"[O]K", cancel = u"[C]ancel", retry = u"[R]etry", yes = u"[Y]es", no = u"[N]o";
  std::u16string error = u"error", warning = u"warning";  // behind the title
  std::u16string enter = u"Enter: ", escape = u"Esc: ";   // before the button that the key takes
};

struct MessageBoxRequest {
  std::u16string title;
  std::u16string text;
  BoxButtons buttons = BoxButtons::kOk;
  BoxIcon icon = BoxIcon::kNone;
  std::optional<BoxButton> default_button = {};  // the first one unless given
  BoxWords words = {};
};

// Shows the box and waits for its button; one box at a time, any thread. In a terminal a key chooses: the
// button's letter, in its language or in English, Enter for the default button, Escape for Cancel or No. From
// a pipe or a file one line answers one box: its first letter chooses, an empty line is the default button,
// after any other line the next one is taken. On the owner's own thread its timers run on and messages that
// other threads send are handled, while those that are posted wait for the end of the box.
//
// Nobody there to answer (end of the input, no terminal, nothing in a pipe for two seconds, the owner
// closing): the cautious button, which is No, else Cancel, else OK, and the text goes to standard error.
// Never waits for a user who cannot see the box. owner may be null.
BoxButton ShowMessageBox(const MessageBoxRequest& request, ShellWindow* owner);

}  // namespace zentor::platform
