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

OutputFile::Part::~Part() {
  if (path.empty()) return;
  try {
    platform::NativeFileSystem().Remove(path);
  } catch (const std::exception&) {
    // The command has failed already, for a reason of its own.
  }
}

OutputFile::OutputFile(const std::string& path) : target_(path) {
  if (path == "-") return;
  target_ = Resolved(path);
  if (IsSpecial(target_)) {
    errno = 0;
    special_.open(target_, std::ios::binary);
    if (!special_) throw platform::FileError(target_, "open", errno != 0 ? errno : EIO);
    return;
  }
  part_.path = target_ + ".part-" + std::to_string(std::random_device()());
  try {
    file_ = platform::NativeFileSystem().Open(part_.path, platform::OpenMode::kCreateNew);
  } catch (const platform::FileError&) {
    part_.path.clear();  // whoever has a file of that name keeps it
    throw;
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
    platform::NativeFileSystem().Rename(part_.path, target_);
    part_.path.clear();
  }
}

}  // namespace zentor::companion
