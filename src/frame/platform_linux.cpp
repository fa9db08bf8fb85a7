// The seam to Linux.

#if !defined(_WIN32) && !defined(__EMSCRIPTEN__)

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "frame/platform.hpp"

namespace kestrune::platform {

namespace {

// Copies what fits, zero-terminated; returns the length of the whole text.
std::size_t copy_text(char* buffer, std::size_t capacity, const char* text, std::size_t length) noexcept {
  if (capacity == 0) return length;
  const std::size_t fits = std::min(length, capacity - 1);
  std::memcpy(buffer, text, fits);
  buffer[fits] = '\0';
  return length;
}

}  // namespace

void* load_library(const char* path) noexcept {
  return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* load_beside(const char*) noexcept {
  return nullptr;
}

void* find_symbol(void* module, const char* name) noexcept {
  return dlsym(module, name);
}

void free_library(void* module) noexcept {
  if (module != nullptr) dlclose(module);
}

bool file_exists(const char* path) noexcept {
  struct stat data;
  return stat(path, &data) == 0 && !S_ISDIR(data.st_mode);
}

bool common_files_folder(char*, std::size_t&) noexcept {
  return false;
}

// The list of mappings has full paths; the loader knows a library under the name it was asked for, which
// means nothing after the host has changed its current folder.
std::size_t own_folder(char* buffer, std::size_t capacity) noexcept {
  const auto self = reinterpret_cast<std::uintptr_t>(&own_folder);
  std::FILE* maps = std::fopen("/proc/self/maps", "re");
  if (maps == nullptr) return 0;
  std::size_t length = 0;
  char line[PATH_MAX + 128];
  while (std::fgets(line, sizeof line, maps) != nullptr) {
    unsigned long first = 0, end = 0;
    if (std::sscanf(line, "%lx-%lx", &first, &end) != 2 || self < first || self >= end) continue;
    const char* path = std::strchr(line, kSeparator);
    const char* last = std::strrchr(line, kSeparator);
    if (path == nullptr) break;
    length = static_cast<std::size_t>(last - path) + 1;
    if (copy_text(buffer, capacity, path, length) >= capacity) length = 0;
    break;
  }
  std::fclose(maps);
  return length;
}

std::size_t host_executable(char* buffer, std::size_t capacity) noexcept {
  const ssize_t length = readlink("/proc/self/exe", buffer, capacity);
  if (length < 0) return 0;
  if (static_cast<std::size_t>(length) < capacity) buffer[length] = '\0';
  return static_cast<std::size_t>(length);
}

// The loader hands out the running program under a null name only, never under its path.
void* load_host_module(const char*) noexcept {
  return dlopen(nullptr, RTLD_NOW);
}

std::size_t temp_path(char* buffer, std::size_t capacity) noexcept {
  const char* folder = std::getenv("TMPDIR");
  if (folder == nullptr || *folder == '\0') folder = "/tmp";
  const std::size_t length = std::strlen(folder);
  if (length + 2 > capacity) return length + 2;
  if (access(folder, W_OK | X_OK) != 0) return 0;
  copy_text(buffer, capacity, folder, length);
  buffer[length] = kSeparator;
  buffer[length + 1] = '\0';
  return length + 1;
}

bool temp_file_name(const char* folder, const char* prefix, char name[kTraceNameCapacity]) noexcept {
  const int length = std::snprintf(name, kTraceNameCapacity, "%s%sXXXXXX", folder, prefix);
  if (length < 0 || static_cast<std::size_t>(length) >= kTraceNameCapacity) return false;
  const int file = mkstemp(name);
  if (file < 0) return false;
  close(file);
  return true;
}

void* active_window() noexcept {
  return nullptr;
}

std::int32_t system_message_box(void*, const char* text, const char* caption, std::int32_t) noexcept {
  std::fprintf(stderr, "%s: %s\n", caption, text);
  return 1;  // as an OK button
}

std::size_t last_error_text(char buffer[kErrorTextCapacity]) noexcept {
  const int code = errno;
  const char* text = dlerror();
  if (text == nullptr) text = std::strerror(code);
  return std::min(copy_text(buffer, kErrorTextCapacity, text, std::strlen(text)), kErrorTextCapacity - 1);
}

void raise_noncontinuable(std::uint32_t) noexcept {
  std::terminate();
}

}  // namespace kestrune::platform

#endif
