// What stands behind the window handle that the shell hands to other libraries. Plain C types: a library
// built by another compiler can use it.
#pragma once

#include <cstdint>

extern "C" {

// Valid from the call that hands it over until the library is told to leave or is unloaded.
struct ZentorWindowHandle {
  // Adds a message to the window's queue and returns at once. Any thread. message: a number of WindowMessage;
  // first, second: its parameters, e.g. 0x0111 (command), the command's number, 0.
  void (*post)(ZentorWindowHandle* self, std::uint32_t message, std::uint64_t first, std::int64_t second);
};

}  // extern "C"
