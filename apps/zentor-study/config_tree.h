// A readable definition (TOML) as a tree of values that know their line. Nothing else includes the TOML
// library.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace zentor::companion {

// Of a path with backslashes in a text that gives them a meaning.
inline constexpr std::string_view kBackslashRemedy =
    "a backslash between double quotes begins an escape sequence; write the path between single quotes or "
    "with "
    "forward slashes";

struct ConfigValue {
  enum class Kind { kTable, kArray, kText, kInteger, kReal, kBoolean, kDate };
  Kind kind = Kind::kTable;
  int line = 0;
  std::string text;
  std::int64_t integer = 0;
  double real = 0;  // also of an integer
  bool boolean = false;
  std::vector<ConfigValue> items;  // of an array; of a table, its values
  std::vector<std::string> keys;   // of a table, in the order of the values

  bool IsNumber() const { return kind == Kind::kInteger || kind == Kind::kReal; }
  const ConfigValue* Find(std::string_view key) const;
};

// How a value is shown in a message: the number, the text in quotes, "a table".
std::string Describe(const ConfigValue& value);

// Throws DefinitionError for text that is not TOML, FileError for a file that cannot be read.
ConfigValue ReadConfig(platform::FileSystem& files, const std::string& path);

}  // namespace zentor::companion
