// zentor-study: builds fatigue studies from readable files, shows, runs and exports them.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>

#include "commands.h"

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
    return app.exit(error);
  } catch (const CommandFailure& failure) {
    std::cout.flush();
    if (*failure.what() != '\0') std::cerr << failure.what() << '\n';
    return failure.exit_code();
  }
  return 0;
}

}  // namespace
}  // namespace zentor::companion

int main(int argc, char** argv) {
  try {
    return zentor::companion::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zentor-study: %s\n", error.what());
    return 1;
  }
}
