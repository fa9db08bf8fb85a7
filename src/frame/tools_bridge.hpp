// Numerical tools from the sibling library KVToolsLite, bound on first use. The forwarding routines carry
// the names and the arguments of the entries (kvtoolslite.h), all by reference.
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

#define KV_TOOLS_FORWARD(name)                                \
  template <class... Arguments>                               \
  inline void name(Arguments... arguments) noexcept {         \
    entry<decltype(&::name)>(ToolsEntry::name)(arguments...); \
  }
KV_TOOLS_FORWARD(BRACUB)
KV_TOOLS_FORWARD(CalcKayMR)
KV_TOOLS_FORWARD(CalcKUOP)
KV_TOOLS_FORWARD(CalcSG)
KV_TOOLS_FORWARD(MeABP)
KV_TOOLS_FORWARD(DGEFA)
KV_TOOLS_FORWARD(DGESL)
KV_TOOLS_FORWARD(MRINV)
KV_TOOLS_FORWARD(MRSL01)
KV_TOOLS_FORWARD(MRSL02)
KV_TOOLS_FORWARD(REGLIN)
KV_TOOLS_FORWARD(MCOLT7)
#undef KV_TOOLS_FORWARD

// Factors a[lda * n] and solves a x = b (job 0) or its transpose. b[n] is replaced unless info is not 0.
void factor_and_solve(double* a, const std::int32_t* lda, const std::int32_t* n, std::int32_t* ipvt, double* b,
                      const std::int32_t* job, std::int32_t* info) noexcept;

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
