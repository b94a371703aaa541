// The program's entry point behind the native main.
#pragma once

#include <string_view>

namespace zentor {

// Starts up, runs the study and returns the process's exit code: 1 when the run ended through its end-of-run
// path (also after a fatal condition of a run that owns its end), 0 when the study or the catalog could not
// be opened or the solver stopped without that path. command_line: the text after the program's own name.
int wWinMain(std::u16string_view command_line);

}  // namespace zentor
