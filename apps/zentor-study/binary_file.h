// Checked, read-only access to a binary file: nothing is read outside its bytes, nothing is allocated beyond
// its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace zentor::companion {

class BinaryFile {
 public:
  explicit BinaryFile(std::string path);  // throws FileError

  const std::string& path() const { return path_; }
  std::uint64_t size() const { return size_; }
  bool Holds(std::uint64_t offset, std::uint64_t count) const {
    return offset <= size_ && count <= size_ - offset;
  }

  // All of these throw InputFault naming the place when the bytes do not all lie in the file.
  void Read(std::uint64_t offset, std::span<std::byte> out, std::string_view place);
  std::int32_t Int(std::uint64_t offset, std::string_view place);
  std::int64_t Int64(std::uint64_t offset, std::string_view place);
  float Real(std::uint64_t offset, std::string_view place);
  std::vector<std::int32_t> Ints(std::uint64_t offset, std::uint64_t count, std::string_view place);
  std::vector<float> Reals(std::uint64_t offset, std::uint64_t count, std::string_view place);

  [[noreturn]] void Fault(std::string_view place, std::string_view found, std::string_view wanted) const;

 private:
  std::string path_;
  std::unique_ptr<platform::RandomAccessFile> file_;
  std::uint64_t size_ = 0;
  // The bytes from window_start_ on that were read last; small reads are answered from it.
  std::vector<std::byte> window_;
  std::uint64_t window_start_ = 0;
};

}  // namespace zentor::companion
