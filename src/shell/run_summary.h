// The summary that the end of a run appends to ".LOG".
#pragma once

#include <string>
#include <vector>

#include "shell/shell_context.h"

namespace zentor {

// Writes message 939 with the model's sizes, the elapsed time and all warnings of the run. What ".LOG" holds
// is kept, except that the study may ask the summary to begin, with a line feed, some bytes before its end. A
// ".LOG" that cannot be opened is left alone. Returns what could not be read or written, with the system's
// reason; nothing when all went well.
std::vector<std::string> WriteRunSummary(ShellContext& shell, const std::u16string& elapsed);

}  // namespace zentor
