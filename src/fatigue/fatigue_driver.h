// The main routine of a fatigue run.
#pragma once

#include "platform/files.h"
#include "services/solver_services.h"

namespace zentor {

// Runs one study from its files to its listing and results, and returns when it is complete. Throws
// RunStopped when the run stops early; by then the listing and the message box have said why and every file
// is closed in order. Damaged input files and refused file operations are reported in the same way. Throws
// std::bad_alloc when there is no memory even for the words of a stop; the files are closed then, too.
void FatigueDriver(platform::FileSystem& files, SolverServices& services);

}  // namespace zentor
