#include "import_spy.hpp"

#include <cstring>

namespace {
ImportSpy* spy = nullptr;
}

// Slots of the import table, by the names that the linker gives them.
#define SPIED(X)            \
  X(LoadLibraryA, 4)        \
  X(FreeLibrary, 4)         \
  X(GetProcAddress, 8)      \
  X(GetModuleFileNameA, 12) \
  X(RegOpenKeyExA, 20)      \
  X(RegCloseKey, 4)         \
  X(GetTempPathA, 8)        \
  X(GetTempFileNameA, 16)   \
  X(MessageBoxA, 16)
#define DECLARE(name, bytes)                                              \
  extern decltype(&name) slot_##name __asm__("__imp__" #name "@" #bytes); \
  static decltype(&name) real_##name;
SPIED(DECLARE)
#undef DECLARE

namespace spied {

HMODULE WINAPI LoadLibraryA(LPCSTR path) {
  spy->loaded.emplace_back(path);
  HMODULE module = real_LoadLibraryA(path);
  const DWORD error = GetLastError();
  if (module != nullptr) ++spy->references;
  SetLastError(error);
  return module;
}
WINBOOL WINAPI FreeLibrary(HMODULE module) {
  ++spy->free_calls;
  if (module != nullptr) --spy->references;
  return real_FreeLibrary(module);
}
FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name) {
  spy->looked_up.emplace_back(name);
  if (spy->hidden_name == name) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  return real_GetProcAddress(module, name);
}
DWORD WINAPI GetModuleFileNameA(HMODULE module, LPSTR name, DWORD size) {
  if (spy->module_name == ImportSpy::fails) return 0;
  if (spy->module_name == ImportSpy::full) {
    std::memset(name, 'x', size);
    return size;
  }
  return real_GetModuleFileNameA(module, name, size);
}
LSTATUS WINAPI RegOpenKeyExA(HKEY key, LPCSTR name, DWORD options, REGSAM access, PHKEY result) {
  ++spy->keys_opened;
  return real_RegOpenKeyExA(key, name, options, access, result);
}
LSTATUS WINAPI RegCloseKey(HKEY key) {
  ++spy->keys_closed;
  return real_RegCloseKey(key);
}
DWORD WINAPI GetTempPathA(DWORD size, LPSTR folder) {
  if (spy->temp == ImportSpy::temp_fails) return 0;
  if (spy->temp == ImportSpy::temp_long) return size + 20;
  return real_GetTempPathA(size, folder);
}
UINT WINAPI GetTempFileNameA(LPCSTR folder, LPCSTR prefix, UINT unique, LPSTR name) {
  const UINT result = real_GetTempFileNameA(folder, prefix, unique, name);
  spy->temporary_files.emplace_back(name);
  return result;
}
int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
  ++spy->boxes;
  spy->owner = owner;
  spy->text = text;
  spy->caption = caption;
  spy->style = style;
  return IDCANCEL;
}

}  // namespace spied

namespace {

template <class Function>
void set(Function& slot, Function value) {
  DWORD before;
  VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &before);
  slot = value;
  VirtualProtect(&slot, sizeof slot, before, &before);
}

}  // namespace

ImportSpy::ImportSpy() {
  spy = this;
#define REPLACE(name, bytes) \
  real_##name = slot_##name; \
  set(slot_##name, &spied::name);
  SPIED(REPLACE)
#undef REPLACE
}

ImportSpy::~ImportSpy() {
#define RESTORE(name, bytes) set(slot_##name, real_##name);
  SPIED(RESTORE)
#undef RESTORE
  spy = nullptr;
}
