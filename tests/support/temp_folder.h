// A folder of a test's own, removed with everything in it at the end of the test.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentor::test {

// A whole file at once; one that does not exist gives an empty text.
inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / ("zentor-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  std::string Path(std::string_view name = "") const { return (folder_ / name).string(); }
  // What is in it, or in a folder in it, by file name; a folder and a link to nowhere are empty.
  std::map<std::string, std::string> Contents(std::string_view folder = "") const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / folder))
      contents[entry.path().filename().string()] =
          entry.is_directory() ? "" : ReadText(entry.path().string());
    return contents;
  }

 private:
  std::filesystem::path folder_;
};

inline void WriteText(const std::string& path, std::string_view text) {
  std::filesystem::remove(
      path);  // some file systems wait for the disk when a file is emptied and written again
  std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}
inline std::vector<std::byte> ReadBytes(const std::string& path) {
  const std::string text = ReadText(path);
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}
inline void WriteBytes(const std::string& path, std::span<const std::byte> bytes) {
  std::string text(bytes.size(), '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) text[i] = static_cast<char>(bytes[i]);
  WriteText(path, text);
}

}  // namespace zentor::test
