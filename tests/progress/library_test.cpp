// The library as a program loads it. What it shows in a terminal is tested with the solver's runs.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/pseudo_terminal.h"

namespace zentor::test {
namespace {

class Library {
 public:
  Library() : handle_(::dlopen(ZENTOR_PROGRESS_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { ::dlclose(handle_); }

  void* Find(const char* name) const { return ::dlsym(handle_, name); }
  template <typename Result = void, typename... Args>
  Result Call(const char* name, Args... args) const {
    return reinterpret_cast<Result (*)(Args...)>(Find(name))(args...);
  }

 private:
  void* handle_;
};

TEST(ProgressLibrary, HasEveryEntryPoint) {
  const Library library;
  std::istringstream names(
      "SetSolverType LoadZentorString SetWindowHandle SetSolverDirectory SetZentorLiteSignalled "
      "ShowWindowHidden ExportedFunction SetWindowCaption SetElapsedTime GetSolverAbortSignaled "
      "GetSuspendThreadStatus SetProgressBar2 SetScreenData SetNonLinearIterationNumber "
      "SetNonLinearContactPoints SetNonLinearContactIterationNumber "
      "GetStatusForTimeStepNumberToBeWrittenToBuffer SetScreenMessage SetNonLinearStepSize SetScreenData1 "
      "SetMessageBoxSignalled ShowWarningMessage SetExitWindow");
  for (std::string name; names >> name;) EXPECT_NE(library.Find(name.c_str()), nullptr) << name;
}

TEST(ProgressLibrary, HiddenRunsAndStrayCallsWriteNothing) {
  PseudoTerminal terminal([] {
    ::setenv("TERM", "xterm", 1);
    {
      const Library once;  // loaded for one call
      once.Call("ExportedFunction", "ProgressControl2");
      once.Call("SetProgressBar2", 100, 10);
    }
    const Library library;
    library.Call("LoadZentorString", nullptr, nullptr, nullptr, nullptr);
    library.Call("ShowWindowHidden", 1);
    library.Call("ExportedFunction", "Create");
    library.Call("SetScreenMessage", u"message");
    library.Call("ShowWarningMessage", u"warning\n");
    library.Call("SetMessageBoxSignalled", 1);
    library.Call("SetMessageBoxSignalled", 0);
    ::usleep(400'000);  // a panel would have opened
    library.Call("SetExitWindow");
    library.Call("SetScreenMessage", u"after the end");
    library.Call("ExportedFunction", "Create");
    return library.Call<int>("GetSolverAbortSignaled") + library.Call<int>("GetSuspendThreadStatus");
  });
  EXPECT_EQ(terminal.WaitForEnd(), 0);
  EXPECT_EQ(terminal.Output(), "");
}

}  // namespace
}  // namespace zentor::test
