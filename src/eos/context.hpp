// What a call works with beside its arguments: the host's record, its group data, what the sibling libraries do,
// and whether a trace is written. Made by the exports and passed down; below them nothing is read from anywhere else.
#ifndef KESTRUNE_EOS_CONTEXT_HPP
#define KESTRUNE_EOS_CONTEXT_HPP

#include <cstdint>

#include "eos/group_data.hpp"
#include "frame/entries.hpp"
#include "kestrune/kvtoolslite.h"
#include "kestrune/records.h"
#include "kestrune/status.h"

namespace kestrune::eos {

// Entries of the tools library, whose header says what they take.
using CubicRoot = decltype(&::BRACUB);       // a root of a cubic equation
using RegressionLine = decltype(&::REGLIN);  // through points, by least squares
using LinearSystem = decltype(&::MRSL01);    // solved in place
using KayRules = decltype(&::CalcKayMR);     // pseudo-critical constants of a mixture

/*
 * What the two sibling libraries do for the calculations. Each library is looked for when it is first needed.
 * The first four give the address of a tool, never null, which a loop fetches once.
 */
struct Tools {
  CubicRoot (*cubic_root)() noexcept;
  RegressionLine (*regression_line)() noexcept;
  LinearSystem (*linear_system)() noexcept;
  KayRules (*kay_rules)() noexcept;
  // A property of a pure component in its working unit; arguments and statuses as of pure_value, pure_by_choice
  // and pure_correlation_info of frame/provider.hpp.
  double (*pure_value)(frame::PureProperty property, const std::int32_t& cas, const double& T, const double& a,
                       const double& b, StatusCode& status) noexcept;
  StatusCode (*pure_by_choice)(frame::PureProperty property, const std::int32_t* cas, const double* T,
                               const double* a, const double* b, double* result, char* unit,
                               StatusCode* status) noexcept;
  StatusCode (*pure_range)(const std::int32_t* cas, const std::int32_t* property, const std::int32_t* equation,
                           double* T_min, double* T_max, char* unit, char* source) noexcept;
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
