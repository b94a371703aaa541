// zentor-study: builds fatigue studies from readable files, shows, runs and exports them.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "commands.h"

int main(int argc, char** argv) {
  using namespace zentor::companion;
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
  } catch (const std::exception& error) {
    std::cout.flush();
    std::cerr << "zentor-study: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
