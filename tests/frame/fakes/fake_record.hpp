// What the stand-ins for the sibling libraries remember, so that a test can look at the calls they got.
#ifndef KESTRUNE_TESTS_FAKE_RECORD_HPP
#define KESTRUNE_TESTS_FAKE_RECORD_HPP

#include <cstdint>

struct FakeTools {
  int bracub_calls, solver_calls, set_calls, close_calls;
  std::int32_t count;  // of the last SetOutputFiles
  char names[7][261];  // trimmed
  std::int32_t units[7];
  bool existed[7];            // the file was there when its name was handed over
  bool write_files;           // writes a line to each file, as a solver that traces does
  std::int32_t trace_switch;  // as GANEW saw it
};

struct FakePure {
  // To be given back.
  std::int32_t status;
  double result;
  char unit[16];
  // Seen.
  const char* entry;
  std::int32_t cas;
  const void* arguments[8];
  std::int32_t option;
};

#endif
