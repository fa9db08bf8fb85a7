// The seam between the library and the operating system: all that differs between Windows, Linux and WebAssembly.
// platform_win32.cpp, platform_linux.cpp and platform_wasm.cpp implement it, each wholly inside #if; nothing else includes
// a system header. Texts go in and out as zero-terminated bytes. Nothing here throws, and unless a line
// says otherwise nothing here remembers anything.
#ifndef KESTRUNE_FRAME_PLATFORM_HPP
#define KESTRUNE_FRAME_PLATFORM_HPP

#include <cstddef>
#include <cstdint>

namespace kestrune::platform {

#if defined(_WIN32)
inline constexpr const char* kPureLibrary = "KVCmpdPureLite.dll";
inline constexpr const char* kToolsLibrary = "KVToolsLite.dll";
inline constexpr char kSeparator = '\\';
#elif defined(__EMSCRIPTEN__)
inline constexpr const char* kPureLibrary = "KVCmpdPureLite";
inline constexpr const char* kToolsLibrary = "KVToolsLite";
inline constexpr char kSeparator = '/';
#else
inline constexpr const char* kPureLibrary = "libKVCmpdPureLite.so";
inline constexpr const char* kToolsLibrary = "libKVToolsLite.so";
inline constexpr char kSeparator = '/';
#endif

// Sizes of the buffers that the callers bring.
inline constexpr std::size_t kRegistryCapacity = 256;
inline constexpr std::size_t kPathCapacity = 256;
inline constexpr std::size_t kModulePathCapacity = 1024;
inline constexpr std::size_t kTraceNameCapacity = 260;
inline constexpr std::size_t kErrorTextCapacity = 512;

// Handle of a loaded library; null = none. A path without a folder goes to the system's own search.
void* load_library(const char* path) noexcept;
// Address of an exported name; null when it is missing.
void* find_symbol(void* module, const char* name) noexcept;
// The library of that plain name in the folder of the module that this code was linked into; null when there is none,
// and the failure of the call before then stays the last one. Always null on Linux, where the search begins there.
void* load_beside(const char* name) noexcept;
// Gives one reference back; null is allowed.
void free_library(void* module) noexcept;

// True for a file that exists; false for a folder.
bool file_exists(const char* path) noexcept;

// Registry value CommonFilesDir of the machine. Writes the text and returns its length; false when the
// key or the value cannot be read, or does not fit. Always false on Linux.
bool common_files_folder(char buffer[kRegistryCapacity], std::size_t& length) noexcept;

// Folder of the module that this code was linked into, with its trailing separator. Returns the length,
// 0 when it is not known. Always 0 on Windows, where it comes last (load_beside).
std::size_t own_folder(char* buffer, std::size_t capacity) noexcept;

// File name of the host's executable. Returns its length; 0 on failure; capacity when it did not fit.
std::size_t host_executable(char* buffer, std::size_t capacity) noexcept;
// The host's executable as a module, to look for its exports. One reference, for free_library.
void* load_host_module(const char* path) noexcept;

// Folder for temporary files with its trailing separator. Returns its length; 0 on failure; a number of
// at least capacity when it did not fit (the buffer then holds nothing of use).
std::size_t temp_path(char* buffer, std::size_t capacity) noexcept;
// Makes a new empty file in the folder, its name beginning with the prefix (at most three letters).
bool temp_file_name(const char* folder, const char* prefix, char name[kTraceNameCapacity]) noexcept;

// Active window of the calling thread; may be null, always null on Linux.
void* active_window() noexcept;
// The system's message box; on Linux a line on standard error. Returns the button pressed.
std::int32_t system_message_box(void* owner, const char* text, const char* caption,
                                std::int32_t style) noexcept;

// Text of the last failure of load_library or find_symbol on this thread, from the system's own messages,
// at most kErrorTextCapacity - 1 characters. Call it before anything else can fail. Returns the length.
std::size_t last_error_text(char buffer[kErrorTextCapacity]) noexcept;

// Ends the calculation for good: a software exception that cannot be continued on Windows, where the host
// may catch it; std::terminate on Linux.
[[noreturn]] void raise_noncontinuable(std::uint32_t code) noexcept;

}  // namespace kestrune::platform

#endif
