// Direct access to fixed-length binary records, numbered from 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "platform/files.h"

namespace zentor {

class DirectAccessFile {
 public:
  DirectAccessFile() = default;
  // Opens or creates the file. Throws FileError.
  void Open(platform::FileSystem& files, const std::string& path, std::size_t record_length,
            platform::OpenMode mode);
  bool IsOpen() const { return file_ != nullptr; }
  const std::string& path() const { return path_; }
  std::size_t record_length() const { return record_length_; }

  // Reads up to a record's length at the start of record `number`; returns the bytes that the file holds
  // there.
  std::size_t Read(std::int64_t number, std::span<std::byte> out);
  // Writes at the start of record `number`. The rest of an existing record stays as it is; a record that is
  // new at the file's end is filled up with zero bytes to its full length.
  void Write(std::int64_t number, std::span<const std::byte> bytes);
  std::int64_t RecordCount();  // whole and partial records in the file
  void Close();

 private:
  std::unique_ptr<platform::RandomAccessFile> file_;
  std::string path_;
  std::size_t record_length_ = 0;
};

}  // namespace zentor
