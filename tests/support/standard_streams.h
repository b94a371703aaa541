// Standard input of a test's own.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string_view>

namespace zentor::test {

// While it lives, standard input is a pipe that holds the text; `open`: its other end stays open, as if
// somebody might still write something.
class StandardInput {
 public:
  explicit StandardInput(std::string_view text, bool open = false) : saved_(::dup(STDIN_FILENO)) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    static_cast<void>(!::write(ends[1], text.data(), text.size()));
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    if (open) {
      other_end_ = ends[1];
    } else {
      ::close(ends[1]);
    }
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;
  ~StandardInput() {
    if (other_end_ >= 0) ::close(other_end_);
    ::dup2(saved_, STDIN_FILENO);
    ::close(saved_);
  }

 private:
  int saved_;
  int other_end_ = -1;
};

}  // namespace zentor::test
