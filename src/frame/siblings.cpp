// Where a sibling library lies, how it is bound, and how a call ends without it.

#include "frame/siblings.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "frame/messages.hpp"

namespace kestrune::frame {

namespace {

#if defined(_WIN32)
constexpr std::string_view kSiblingFolder = "\\Tavrin\\Kestrune\\";
static_assert(kSiblingFolder.size() == 17);
#endif

// Joins the parts into a zero-terminated path; false when it does not fit.
bool join(char* path, std::size_t capacity, std::string_view folder, std::string_view middle,
          std::string_view name) noexcept {
  if (folder.size() + middle.size() + name.size() >= capacity) return false;
  char* end = std::copy(folder.begin(), folder.end(), path);
  end = std::copy(middle.begin(), middle.end(), end);
  end = std::copy(name.begin(), name.end(), end);
  *end = '\0';
  return true;
}

// Path of the library in the folder where an installation has it; false when it is not there.
bool installed_path(const char* name, char path[platform::kModulePathCapacity]) noexcept {
#if defined(_WIN32)
  char folder[platform::kRegistryCapacity] = " ";
  std::size_t length = 1;
  if (!platform::common_files_folder(folder, length)) {
    folder[0] = ' ';
    length = 1;
  }
  const bool fits = join(path, platform::kPathCapacity, {folder, length}, kSiblingFolder, name);
#else
  char folder[platform::kModulePathCapacity];
  const std::size_t length = platform::own_folder(folder, sizeof folder);
  const bool fits = length > 0 && join(path, platform::kModulePathCapacity, {folder, length}, "", name);
#endif
  return fits && platform::file_exists(path);
}

// Shows the name that failed with the system's reason, then ends the call.
[[noreturn]] void provider_failure(const char* name) noexcept {
  char reason[platform::kErrorTextCapacity];
  const std::size_t reason_length = platform::last_error_text(reason);
  char text[2 * platform::kErrorTextCapacity];
  const std::size_t name_length = std::min(std::strlen(name), sizeof text - reason_length - 2);
  char* end = std::copy_n(name, name_length, text);
  end = std::copy_n(": ", 2, end);
  end = std::copy_n(reason, reason_length, end);
  constexpr std::string_view caption = "Error";
  ShowLibraryMessage(platform::active_window(), text, static_cast<std::size_t>(end - text), caption.data(),
                     caption.size(), kMessageStyleError, 1);
  platform::raise_noncontinuable(kProviderException);
}

// The handle in the cell, loading the library when the cell is empty. Two calls that load it at the same
// time share the handle of the first; the second gives its reference back.
void* bind_library(const char* library, LibraryCell& handle) noexcept {
  void* module = handle.load(std::memory_order_acquire);
  if (module != nullptr) return module;
  module = LoadSiblingLibrary(library);
  if (module == nullptr) provider_failure(library);
  void* first = nullptr;
  if (handle.compare_exchange_strong(first, module, std::memory_order_acq_rel)) return module;
  platform::free_library(module);
  return first;
}

}  // namespace

void* LoadSiblingLibrary(const char* name) noexcept {
  const State& s = state();
  char path[kFolderCapacity + platform::kPathCapacity];
  if (s.folder_override_set && join(path, sizeof path, s.folder_override, "", name) &&
      platform::file_exists(path))
    return platform::load_library(path);
  if (installed_path(name, path)) return platform::load_library(path);
  void* module = platform::load_library(name);
  return module != nullptr ? module : platform::load_beside(name);
}

bool SetLibraryFolder(const char* text, std::size_t length) noexcept {
  while (length > 0 && text[length - 1] == ' ') --length;
  if (length + 2 > kFolderCapacity) return false;
  State& s = state();
  std::copy_n(text, length, s.folder_override);
  s.folder_override[length] = platform::kSeparator;
  s.folder_override[length + 1] = '\0';
  s.folder_override_set = true;
  return true;
}

void* BindProviderEntry(const char* library, const char* entry, LibraryCell& handle,
                        ProviderEntry& slot) noexcept {
  void* address = slot.load(std::memory_order_acquire);
  if (address != nullptr) return address;
  void* module = bind_library(library, handle);
  address = platform::find_symbol(module, entry);
  if (address == nullptr) provider_failure(entry);
  slot.store(address, std::memory_order_release);
  return address;
}

void ReleaseProviders() noexcept {
  State& s = state();
  void* module = s.tools_library.load(std::memory_order_acquire);
  if (module == nullptr) return;
  platform::free_library(module);
  s.tools_library.store(nullptr, std::memory_order_release);
  for (ProviderEntry& slot : s.tools_entries) slot.store(nullptr, std::memory_order_release);
}

}  // namespace kestrune::frame
