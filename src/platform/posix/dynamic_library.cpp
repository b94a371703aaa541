#include "platform/dynamic_library.h"

#include <dlfcn.h>

#include <utility>

namespace zentor::platform {

DynamicLibrary::DynamicLibrary(const std::string& path)
    : handle_(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
  std::swap(handle_, other.handle_);
  return *this;
}

DynamicLibrary::~DynamicLibrary() {
  if (handle_ != nullptr) ::dlclose(handle_);
}

void* DynamicLibrary::Symbol(const char* name) const {
  return handle_ == nullptr ? nullptr : ::dlsym(handle_, name);
}

}  // namespace zentor::platform
