// Reads the extended options of a study, ".FTX" (docs/formats/ftx.md).
#pragma once

#include <string>
#include <string_view>

#include "formats/ftx_format.h"
#include "platform/files.h"

namespace zentor {

// The options in the text of the file; `path` is for messages. Throws InputFault for whatever is not written
// as the format says, unknown and repeated keys included.
ExtendedOptions ParseExtendedOptions(std::string_view text, const std::string& path);

// The options in the file; those of a study without it when it does not exist. Throws InputFault, FileError.
ExtendedOptions ReadExtendedOptions(platform::FileSystem& files, const std::string& path);

}  // namespace zentor
