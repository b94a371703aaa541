#include <CLI/CLI.hpp>

#include "commands.h"

namespace zentor::companion {

void AddBuildCommand(CLI::App&) {}

}  // namespace zentor::companion
