// Why a text is not TOML: what people write instead of quotes, escapes and decimal points.
#pragma once

#include <string>
#include <string_view>

#include "definition_error.h"

namespace zentor::companion {

// The error of a file that the parser refuses: what it `said` about the line, or the cause with the remedy
// where the mistake is one that many people make.
DefinitionError TomlError(const std::string& path, std::string_view toml, int line, std::string_view said);

}  // namespace zentor::companion
