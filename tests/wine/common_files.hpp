// The registry value that names the common-files folder, set for a test and put back afterwards.
#ifndef KESTRUNE_TESTS_WINE_COMMON_FILES_HPP
#define KESTRUNE_TESTS_WINE_COMMON_FILES_HPP

#include <windows.h>

#include <string>
#include <vector>

class CommonFiles {
 public:
  CommonFiles() {
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion", 0, KEY_ALL_ACCESS, &key_);
    DWORD size = 0;
    had_ = RegQueryValueExA(key_, kName, nullptr, &type_, nullptr, &size) == ERROR_SUCCESS;
    before_.resize(size);
    if (had_) RegQueryValueExA(key_, kName, nullptr, &type_, before_.data(), &size);
  }
  ~CommonFiles() {
    if (had_)
      RegSetValueExA(key_, kName, 0, type_, before_.data(), static_cast<DWORD>(before_.size()));
    else
      remove();
    RegCloseKey(key_);
  }
  CommonFiles(const CommonFiles&) = delete;
  CommonFiles& operator=(const CommonFiles&) = delete;

  void remove() { RegDeleteValueA(key_, kName); }
  // The first size bytes of the text, which count its terminating zero or leave it out.
  void set(const std::string& text, std::size_t size, DWORD type = REG_SZ) {
    RegSetValueExA(key_, kName, 0, type, reinterpret_cast<const BYTE*>(text.c_str()), static_cast<DWORD>(size));
  }
  void set(const std::string& text) { set(text, text.size() + 1); }

 private:
  static constexpr const char* kName = "CommonFilesDir";
  HKEY key_ = nullptr;
  bool had_ = false;
  DWORD type_ = REG_SZ;
  std::vector<BYTE> before_;
};

#endif
