// The seam to Windows.

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdio>

#include "frame/platform.hpp"

namespace kestrune::platform {

namespace {

// Full path of a file beside this module, in wide characters: a folder may have letters that the code page of
// the system lacks. False when the module is not known or the path does not fit.
bool path_beside(const char* name, wchar_t* path, DWORD capacity) noexcept {
  HMODULE self = nullptr;
  const DWORD by_address =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (GetModuleHandleExW(by_address, reinterpret_cast<const wchar_t*>(&path_beside), &self) == 0) return false;
  DWORD length = GetModuleFileNameW(self, path, capacity);
  if (length == 0 || length >= capacity) return false;
  while (length > 0 && path[length - 1] != L'\\') --length;
  for (; *name != '\0' && length + 1 < capacity; ++name) path[length++] = static_cast<unsigned char>(*name);
  path[length] = L'\0';
  return *name == '\0';
}

}  // namespace

void* load_library(const char* path) noexcept {
  return LoadLibraryA(path);
}

void* load_beside(const char* name) noexcept {
  const DWORD before = GetLastError();
  wchar_t path[kModulePathCapacity];
  if (path_beside(name, path, kModulePathCapacity)) {
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
      return LoadLibraryW(path);
  }
  SetLastError(before);
  return nullptr;
}

void* find_symbol(void* module, const char* name) noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void free_library(void* module) noexcept {
  FreeLibrary(static_cast<HMODULE>(module));
}

bool file_exists(const char* path) noexcept {
  const DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool common_files_folder(char buffer[kRegistryCapacity], std::size_t& length) noexcept {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion", 0, KEY_READ, &key) !=
      ERROR_SUCCESS)
    return false;
  DWORD size = kRegistryCapacity;
  DWORD type = 0;
  const LSTATUS status =
      RegQueryValueExA(key, "CommonFilesDir", nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ) || size > kRegistryCapacity)
    return false;
  // The size counts the terminating zero, which a careless writer may have left out.
  length = size > 0 && buffer[size - 1] == '\0' ? size - 1 : size;
  return true;
}

std::size_t own_folder(char*, std::size_t) noexcept {
  return 0;
}

std::size_t host_executable(char* buffer, std::size_t capacity) noexcept {
  return GetModuleFileNameA(nullptr, buffer, static_cast<DWORD>(capacity));
}

void* load_host_module(const char* path) noexcept {
  return LoadLibraryA(path);
}

std::size_t temp_path(char* buffer, std::size_t capacity) noexcept {
  return GetTempPathA(static_cast<DWORD>(capacity), buffer);
}

bool temp_file_name(const char* folder, const char* prefix, char name[kTraceNameCapacity]) noexcept {
  return GetTempFileNameA(folder, prefix, 0, name) != 0;
}

void* active_window() noexcept {
  return GetActiveWindow();
}

std::int32_t system_message_box(void* owner, const char* text, const char* caption,
                                std::int32_t style) noexcept {
  return MessageBoxA(static_cast<HWND>(owner), text, caption, static_cast<UINT>(style));
}

std::size_t last_error_text(char buffer[kErrorTextCapacity]) noexcept {
  const DWORD code = GetLastError();
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                                      0, buffer, kErrorTextCapacity, nullptr);
  if (length != 0) return length;
  return static_cast<std::size_t>(std::snprintf(buffer, kErrorTextCapacity, "error %lu", code));
}

void raise_noncontinuable(std::uint32_t code) noexcept {
  RaiseException(code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  // Reached only when a debugger insists.
  TerminateProcess(GetCurrentProcess(), code);
  __builtin_unreachable();
}

}  // namespace kestrune::platform

#endif
