// The elapsed time as the run shows it.
#pragma once

#include <cstdint>
#include <string>

#include "shell/progress_host.h"
#include "shell/shell_context.h"

namespace zentor {

// "hh:mm:ss" with two, three or four hour digits (below 100 hours, below 1000, from 1000 on); negative counts
// as 0.
std::u16string ElapsedText(std::int64_t seconds);

// The elapsed time of the run at this moment, which the progress host is told as well, in the width of the
// label, message 931: at most that many characters, whatever the number of hour digits. Any thread.
std::u16string ShowElapsed(const ShellContext& shell, ProgressHost& host);

}  // namespace zentor
