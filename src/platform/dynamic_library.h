// Libraries loaded at run time.
#pragma once

#include <string>

namespace zentor::platform {

// A loaded library; unloaded by the destructor. Empty when it could not be loaded.
class DynamicLibrary {
 public:
  DynamicLibrary() = default;
  explicit DynamicLibrary(const std::string& path);  // with its folder; the system is not asked to search
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;
  DynamicLibrary(DynamicLibrary&& other) noexcept;
  DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
  ~DynamicLibrary();

  explicit operator bool() const { return handle_ != nullptr; }
  // The entry point of that name as a function pointer type F, or null when the library does not export it.
  template <typename F>
  F Find(const char* name) const {
    return reinterpret_cast<F>(Symbol(name));
  }

 private:
  void* Symbol(const char* name) const;
  void* handle_ = nullptr;
};

}  // namespace zentor::platform
