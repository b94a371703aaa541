#include "standard_output.h"

#include <cerrno>
#include <iostream>
#include <span>

#include "platform/files.h"
#include "platform/system.h"

namespace zentor::companion {

StandardOutput::StandardOutput() : before_(std::cout.rdbuf(this)) {
  setp(pending_.data(), pending_.data() + pending_.size());
}

StandardOutput::~StandardOutput() {
  StandardOutput::sync();
  std::cout.rdbuf(before_);
}

StandardOutput::int_type StandardOutput::overflow(int_type character) {
  if (sync() != 0) return traits_type::eof();
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  return sputc(traits_type::to_char_type(character));
}

int StandardOutput::sync() {
  const std::span<const char> bytes(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  if (error_code_ == 0 && !bytes.empty()) {
    error_code_ = platform::WriteStandardOutput(std::as_bytes(bytes));
  }
  setp(pending_.data(), pending_.data() + pending_.size());
  errno = error_code_;
  return error_code_ == 0 ? 0 : -1;
}

void FlushOutput() {
  // Past the stream, which asks its buffer for nothing once a write has failed.
  errno = 0;
  const bool taken = std::cout.rdbuf()->pubsync() == 0;
  if (!taken || !std::cout) throw platform::FileError("standard output", "write", errno != 0 ? errno : EIO);
}

}  // namespace zentor::companion
