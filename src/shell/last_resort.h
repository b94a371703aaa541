// What is left to do where the process is ended from within.
#pragma once

#include <functional>
#include <string>

namespace zentor {

// As long as it lives, the run ends in order also where no exception can leave: the runtime library of the
// solver's threads ends the process when the system gives it no memory or no thread, and so does a destructor
// that gets no memory. One run per process.
class LastResort {
 public:
  // keep: closes what the run has open, from any thread, as far as that can be done without memory; line:
  // what standard error is told, ended by a line feed.
  LastResort(std::string line, std::function<void()> keep);
  LastResort(const LastResort&) = delete;
  LastResort& operator=(const LastResort&) = delete;
  ~LastResort();

  // Ends the process.
  [[noreturn]] void End() noexcept;

 private:
  std::string line_;
  std::function<void()> keep_;
};

}  // namespace zentor
