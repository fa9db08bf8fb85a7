// The library as a host sees it: loaded at run time, called through its exported names.
#pragma once
#include <mutex>
#include <string>

#include "feeds.hpp"
#include "judge.hpp"
#include "kestrune/kvgasthermo.h"

namespace kestrune::sweep {

class Library {
 public:
  // Loads the shared library; empty: the one in the folder of this program. Throws std::runtime_error.
  explicit Library(const std::string& file);

  // Hands over the components and groups of one feed. Only one feed is in use at a time.
  void prepare(const Feed& feed, const Components& components);

  // Cold start of the liquid-vapour flash, or a warm one from the answer given. One caller at a time.
  Answer flash(const Feed& feed, double T, double P, const Answer* warm = nullptr);

 private:
  decltype(&FlashLVatTP) flash_ = nullptr;
  decltype(&ConvertPPR78GroupData) convert_ = nullptr;
  std::mutex one_caller_;
  std::vector<double> table_, buffers_[5];
  MixtureRecord record_{};
};

}  // namespace kestrune::sweep
