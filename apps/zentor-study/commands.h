// The subcommands of zentor-study. Each registers itself with its options; its callback does the work and
// throws CommandFailure when it cannot.
#pragma once

#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace zentor::companion {

// A subcommand could not do what was asked. The message is for the user; main prints it and exits with the
// code.
class CommandFailure : public std::runtime_error {
 public:
  explicit CommandFailure(const std::string& message, int exit_code = 1)
      : std::runtime_error(message), exit_code_(exit_code) {}
  int exit_code() const { return exit_code_; }

 private:
  int exit_code_;
};

void AddBuildCommand(CLI::App& app);
void AddShowCommand(CLI::App& app);
void AddRunCommand(CLI::App& app);
void AddResultsCommand(CLI::App& app);

}  // namespace zentor::companion
