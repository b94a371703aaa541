#include "definition_state.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

#include "definition_error.h"

namespace zentor::companion {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMostBytesAlwaysRead = std::uint64_t{256} << 20U;

// Keys whose text is the path of a CSV file.
constexpr std::array<std::string_view, 7> kRowKeys = {"nodes",        "elements", "surface", "stresses",
                                                      "temperatures", "points",   "sm_t"};

void CollectFiles(const ConfigValue& value, const std::string& folder, std::vector<NamedFile>& found) {
  for (std::size_t i = 0; i < value.items.size(); ++i) {
    const ConfigValue& item = value.items[i];
    CollectFiles(item, folder, found);
    const bool of_rows = i < value.keys.size() && item.kind == ConfigValue::Kind::kText &&
                         std::find(kRowKeys.begin(), kRowKeys.end(), value.keys[i]) != kRowKeys.end();
    if (of_rows && item.text != "auto") {
      found.push_back({(fs::path(folder) / item.text).string(), value.keys[i], item.line});
    }
  }
}

std::vector<std::string> PathsOf(const ConfigValue& config, const std::string& definition) {
  std::vector<std::string> paths;
  for (NamedFile& file : NamedFiles(config, definition)) paths.push_back(std::move(file.path));
  return paths;
}

std::string StoredDefinition(const std::string& study_base, const ExtendedOptions& options) {
  return (fs::path(study_base).parent_path() / options.definition).string();
}

// Multiplies and shifts eight bytes at a time; told apart are accidental changes, not forgeries.
class Digest {
 public:
  void Add(platform::RandomAccessFile& file) {
    std::vector<std::byte> block(std::size_t{1} << 20U);
    for (std::uint64_t offset = 0;;) {
      const std::size_t read = file.ReadAt(offset, block);
      for (std::size_t i = 0; i < read; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, block.data() + i, std::min<std::size_t>(8, read - i));
        Add(word);
      }
      offset += read;
      if (read < block.size()) return Add(offset);
    }
  }
  std::string Text() const { return fmt::format("{:016x}", value_); }

 private:
  void Add(std::uint64_t word) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
    value_ = (value_ ^ word) * kOdd;
    value_ ^= value_ >> 29U;
  }
  std::uint64_t value_ = 0xCBF29CE484222325;
};

std::unique_ptr<platform::RandomAccessFile> OpenForReading(const std::string& path,
                                                           platform::FileSystem& files) {
  return files.Open(path, platform::OpenMode::kReadOnly);
}

std::string DigestOf(const std::vector<std::string>& paths, platform::FileSystem& files) {
  Digest digest;
  for (const std::string& path : paths) digest.Add(*OpenForReading(path, files));
  return digest.Text();
}

std::uint64_t TotalBytes(const std::vector<std::string>& paths, platform::FileSystem& files) {
  std::uint64_t bytes = 0;
  for (const std::string& path : paths) bytes += OpenForReading(path, files)->Size();
  return bytes;
}

bool AnyNewer(const std::vector<std::string>& paths, const std::string& than) {
  std::error_code error;
  const auto built = fs::last_write_time(than, error);
  return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
    const auto written = fs::last_write_time(path, error);
    return error || written > built;
  });
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words(1);
  for (const char c : text) {
    if (c == ' ') {
      words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  return words;
}

}  // namespace

std::vector<NamedFile> NamedFiles(const ConfigValue& config, const std::string& definition) {
  std::vector<NamedFile> found;
  CollectFiles(config, fs::path(definition).parent_path().string(), found);
  return found;
}

std::vector<std::string> DefinitionFiles(const std::string& study_base, const ExtendedOptions& options,
                                         platform::FileSystem& files) {
  if (options.definition.empty()) return {};
  std::vector<std::string> paths = {StoredDefinition(study_base, options)};
  try {
    for (std::string& path : PathsOf(ReadConfig(files, paths[0]), paths[0])) paths.push_back(std::move(path));
  } catch (const platform::FileError&) {
    return paths;
  } catch (const DefinitionError&) {
    return paths;
  }
  return paths;
}

bool IsSameFile(const std::string& one, const std::string& other) {
  std::error_code error;
  if (fs::equivalent(one, other, error)) return true;
  return fs::weakly_canonical(fs::absolute(one), error) == fs::weakly_canonical(fs::absolute(other), error) &&
         !error;
}

std::string DefinitionFromStudy(const std::string& definition, const std::string& study_base) {
  const fs::path folder = fs::weakly_canonical(fs::absolute(study_base).parent_path());
  const fs::path whole = fs::weakly_canonical(fs::absolute(definition));
  const fs::path relative = whole.lexically_relative(folder);
  return relative.empty() ? whole.string() : relative.string();
}

std::string DefinitionState(const ConfigValue& config, const std::string& definition,
                            platform::FileSystem& files) {
  const std::vector<std::string> named = PathsOf(config, definition);
  return fmt::format("{} {} {}", DigestOf({definition}, files), TotalBytes(named, files),
                     DigestOf(named, files));
}

std::string DefinitionChange(const std::string& study_base, const ExtendedOptions& options,
                             platform::FileSystem& files) {
  const std::vector<std::string> state = Words(options.definition_state);
  if (options.definition.empty() || state.size() != 3) return {};
  const std::string path = StoredDefinition(study_base, options);
  constexpr std::string_view kRemedy = "build the study again, or its results are those of the earlier one";
  try {
    if (DigestOf({path}, files) != state[0]) {
      return fmt::format("the definition {} was changed after the study was built from it; {}", path,
                         kRemedy);
    }
    const std::vector<std::string> named = PathsOf(ReadConfig(files, path), path);
    const std::uint64_t bytes = TotalBytes(named, files);
    const bool unread = bytes > kMostBytesAlwaysRead && !AnyNewer(named, study_base + ".FTX");
    const bool same = fmt::to_string(bytes) == state[1] && (unread || DigestOf(named, files) == state[2]);
    if (same) return {};
    return fmt::format("a file that the definition {} names was changed after the study was built; {}", path,
                       kRemedy);
  } catch (const platform::FileError&) {
    return {};  // moved away or not for us to read: nothing is known
  } catch (const DefinitionError&) {
    return {};
  }
}

}  // namespace zentor::companion
