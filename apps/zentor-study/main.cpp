// zentor-study: builds fatigue studies from readable files, shows, runs and exports them.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>

#include "commands.h"
#include "platform/system.h"
#include "platform/text.h"
#include "printable_output.h"

namespace zentor::companion {
namespace {

int Run(int argc, char** argv) {
  CLI::App app("Builds, shows and runs fatigue studies and exports their results.", "zentor-study");
  app.require_subcommand(1);
  app.get_formatter()->column_width(34);
  AddBuildCommand(app);
  AddShowCommand(app);
  AddRunCommand(app);
  AddResultsCommand(app);
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

}  // namespace
}  // namespace zentor::companion

int main(int argc, char** argv) {
  using namespace zentor;  // NOLINT(google-build-using-namespace): the program's own
  platform::LetFileSizeLimitFailWrites();
  try {
    const companion::PrintableOutput printable(std::cout);
    return companion::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zentor-study: %s\n", platform::Printable(error.what()).c_str());
    return 1;
  }
}
