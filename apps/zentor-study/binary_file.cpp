#include "binary_file.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "database/bytes.h"
#include "services/faults.h"

namespace zentor::companion {

namespace {

constexpr std::uint64_t kWindowBytes = std::uint64_t{1} << 16U;

}  // namespace

BinaryFile::BinaryFile(std::string path)
    : path_(std::move(path)),
      file_(platform::NativeFileSystem().Open(path_, platform::OpenMode::kReadOnly)),
      size_(file_->Size()) {}

void BinaryFile::Fault(std::string_view place, std::string_view found, std::string_view wanted) const {
  throw InputFault(path_, std::string(place), std::string(found), std::string(wanted));
}

void BinaryFile::Read(std::uint64_t offset, std::span<std::byte> out, std::string_view place) {
  if (!Holds(offset, out.size())) {
    Fault(place, "at byte " + std::to_string(offset) + " with " + std::to_string(out.size()) + " bytes",
          "a place inside the " + std::to_string(size_) + " bytes of the file");
  }
  if (out.size() > kWindowBytes / 2) {
    if (file_->ReadAt(offset, out) < out.size()) Fault(place, "cut", "a file that nobody shortens");
    return;
  }
  const bool inside = offset >= window_start_ && offset + out.size() <= window_start_ + window_.size();
  if (!inside) {
    window_.resize(static_cast<std::size_t>(std::min(kWindowBytes, size_ - offset)));
    window_.resize(file_->ReadAt(offset, window_));
    window_start_ = offset;
    if (window_.size() < out.size()) Fault(place, "cut", "a file that nobody shortens");
  }
  if (!out.empty()) std::memcpy(out.data(), window_.data() + (offset - window_start_), out.size());
}

std::int32_t BinaryFile::Int(std::uint64_t offset, std::string_view place) {
  std::array<std::byte, 4> bytes{};
  Read(offset, bytes, place);
  return LoadInt(bytes.data());
}

std::int64_t BinaryFile::Int64(std::uint64_t offset, std::string_view place) {
  std::array<std::byte, 8> bytes{};
  Read(offset, bytes, place);
  return LoadInt64(bytes.data());
}

float BinaryFile::Real(std::uint64_t offset, std::string_view place) {
  std::array<std::byte, 4> bytes{};
  Read(offset, bytes, place);
  return LoadReal(bytes.data());
}

std::vector<std::int32_t> BinaryFile::Ints(std::uint64_t offset, std::uint64_t count,
                                           std::string_view place) {
  if (count > size_ / 4) {
    Fault(place, std::to_string(count) + " words",
          "at most " + std::to_string(size_ / 4) + ", the words of the file");
  }
  std::vector<std::int32_t> values(static_cast<std::size_t>(count));
  Read(offset, std::as_writable_bytes(std::span(values)), place);
  return values;
}

std::vector<float> BinaryFile::Reals(std::uint64_t offset, std::uint64_t count, std::string_view place) {
  if (count > size_ / 4) {
    Fault(place, std::to_string(count) + " words",
          "at most " + std::to_string(size_ / 4) + ", the words of the file");
  }
  std::vector<float> values(static_cast<std::size_t>(count));
  Read(offset, std::as_writable_bytes(std::span(values)), place);
  return values;
}

}  // namespace zentor::companion
