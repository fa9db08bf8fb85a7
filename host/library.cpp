#include "library.hpp"

#include <fmt/format.h>

#include <cstdlib>
#include <iterator>
#include <vector>

#include "error.hpp"
#include "pure.hpp"
#include "text.hpp"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#elif defined(__EMSCRIPTEN__)
#include "kestrune/linked.h"
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
                         code == ERROR_MOD_NOT_FOUND ? ", the file or one that it needs is missing"
                         : code == ERROR_BAD_EXE_FORMAT
                             ? ", not a library for this program's kind of process (32 or 64 bit)"
                             : "");
  }
  return handle;
}

void* find_symbol(void* handle, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(reinterpret_cast<HMODULE>(handle), name));
}

void* open_installed(const char* name) {
  const char* common = std::getenv("CommonProgramFiles");
  const std::string installed = std::string(common != nullptr ? common : "") + "\\Tavrin\\Kestrune\\" + name;
  HMODULE handle = LoadLibraryA(installed.c_str());
  if (handle == nullptr) handle = LoadLibraryA(name);
  return reinterpret_cast<void*>(handle);
}

// The library asks for its own folder last.
void* find_sibling(const std::string& folder, const char* name, std::string& reason) {
  void* handle = open_installed(name);
  return handle != nullptr ? handle : open_file(folder + name, reason);
}

constexpr const char* kFileName = "KVGasThermo.dll";
constexpr const char* kPureName = "KVCmpdPureLite.dll";
constexpr const char* kToolsName = "KVToolsLite.dll";
constexpr char kSeparators[] = "\\/";

#elif defined(__EMSCRIPTEN__)

// The three libraries are linked into the module under their plain names.
std::string program_path() {
  return std::string();
}

void* open_file(const std::string& path, std::string& reason) {
  void* library = kv_linked_library(path.c_str());
  if (library == nullptr) reason = "not linked into this module";
  return library;
}

void* find_symbol(void* handle, const char* name) {
  return kv_linked_entry(handle, name);
}

void* find_sibling(const std::string&, const char* name, std::string& reason) {
  return open_file(name, reason);
}

constexpr const char* kFileName = "KVGasThermo";
constexpr const char* kPureName = "KVCmpdPureLite";
constexpr const char* kToolsName = "KVToolsLite";
constexpr char kSeparators[] = "/";

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

