// Files that the companion writes: the whole file appears under its name, or what was there before stays.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace zentor::companion {

// Gathers what is written in a file beside the target and renames it at Commit. The path "-" is standard
// output; devices and pipes are written directly. Without Commit the target is untouched. Throws FileError.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(std::string_view bytes);
  void Commit();

 private:
  void Flush();

  // The file beside the target, which goes with it.
  struct Part {
    Part() = default;
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    ~Part();
    std::string path;  // empty when there is none
  };

  std::string target_;
  Part part_;
  std::unique_ptr<platform::RandomAccessFile> file_;  // the file beside the target, or null
  std::ofstream special_;                             // an open device or pipe
  std::uint64_t position_ = 0;
  std::string pending_;
};

}  // namespace zentor::companion
