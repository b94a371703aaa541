#include <CLI/CLI.hpp>

#include "commands.h"

namespace zentor::companion {

void AddResultsCommand(CLI::App&) {}

}  // namespace zentor::companion
