// The shell's message boxes: styles of the solver's questions, answers, the elapsed time without them.
#pragma once

#include <optional>
#include <string_view>

#include "services/solver_services.h"
#include "shell/progress_host.h"
#include "shell/shell_context.h"

namespace zentor {

inline constexpr int kElapsedTimer = 1;
inline constexpr int kElapsedPeriod = 1000;  // milliseconds
inline constexpr int kPollTimer = 2;

// Shows a box of that style over the shell window and returns the answer; kOk without a box in a hidden run
// and for a number that is no style. The time that the box is open does not count as elapsed time. While it
// is open, nothing else uses the terminal. Any thread; kYesNoSuspended holds the solver when asked on
// another. of_enter: the answer that Enter gives, the first one of the box unless given.
Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view text, BoxStyle style,
                std::optional<Answer> of_enter = {});
Answer AskInBox(ShellContext& shell, ProgressHost& host, std::u16string_view title, std::u16string_view text,
                BoxStyle style, std::optional<Answer> of_enter = {});

}  // namespace zentor
