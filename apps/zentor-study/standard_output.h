// What the commands print: written by this program itself, so that a failure is not lost.
#pragma once

#include <array>
#include <streambuf>

namespace zentor::companion {

// Takes the place of std::cout's buffer as long as it lives. The first failure of a write is kept, and
// nothing is written behind it; sync leaves the reason in errno.
class StandardOutput final : public std::streambuf {
 public:
  StandardOutput();
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput() override;

 protected:
  int_type overflow(int_type character) override;
  int sync() override;

 private:
  std::streambuf* before_;
  std::array<char, 65536> pending_;
  int error_code_ = 0;
};

// Writes out what standard output still holds. Throws FileError when it has not taken everything.
void FlushOutput();

}  // namespace zentor::companion
