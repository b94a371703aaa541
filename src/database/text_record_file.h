// The listing: a formatted, sequential text file, one record per line.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace zentor {

// Lines end in one line feed; trailing blanks are kept. Lines are gathered in memory and written in large
// pieces, at Flush and at close; Flush at the end of every phase keeps what a killed run leaves behind
// readable.
class TextRecordFile {
 public:
  enum class Mode { kNew, kAppend };  // kNew replaces a file of that name

  TextRecordFile() = default;
  TextRecordFile(const TextRecordFile&) = delete;
  TextRecordFile& operator=(const TextRecordFile&) = delete;
  ~TextRecordFile();  // flushes; a write error at this point is lost, so callers flush before

  void Open(platform::FileSystem& files, const std::string& path, Mode mode);  // throws FileError
  bool IsOpen() const { return file_ != nullptr; }
  const std::string& path() const { return path_; }

  // All of these do nothing while the file is not open (a condition met before the listing exists).
  void Line(std::string_view text);  // one record as it stands
  void Blank(int count = 1);         // empty records
  void ListDirected(
      std::string_view text);           // one record, preceded by the leading blank of list-directed output
  void Append(std::string_view lines);  // ready records, each already ended by a line feed

  void Flush();  // throws FileError
  void Close();  // flushes and closes; throws FileError

 private:
  std::unique_ptr<platform::RandomAccessFile> file_;
  std::string path_;
  std::string pending_;
  std::uint64_t position_ = 0;
};

}  // namespace zentor
