#include "config_tree.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <filesystem>
#include <memory>
#include <system_error>

#include "config_depth.h"
#include "csv_diagnosis.h"
#include "definition_error.h"
#include "toml_diagnosis.h"

namespace zentor::companion {

namespace {

using Kind = ConfigValue::Kind;

ConfigValue Convert(const toml::node& node);

ConfigValue ConvertTable(const toml::table& table) {
  ConfigValue value;
  for (const auto& [key, entry] : table) {
    value.keys.emplace_back(key.str());
    value.items.push_back(Convert(entry));
    // A table's own line is that of its header; errors about a key show the key's line.
    if (entry.is_value()) value.items.back().line = static_cast<int>(key.source().begin.line);
  }
  return value;
}

ConfigValue ConvertArray(const toml::array& array) {
  ConfigValue value;
  value.kind = Kind::kArray;
  value.items.reserve(array.size());
  for (const toml::node& item : array) value.items.push_back(Convert(item));
  return value;
}

ConfigValue ConvertScalar(const toml::node& node) {
  ConfigValue value;
  if (const auto* text = node.as_string()) {
    value.kind = Kind::kText;
    value.text = text->get();
  } else if (const auto* integer = node.as_integer()) {
    value.kind = Kind::kInteger;
    value.integer = integer->get();
    value.real = static_cast<double>(value.integer);
  } else if (const auto* real = node.as_floating_point()) {
    value.kind = Kind::kReal;
    value.real = real->get();
  } else if (const auto* boolean = node.as_boolean()) {
    value.kind = Kind::kBoolean;
    value.boolean = boolean->get();
  } else {
    value.kind = Kind::kDate;
  }
  return value;
}

ConfigValue Convert(const toml::node& node) {
  ConfigValue value;
  if (const toml::table* table = node.as_table()) {
    value = ConvertTable(*table);
  } else if (const toml::array* array = node.as_array()) {
    value = ConvertArray(*array);
  } else {
    value = ConvertScalar(node);
  }
  value.line = static_cast<int>(node.source().begin.line);
  return value;
}

std::string ReadAll(platform::FileSystem& files, const std::string& path) {
  constexpr std::uint64_t kMostBytes = std::uint64_t{256} << 20U;
  const std::unique_ptr<platform::RandomAccessFile> file = files.Open(path, platform::OpenMode::kReadOnly);
  std::error_code error;  // of a pipe or device the size says nothing
  if (!std::filesystem::is_regular_file(path, error)) {
    throw DefinitionError(path, 0, "is no regular file, expected a definition");
  }
  if (file->Size() > kMostBytes) {
    throw DefinitionError(path, 0,
                          fmt::format("holds {} bytes; long tables belong in CSV files", file->Size()));
  }
  std::string text(file->Size(), '\0');
  text.resize(file->ReadAt(0, std::as_writable_bytes(std::span(text))));
  return text;
}

}  // namespace

const ConfigValue* ConfigValue::Find(std::string_view key) const {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (keys[i] == key) return &items[i];
  }
  return nullptr;
}

std::string Describe(const ConfigValue& value) {
  constexpr std::size_t kLongest = 60;
  switch (value.kind) {
    case Kind::kTable:
      return "a table";
    case Kind::kArray:
      return fmt::format("a list of {}", value.items.size());
    case Kind::kText:
      return value.text.size() > kLongest ? fmt::format("'{}...'", value.text.substr(0, kLongest))
                                          : fmt::format("'{}'", value.text);
    case Kind::kInteger:
      return fmt::format("{}", value.integer);
    case Kind::kReal:
      return fmt::format("{}", value.real);
    case Kind::kBoolean:
      return value.boolean ? "true" : "false";
    case Kind::kDate:
      break;
  }
  return "a date or time";
}

ConfigValue ReadConfig(platform::FileSystem& files, const std::string& path) {
  const std::string text = ReadAll(files, path);
  const std::string encoding = EncodingFault(text);
  if (!encoding.empty()) throw DefinitionError(path, 0, encoding);
  if (const auto fault = FindDepthFault(text)) throw DefinitionError(path, fault->line, fault->text);
  try {
    return Convert(toml::parse(text, path));
  } catch (const toml::parse_error& error) {
    const auto line = static_cast<int>(error.source().begin.line);
    throw TomlError(path, text, line, error.description());
  }
}

}  // namespace zentor::companion
