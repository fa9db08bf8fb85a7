// Numerical tools from the sibling library KVToolsLite, bound on first use; kvtoolslite.h has their arguments.
#ifndef KESTRUNE_FRAME_TOOLS_BRIDGE_HPP
#define KESTRUNE_FRAME_TOOLS_BRIDGE_HPP

#include <cstddef>
#include <cstdint>

#include "frame/state.hpp"
#include "kestrune/kvtoolslite.h"

namespace kestrune::frame::tools {

// Binds an entry of the tools library and returns its address, never null.
void* bind(ToolsEntry entry) noexcept;

// Address of an entry: one atomic load once it is bound.
template <class Function>
inline Function entry(ToolsEntry name) noexcept {
  void* address = state().tools_entries[static_cast<std::size_t>(name)].load(std::memory_order_acquire);
  if (address == nullptr) [[unlikely]]
    address = bind(name);
  return reinterpret_cast<Function>(address);
}

/*
 * The solvers with their trace files: one temporary file for each unit asked for, handed to the tools
 * library for the call and deleted afterwards. Without a usable folder for temporary files the files have
 * fixed names ("KVTools.CNEWTON.IOERR.log" and the like) in the current folder. One calling thread.
 *
 * units[7] of CNEWTON: error messages, diagnostics, first output, function values, Jacobian, solution,
 * unknowns; 0 = none. GANEW traces when trace_switch and unit are both not 0; else it clears trace_switch.
 */
void CNEWTON(const std::int32_t* n, double* x, double* f, KvResidual residual, void* user,
             const double* tolerance, const std::int32_t* itemax, const std::int32_t* units,
             std::int32_t* iterations, std::int32_t* status) noexcept;
void GANEW(const std::int32_t* n, double* x, double* f, KvResidual residual, void* user,
           const double* tolerance, const std::int32_t* itemax, std::int32_t* trace_switch,
           const std::int32_t* unit, std::int32_t* iterations, std::int32_t* status) noexcept;

}  // namespace kestrune::frame::tools

#endif
