// The library as a program loads it. What it shows in a terminal is tested with the solver's runs.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/dynamic_library.h"
#include "support/pseudo_terminal.h"

namespace zentor::test {
namespace {

template <typename Result = void, typename... Args>
Result Call(const platform::DynamicLibrary& library, const char* name, Args... args) {
  return library.Find<Result (*)(Args...)>(name)(args...);
}

TEST(ProgressLibrary, HasEveryEntryPoint) {
  const platform::DynamicLibrary library(ZENTOR_PROGRESS_LIBRARY);
  std::istringstream names(
      "SetSolverType LoadZentorString SetWindowHandle SetSolverDirectory SetZentorLiteSignalled "
      "ShowWindowHidden ExportedFunction SetWindowCaption SetElapsedTime GetSolverAbortSignaled "
      "GetSuspendThreadStatus SetProgressBar2 SetScreenData SetNonLinearIterationNumber "
      "SetNonLinearContactPoints SetNonLinearContactIterationNumber "
      "GetStatusForTimeStepNumberToBeWrittenToBuffer SetScreenMessage SetNonLinearStepSize SetScreenData1 "
      "SetMessageBoxSignalled ShowWarningMessage SetExitWindow");
  for (std::string name; names >> name;) EXPECT_NE(library.Find<void (*)()>(name.c_str()), nullptr) << name;
}

TEST(ProgressLibrary, HiddenRunsAndStrayCallsWriteNothing) {
  PseudoTerminal terminal([] {
    ::setenv("TERM", "xterm", 1);
    {
      const platform::DynamicLibrary once(ZENTOR_PROGRESS_LIBRARY);  // loaded for one call
      Call(once, "ExportedFunction", "ProgressControl2");
      Call(once, "SetProgressBar2", 100, 10);
    }
    const platform::DynamicLibrary library(ZENTOR_PROGRESS_LIBRARY);
    Call(library, "LoadZentorString", nullptr, nullptr, nullptr, nullptr);
    Call(library, "ShowWindowHidden", 1);
    Call(library, "ExportedFunction", "Create");
    Call(library, "ShowWarningMessage", u"warning\n");
    Call(library, "SetMessageBoxSignalled", 1);
    Call(library, "SetMessageBoxSignalled", 0);
    ::usleep(400'000);  // a panel would have opened
    Call(library, "SetExitWindow");
    Call(library, "SetScreenMessage", u"after the end");
    Call(library, "ExportedFunction", "Create");
    return Call<int>(library, "GetSolverAbortSignaled") + Call<int>(library, "GetSuspendThreadStatus");
  });
  EXPECT_EQ(terminal.WaitForEnd(), 0);
  EXPECT_EQ(terminal.Output(), "");
}

}  // namespace
}  // namespace zentor::test
