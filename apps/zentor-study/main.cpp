// zentor-study: builds fatigue studies from readable files, shows, runs and exports them.
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <sstream>

#include "commands.h"
#include "platform/system.h"
#include "platform/text.h"
#include "platform/threads.h"
#include "printable_output.h"
#include "standard_output.h"

namespace zentor::companion {
namespace {

constexpr const char* kOutOfMemory = "zentor-study: out of memory\n";

int Parse(CLI::App& app, int argc, char** argv) {
  const PrintableOutput printable(std::cout);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream told;
    const int exit_code = app.exit(error, std::cout, told);
    std::cerr << platform::Printable(told.str(), "\n\t");
    return exit_code;
  } catch (const CommandFailure& failure) {
    std::cout.flush();
    if (*failure.what() != '\0') std::cerr << platform::Printable(failure.what(), "\n") << '\n';
    return failure.exit_code();
  }
  return 0;
}

int Run(int argc, char** argv) {
  const StandardOutput output;
  CLI::App app("Builds, shows and runs fatigue studies and exports their results.", "zentor-study");
  app.require_subcommand(1);
  app.get_formatter()->column_width(34);
  AddBuildCommand(app);
  AddShowCommand(app);
  AddRunCommand(app);
  AddResultsCommand(app);
  const int exit_code = Parse(app, argc, argv);
  FlushOutput();
  return exit_code;
}

[[noreturn]] void EndWithoutMemory() {
  platform::WriteStandardError(kOutOfMemory);
  platform::EndProcess(1);
}

// Memory may also run out where no exception can be thrown. Nothing is left to allocate with then. An
// exception that is on its way there and cannot be looked at is that one, too: a library throws no other.
[[noreturn]] void OnTerminate() {
  if (!std::current_exception() && std::uncaught_exceptions() > 0) EndWithoutMemory();
  try {
    if (std::current_exception()) throw;
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (...) {  // a fault of the program, which the system shall keep
  }
  std::abort();
}

// Before what the libraries allocate for themselves ahead of main.
struct TerminateHandler {
  TerminateHandler() { std::set_terminate(OnTerminate); }
};
[[gnu::init_priority(101)]] const TerminateHandler terminate_handler;

}  // namespace
}  // namespace zentor::companion

int main(int argc, char** argv) {
  using namespace zentor;  // NOLINT(google-build-using-namespace): the program's own
  platform::HoldStandardStreams();
  platform::LetFileSizeLimitFailWrites();
  try {
    return companion::Run(argc, argv);
  } catch (const std::bad_alloc&) {
    platform::WriteStandardError(companion::kOutOfMemory);
  } catch (const std::exception& error) {
    platform::WriteStandardError("zentor-study: ");
    platform::WriteStandardError(platform::Printable(error.what()));
    platform::WriteStandardError("\n");
  }
  return 1;
}
