#include "output_file.h"

#include <cerrno>
#include <filesystem>
#include <iostream>
#include <random>
#include <span>
#include <system_error>

#include "standard_output.h"

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
  const std::string part = target_ + ".part-" + std::to_string(std::random_device()());
  file_ = platform::NativeFileSystem().Open(part, platform::OpenMode::kCreateNew);
  part_ = part;
}

OutputFile::~OutputFile() {
  if (part_.empty()) return;
  try {
    platform::NativeFileSystem().Remove(part_);
  } catch (const std::exception&) {
    // The command has failed already, for a reason of its own.
  }
}

void OutputFile::Write(std::string_view bytes) {
  pending_ += bytes;
  if (pending_.size() >= kPendingBytes) Flush();
}

void OutputFile::Flush() {
  if (file_) {
    file_->WriteAt(position_, std::as_bytes(std::span(pending_)));
    position_ += pending_.size();
  } else if (special_.is_open()) {
    errno = 0;
    special_ << pending_ << std::flush;
    if (!special_) throw platform::FileError(target_, "write", errno != 0 ? errno : EIO);
  } else {
    std::cout << pending_;
    FlushOutput();
  }
  pending_.clear();
}

void OutputFile::Commit() {
  Flush();
  if (file_) {
    file_.reset();
    platform::NativeFileSystem().Rename(part_, target_);
    part_.clear();
  }
}

}  // namespace zentor::companion
