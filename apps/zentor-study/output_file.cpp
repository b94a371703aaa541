#include "output_file.h"

#include <cerrno>
#include <filesystem>
#include <iostream>
#include <random>
#include <span>
#include <system_error>

namespace zentor::companion {

namespace {

constexpr std::size_t kPendingBytes = std::size_t{1} << 20U;

// The file that a name stands for: links are followed, so that the link stays and its target is replaced.
std::string Resolved(const std::string& path) {
  std::error_code error;
  const auto resolved = std::filesystem::canonical(path, error);
  return error ? path : resolved.string();
}

bool IsSpecial(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : target_(path) {
  if (path == "-") return;
  target_ = Resolved(path);
  if (IsSpecial(target_)) {
    errno = 0;
    special_.open(target_, std::ios::binary);
    if (!special_) throw platform::FileError(target_, "open", errno != 0 ? errno : EIO);
    return;
  }
  written_path_ = target_ + ".part-" + std::to_string(std::random_device()());
  file_ = platform::NativeFileSystem().Open(written_path_, platform::OpenMode::kReplace);
}

OutputFile::~OutputFile() {
  if (committed_ || !file_) return;
  std::error_code ignored;
  std::filesystem::remove(written_path_, ignored);
}

void OutputFile::Write(std::string_view bytes) {
  pending_ += bytes;
  if (pending_.size() >= kPendingBytes) Flush();
}

void OutputFile::Flush() {
  if (file_) {
    file_->WriteAt(position_, std::as_bytes(std::span(pending_)));
    position_ += pending_.size();
  } else {
    std::ostream& stream = special_.is_open() ? static_cast<std::ostream&>(special_) : std::cout;
    stream << pending_ << std::flush;
    if (!stream) throw platform::FileError(target_ == "-" ? "standard output" : target_, "write", EIO);
  }
  pending_.clear();
}

void OutputFile::Commit() {
  Flush();
  if (file_) {
    file_.reset();
    platform::NativeFileSystem().Rename(written_path_, target_);
  }
  committed_ = true;
}

void FlushOutput() {
  if (!std::cout.flush()) throw platform::FileError("standard output", "write", EIO);
}

}  // namespace zentor::companion
