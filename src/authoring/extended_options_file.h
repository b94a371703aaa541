// Writes the extended options of a study, ".FTX" (docs/formats/ftx.md).
#pragma once

#include <string>

#include "formats/ftx_format.h"

namespace zentor {

// The whole file. Every switch is written, a text only when there is one.
std::string ExtendedOptionsText(const ExtendedOptions& options);

}  // namespace zentor
