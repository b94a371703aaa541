// Values that the shell takes out of the raw ".MAS" file at fixed places, before and after the run.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files.h"

namespace zentor {

// Every value that the file does not hold is 0.
struct MasterControl {
  std::int32_t record_length = 0;
  std::int32_t edition = 0;         // passed to the progress host
  std::int32_t language = 0;        // index of the message language
  std::int32_t seconds_spent = 0;   // on this study in earlier runs
  std::int32_t summary_value = 0;   // third argument of the run summary
  std::int32_t summary_offset = 0;  // bytes before the end of ".LOG" where the summary begins, 0 none
};

// Throws FileError when the file cannot be opened.
MasterControl ReadMasterControl(platform::FileSystem& files, const std::string& path,
                                platform::OpenMode mode);

}  // namespace zentor
