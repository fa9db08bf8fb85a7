// What a call works with beside its arguments: the host's record, its group data, numerical tools, and whether a
// trace is written. Made by the exports and passed down; below them nothing is read from anywhere else.
#ifndef KESTRUNE_EOS_CONTEXT_HPP
#define KESTRUNE_EOS_CONTEXT_HPP

#include <cstdint>

#include "eos/group_data.hpp"
#include "kestrune/kvtoolslite.h"
#include "kestrune/records.h"

namespace kestrune::eos {

// Entries of the tools library, whose header says what they take.
using CubicRoot = decltype(&::BRACUB);       // a root of a cubic equation
using RegressionLine = decltype(&::REGLIN);  // through points, by least squares
using LinearSystem = decltype(&::MRSL01);    // solved in place
using KayRules = decltype(&::CalcKayMR);     // pseudo-critical constants of a mixture

// Where the tools come from: each gives the address of its own, never null, and finds it when it is first asked.
struct Tools {
  CubicRoot (*cubic_root)() noexcept;
  RegressionLine (*regression_line)() noexcept;
  LinearSystem (*linear_system)() noexcept;
  KayRules (*kay_rules)() noexcept;
};

// Nothing in here changes during a call, and copies are cheap.
struct Context {
  MixtureRecord* record = nullptr;    // components and settings; handed to the routines of the host
  const GroupData* groups = nullptr;  // null as without any
  const Tools* tools = nullptr;
  std::int32_t trace = 0;  // as the trace flag of the record; 0: none

  // For a flash inside another one, whose lines are no part of the trace.
  Context silent() const noexcept { return {record, groups, tools, 0}; }
};

}  // namespace kestrune::eos

#endif
