#include "library.hpp"

#include <fmt/format.h>

#include <cstdlib>
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

bool open_installed(const char* name) {
  const char* common = std::getenv("CommonProgramFiles");
  const std::string installed = std::string(common != nullptr ? common : "") + "\\Tavrin\\Kestrune\\" + name;
  return LoadLibraryA(installed.c_str()) != nullptr || LoadLibraryA(name) != nullptr;
}

constexpr const char* kFileName = "KVGasThermo.dll";
constexpr const char* kSiblings[] = {"KVCmpdPureLite.dll", "KVToolsLite.dll"};
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

bool open_installed(const char* name) {
  return dlopen(name, RTLD_NOW | RTLD_LOCAL) != nullptr;
}

constexpr const char* kFileName = "libKVGasThermo.so";
constexpr const char* kSiblings[] = {"libKVCmpdPureLite.so", "libKVToolsLite.so"};
constexpr char kSeparators[] = "/";

#endif

// The siblings that the library needs, looked for as it does: in its own folder, where an installation has them, by
// their bare names. It cannot go on without them, and says so by ending the program.
void check_siblings(const std::string& library) {
  const std::size_t slash = library.find_last_of(kSeparators);
  const std::string folder = slash == std::string::npos ? std::string() : library.substr(0, slash + 1);
  for (const char* name : kSiblings) {
    std::string reason;
    if (open_file(folder + name, reason) != nullptr || open_installed(name)) continue;
    throw InputError(fmt::format("{} needs {}, which cannot be loaded ({}). It belongs into the same folder",
                                 library, name, reason));
  }
}

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
  check_siblings(path);
  return exports;
}

}  // namespace kestrune::host
