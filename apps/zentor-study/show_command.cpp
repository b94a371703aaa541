#include <CLI/CLI.hpp>

#include "commands.h"

namespace zentor::companion {

void AddShowCommand(CLI::App&) {}

}  // namespace zentor::companion
