#include <CLI/CLI.hpp>

#include "commands.h"

namespace zentor::companion {

void AddRunCommand(CLI::App&) {}

}  // namespace zentor::companion
