// Steps of start-up that settle what the run works with.
#pragma once

#include <optional>
#include <string>

#include "platform/files.h"
#include "shell/command_line.h"
#include "shell/shell_context.h"

namespace zentor {

// The second token of the command line, or without one the first line of "X.BAT" in the current directory;
// nothing when that cannot be opened.
std::optional<std::u16string> StudyNameOf(const CommandLine& line, platform::FileSystem& files);

// The first code page, in the order of the languages, that holds the study's name, and the name in it.
// Without one: the name in UTF-8. The files are always opened by the name in UTF-8, which is what the system
// calls them.
void SettleCodePage(ShellContext& shell);

// The solver uses as many threads as the environment's processor count says, unless that is 1 or the number
// of threads is the same already.
void SettleThreadCount(ShellContext& shell);

// Caption and box title from the catalog; the study's name is shortened in its middle to stay within the
// screen's width.
void ComposeCaption(ShellContext& shell);

}  // namespace zentor
