#include "platform/dynamic_library.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace zentor::platform {
namespace {

// Whether the file has all that its headers say is to be loaded. The system maps a library without looking,
// and a process ends where it reaches for what a file cut short does not have.
bool IsWhole(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) return false;
  std::ifstream file(path, std::ios::binary);
  ElfW(Ehdr) header{};
  if (!file.read(reinterpret_cast<char*>(&header), sizeof header)) return false;
  file.seekg(static_cast<std::streamoff>(header.e_phoff));
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    ElfW(Phdr) part{};
    if (!file.read(reinterpret_cast<char*>(&part), sizeof part)) return false;
    if (part.p_offset > size || part.p_filesz > size - part.p_offset) return false;
  }
  return true;
}

// The system would search for a name without a folder.
void* Open(const std::string& path) {
  const bool has_folder = path.find('/') != std::string::npos;
  return has_folder && IsWhole(path) ? ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr;
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& path) : handle_(Open(path)) {}

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
