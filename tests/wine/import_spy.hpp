// The system calls of the frame, seen and bent: the import table of the test program, which holds the
// library's own objects, is pointed at these functions while an ImportSpy lives.
#ifndef KESTRUNE_TESTS_WINE_IMPORT_SPY_HPP
#define KESTRUNE_TESTS_WINE_IMPORT_SPY_HPP

#include <windows.h>

#include <string>
#include <vector>

struct ImportSpy {
  ImportSpy();
  ~ImportSpy();

  std::vector<std::string> loaded;     // paths in order
  std::vector<std::string> looked_up;  // names in order
  int references = 0;                  // modules loaded and not yet freed
  int free_calls = 0;                  // FreeLibrary of null included
  int keys_opened = 0, keys_closed = 0;
  std::vector<std::string> temporary_files;

  // System message boxes; none is shown.
  int boxes = 0;
  HWND owner = nullptr;
  std::string text, caption;
  UINT style = 0;

  // What the system is made to answer.
  std::string hidden_name;                                     // GetProcAddress finds all but this
  enum { real, fails, full } module_name = real;               // GetModuleFileNameA
  enum { temp_real, temp_fails, temp_long } temp = temp_real;  // GetTempPathA
};

#endif
