// The dynamic loader as the frame sees it: the test program is linked with --wrap, so that every call of
// dlopen, dlsym and dlclose by the library's objects passes through here.
#ifndef KESTRUNE_TESTS_LOADER_SPY_HPP
#define KESTRUNE_TESTS_LOADER_SPY_HPP

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "frame/state.hpp"

struct LoaderSpy {
  std::mutex lock;
  std::vector<std::string> opened;     // paths in order, "" for the program itself
  std::vector<std::string> looked_up;  // names in order
  std::atomic<int> references{0};      // opened and not yet closed
  void* host_box = nullptr;            // answer for TavrinMessageBox
  std::function<void()> before_open;   // called once, by the next dlopen before it begins

  void clear() {
    opened.clear();
    looked_up.clear();
    references = 0;
    host_box = nullptr;
    before_open = nullptr;
  }
};
LoaderSpy& loader_spy();

// Folder of the test program, with the stand-ins for both siblings beside it; ends in '/'.
std::string program_folder();

// Every test of the loader begins as a fresh process does.
inline void fresh_start() {
  kestrune::frame::reset_state();
  loader_spy().clear();
}

#endif
