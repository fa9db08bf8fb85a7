#include "library.hpp"

#include <fmt/format.h>

#include <vector>

#include "error.hpp"
#include "text.hpp"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>
#endif

namespace kestrune::host {

namespace {

#ifdef _WIN32

std::string program_path() {
  std::vector<char> buffer(32768);
  const DWORD length = GetModuleFileNameA(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  return std::string(buffer.data(), length);
}

// A path without a folder is completed first: the altered search order wants an absolute one.
void* open_file(const std::string& path, std::string& reason) {
  std::vector<char> full(32768);
  const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  const std::string absolute = length > 0 && length < full.size() ? full.data() : path;
  void* handle =
      reinterpret_cast<void*>(LoadLibraryExA(absolute.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  if (handle == nullptr) {
    const DWORD code = GetLastError();
    reason = fmt::format("Windows error {}{}", code,
                         code == ERROR_MOD_NOT_FOUND    ? ", the file or one that it needs is missing"
                         : code == ERROR_BAD_EXE_FORMAT ? ", not a 32-bit library"
                                                        : "");
  }
  return handle;
}

void* find_symbol(void* handle, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(reinterpret_cast<HMODULE>(handle), name));
}

constexpr const char* kFileName = "KVGasThermo.dll";
constexpr char kSeparators[] = "\\/";

#else

std::string program_path() {
  std::vector<char> buffer(32768);
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  return std::string(buffer.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
}

void* open_file(const std::string& path, std::string& reason) {
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    reason = dlerror();
    if (reason.rfind(file + ": ", 0) == 0) reason.erase(0, file.size() + 2);
  }
  return handle;
}

void* find_symbol(void* handle, const char* name) {
  return dlsym(handle, name);
}

constexpr const char* kFileName = "libKVGasThermo.so";
constexpr char kSeparators[] = "/";

#endif

}  // namespace

std::string default_library_path() {
  const std::string program = program_path();
  const std::size_t slash = program.find_last_of(kSeparators);
  return slash == std::string::npos ? kFileName : program.substr(0, slash + 1) + kFileName;
}

Exports load_library(const std::string& path) {
  std::string reason;
  void* handle = open_file(path, reason);
  if (handle == nullptr) {
    throw InputError(
        fmt::format("cannot load the calculation library {} ({}). It belongs beside the program; "
                    "--library FILE names another one",
                    path, reason));
  }
  Exports exports;
  std::vector<std::string> missing;
#define KESTRUNE_HOST_RESOLVE(name)                                                    \
  exports.name = reinterpret_cast<decltype(exports.name)>(find_symbol(handle, #name)); \
  if (exports.name == nullptr) missing.push_back(#name);
  KESTRUNE_HOST_EXPORTS(KESTRUNE_HOST_RESOLVE)
#undef KESTRUNE_HOST_RESOLVE
  if (!missing.empty()) {
    throw InputError(
        fmt::format("{} is not the calculation library that this program needs; it does not export {}", path,
                    joined(missing, ", ")));
  }
  return exports;
}

}  // namespace kestrune::host
