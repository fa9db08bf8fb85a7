// The seam to WebAssembly: a module has no loader, no file and no window. The siblings are linked in; a message goes to
// standard error, which is what the module's owner makes of it.

#if defined(__EMSCRIPTEN__)

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "frame/platform.hpp"
#include "kestrune/linked.h"

namespace kestrune::platform {

void* load_library(const char* path) noexcept {
  return kv_linked_library(path);
}

void* load_beside(const char*) noexcept {
  return nullptr;
}

void* find_symbol(void* module, const char* name) noexcept {
  return module != nullptr ? kv_linked_entry(module, name) : nullptr;
}

void free_library(void*) noexcept {}

bool file_exists(const char*) noexcept {
  return false;
}

bool common_files_folder(char*, std::size_t&) noexcept {
  return false;
}

std::size_t own_folder(char*, std::size_t) noexcept {
  return 0;
}

std::size_t host_executable(char*, std::size_t) noexcept {
  return 0;
}

void* load_host_module(const char*) noexcept {
  return nullptr;
}

std::size_t temp_path(char*, std::size_t) noexcept {
  return 0;
}

bool temp_file_name(const char*, const char*, char*) noexcept {
  return false;
}

void* active_window() noexcept {
  return nullptr;
}

std::int32_t system_message_box(void*, const char* text, const char* caption, std::int32_t) noexcept {
  std::fprintf(stderr, "%s: %s\n", caption, text);
  return 1;  // as an OK button
}

std::size_t last_error_text(char buffer[kErrorTextCapacity]) noexcept {
  constexpr char text[] = "not linked into this module";
  static_assert(sizeof text <= kErrorTextCapacity);
  std::copy_n(text, sizeof text, buffer);
  return sizeof text - 1;
}

// A trap: the owner of the module sees a RuntimeError.
void raise_noncontinuable(std::uint32_t) noexcept {
  __builtin_trap();
}

}  // namespace kestrune::platform

#endif