void* open_installed(const char* name) {
  return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

// The library asks for its own folder first.
void* find_sibling(const std::string& folder, const char* name, std::string& reason) {
  void* handle = open_file(folder + name, reason);
  return handle != nullptr ? handle : open_installed(name);
}

constexpr const char* kFileName = "libKVGasThermo.so";
constexpr const char* kPureName = "libKVCmpdPureLite.so";
constexpr const char* kToolsName = "libKVToolsLite.so";
constexpr char kSeparators[] = "/";

#endif

// Properties of the library of pure components: each has an entry of its name and a check of its range.
constexpr const char* kPureProperties[] = {"GasThermalConductivity",
                                           "GasViscosity",
                                           "HenryConstant",
                                           "IdealGasSpecificHeat",
                                           "LiquidDensity",
                                           "LiquidMolarVolume",
                                           "LiquidSpecificHeat",
                                           "LiquidThermalConductivity",
                                           "LiquidViscosity",
                                           "MeltingPressure",
                                           "SecondVirialCoefficient",
                                           "SolidDensity",
                                           "SolidMolarVolume",
                                           "SolidSpecificHeat",
                                           "SolidThermalConductivity",
                                           "SublimationPressure",
                                           "SurfaceTension",
                                           "VaporizationEnthalpy",
                                           "VaporPressure",
                                           "LiquidSpecificHeatInfiniteDilution"};
constexpr const char* kPureServices[] = {"IdealGasSpecificHeatIT_EX",
                                         "IdealGasSpecificHeatTIT_EX",
                                         "LiquidSpecificHeatIT_EX",
                                         "LiquidSpecificHeatTIT_EX",
                                         "SolidSpecificHeatIT_EX",
                                         "SolidSpecificHeatTIT_EX",
                                         "LiquidSpecificHeatInfiniteDilutionIT_EX",
                                         "LiquidSpecificHeatInfiniteDilutionTIT_EX",
                                         "StdVaporChemicalExergy_EX",
                                         "StdLiquidChemicalExergy_EX",
                                         "StdSolidChemicalExergy_EX",
                                         "AvailableCorrelations",
                                         "CorrelationInfo",
                                         "SetTempFolder",
                                         "SetThermoCodes",
                                         "KVCmpdPure_Free"};
constexpr const char* kTools[] = {
    "BRACUB", "CNEWTON", "CalcKUOP", "CalcKayMR",     "CalcSG", "CloseOutputFiles",
    "DGEFA",  "DGESL",   "GANEW",    "MCOLT7",        "MRINV",  "MRSL01",
    "MRSL02", "MeABP",   "REGLIN",   "SetOutputFiles"};

std::vector<std::string> exports_of_pure() {
  std::vector<std::string> names(std::begin(kPureServices), std::end(kPureServices));
  for (const std::string name : kPureProperties) {
    names.push_back(name + "_EX");
    names.push_back("Check" + name + "_EX");
  }
  return names;
}

// A sibling that the library needs, looked for where the library will: in its own folder, where an installation has it,
// by its bare name. It cannot go on without it or its exports, and says so by ending the program.
void* open_sibling(const std::string& library, const char* name, const std::vector<std::string>& exports) {
  const std::size_t slash = library.find_last_of(kSeparators);
  const std::string folder = slash == std::string::npos ? std::string() : library.substr(0, slash + 1);
  std::string reason;
  void* handle = find_sibling(folder, name, reason);
  if (handle == nullptr)
    throw InputError(fmt::format("{} needs {}, which cannot be loaded ({}). It belongs into the same folder",
                                 library, name, reason));
  std::size_t missing = 0;
  std::string first;
  for (const std::string& entry : exports)
    if (find_symbol(handle, entry.c_str()) == nullptr && missing++ == 0) first = entry;
  if (missing > 0)
    throw InputError(
        fmt::format("{} beside {} is another library or another version: it lacks {} of {} exports, "
                    "{} for one. Copy the three libraries from one build",
                    name, library, missing, exports.size(), first));
  return handle;
}

}  // namespace

std::string default_library_path() {
  const std::string program = program_path();
  const std::size_t slash = program.find_last_of(kSeparators);
  const std::string folder = slash == std::string::npos ? std::string() : program.substr(0, slash + 1);
#ifdef KESTRUNE_LIBRARY_FOLDER
  std::string installed = folder + KESTRUNE_LIBRARY_FOLDER + kFileName;
  if (access((folder + kFileName).c_str(), F_OK) != 0 && access(installed.c_str(), F_OK) == 0) return installed;
#endif
  return folder + kFileName;
}

std::vector<std::string> library_files(const std::string& path) {
  const std::string folder = path.substr(0, path.find_last_of(kSeparators) + 1);
  return {path, folder + kPureName, folder + kToolsName};
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
  open_sibling(path, kPureName, exports_of_pure());
  open_sibling(path, kToolsName, {std::begin(kTools), std::end(kTools)});
  return exports;
}

PureExports load_pure_library(const std::string& library_path) {
  void* handle = open_sibling(library_path, kPureName, exports_of_pure());
  PureExports exports{};
  for (const PurePropertyInfo& info : all_pure_properties())
    exports.properties[static_cast<std::size_t>(info.property)] =
        reinterpret_cast<KvPureProperty>(find_symbol(handle, (std::string(info.entry) + "_EX").c_str()));
  exports.info = reinterpret_cast<decltype(exports.info)>(find_symbol(handle, "CorrelationInfo"));
  return exports;
}

PetroleumTools load_petroleum_tools(const std::string& library_path) {
  void* handle = open_sibling(library_path, kToolsName, {std::begin(kTools), std::end(kTools)});
  PetroleumTools tools;
  tools.CalcKUOP = reinterpret_cast<decltype(tools.CalcKUOP)>(find_symbol(handle, "CalcKUOP"));
  tools.CalcSG = reinterpret_cast<decltype(tools.CalcSG)>(find_symbol(handle, "CalcSG"));
  tools.MeABP = reinterpret_cast<decltype(tools.MeABP)>(find_symbol(handle, "MeABP"));
  return tools;
}

}  // namespace kestrune::host
