#include "database/text_record_file.h"

#include <array>
#include <cstddef>
#include <exception>
#include <span>
#include <utility>

namespace zentor {

namespace {
constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;
}

TextRecordFile::~TextRecordFile() {
  try {
    Flush();
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): nobody is left who could be told
  }
}

void TextRecordFile::Open(platform::FileSystem& files, const std::string& path, Mode mode) {
  Close();
  const bool append = mode == Mode::kAppend;
  auto file = files.Open(path, append ? platform::OpenMode::kReadWriteCreate : platform::OpenMode::kReplace);
  const std::uint64_t size = append ? file->Size() : 0;
  pending_.clear();
  if (size > 0) {
    std::array<std::byte, 1> last{};
    file->ReadAt(size - 1, last);
    if (last[0] != std::byte{'\n'}) pending_.push_back('\n');
  }
  position_ = size;
  path_ = path;
  file_ = std::move(file);
}

void TextRecordFile::Line(std::string_view text) {
  if (!IsOpen()) return;
  pending_.append(text).push_back('\n');
  if (pending_.size() >= kPieceBytes) Flush();
}

void TextRecordFile::Blank(int count) {
  for (int i = 0; i < count; ++i) Line({});
}

void TextRecordFile::ListDirected(std::string_view text) {
  if (!IsOpen()) return;
  pending_.push_back(' ');
  Line(text);
}

void TextRecordFile::Append(std::string_view lines) {
  if (!IsOpen()) return;
  pending_.append(lines);
  if (pending_.size() >= kPieceBytes) Flush();
}

void TextRecordFile::Flush() {
  if (!IsOpen() || pending_.empty()) return;
  file_->WriteAt(position_, std::as_bytes(std::span(pending_)));
  position_ += pending_.size();
  pending_.clear();
}

void TextRecordFile::Close() {
  Flush();
  file_.reset();
}

}  // namespace zentor
