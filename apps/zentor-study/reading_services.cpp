#include "reading_services.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "platform/system.h"
#include "study_files.h"

namespace zentor::companion {

namespace {

using platform::OpenMode;
using platform::RandomAccessFile;

class MemoryFile final : public RandomAccessFile {
 public:
  explicit MemoryFile(std::shared_ptr<std::vector<std::byte>> content) : content_(std::move(content)) {}
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) override {
    if (offset >= content_->size()) return 0;
    const std::size_t count = std::min<std::uint64_t>(out.size(), content_->size() - offset);
    std::memcpy(out.data(), content_->data() + offset, count);
    return count;
  }
  void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    content_->resize(std::max<std::uint64_t>(content_->size(), offset + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), content_->begin() + static_cast<std::ptrdiff_t>(offset));
  }
  std::uint64_t Size() override { return content_->size(); }

 private:
  std::shared_ptr<std::vector<std::byte>> content_;
};

}  // namespace

std::unique_ptr<RandomAccessFile> MemoryOverlay::Open(const std::string& path, OpenMode mode) {
  const bool creates = mode == OpenMode::kReplace || (mode == OpenMode::kReadWriteCreate && !Exists(path));
  if (creates) created_[path] = std::make_shared<std::vector<std::byte>>();
  const auto found = created_.find(path);
  if (found != created_.end() && found->second) return std::make_unique<MemoryFile>(found->second);
  return ReadOnlyFiles().Open(path, mode);
}

bool MemoryOverlay::Exists(const std::string& path) {
  const auto found = created_.find(path);
  return found != created_.end() ? found->second != nullptr : ReadOnlyFiles().Exists(path);
}

void MemoryOverlay::Remove(const std::string& path) { created_[path] = nullptr; }

void MemoryOverlay::Rename(const std::string& from, const std::string& to) {
  const auto found = created_.find(from);
  if (found == created_.end()) return;
  created_[to] = found->second;
  created_[from] = nullptr;
}

Answer ReadingServices::AskUser(int message, std::span<const float> arguments, BoxStyle) {
  const bool is_number = arguments.size() == 1;
  reason_ = fmt::format("the solver would stop with message {}{}", message,
                        is_number ? fmt::format(" for number {:g}", arguments[0]) : "");
  return Answer::kOk;
}

Answer ReadingServices::AskUserText(std::string_view text, BoxStyle) {
  reason_ = text;
  return Answer::kOk;
}

std::uint64_t ReadingServices::LargestBlock() { return platform::AvailableMemory(); }

bool ReadingServices::StudyFileExistsIn(Extension extension, int buffer) {
  return buffer == 0 && StudyFileExists(extension);
}

}  // namespace zentor::companion
