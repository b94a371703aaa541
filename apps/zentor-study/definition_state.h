// Whether a definition still is what a study was built from. Contents are compared, so that a copy of the
// files or a new date makes no difference.
#pragma once

#include <string>
#include <vector>

#include "config_tree.h"
#include "formats/ftx_format.h"
#include "platform/files.h"

namespace zentor::companion {

// A CSV file that a definition names.
struct NamedFile {
  std::string path;
  std::string key;  // "nodes"
  int line = 0;     // of the key
};
std::vector<NamedFile> NamedFiles(const ConfigValue& config, const std::string& definition);

// The definition that the study was built from, then the files it names, as far as it can be read; empty
// where the study knows of none.
std::vector<std::string> DefinitionFiles(const std::string& study_base, const ExtendedOptions& options,
                                         platform::FileSystem& files);

// Whether both paths lead to one file, also where there is none yet.
bool IsSameFile(const std::string& one, const std::string& other);

// The path of the definition from the folder of the study, so that both can move together.
std::string DefinitionFromStudy(const std::string& definition, const std::string& study_base);

// "DIGEST BYTES DIGEST": of the definition's text, and of the files that its tables of rows name. Throws
// FileError for one that cannot be read.
std::string DefinitionState(const ConfigValue& config, const std::string& definition,
                            platform::FileSystem& files);

// What to say of a study whose definition has become another one; empty when it has not, or when nothing is
// known of it. More than 256 MB of unchanged length are read only when one of the files is newer than the
// study.
std::string DefinitionChange(const std::string& study_base, const ExtendedOptions& options,
                             platform::FileSystem& files);

}  // namespace zentor::companion
