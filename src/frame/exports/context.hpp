// What the exports give the calculations: the group data of the process and what the sibling libraries do.
#ifndef KESTRUNE_FRAME_EXPORTS_CONTEXT_HPP
#define KESTRUNE_FRAME_EXPORTS_CONTEXT_HPP

#include "eos/context.hpp"
#include "frame/provider.hpp"
#include "frame/tools_bridge.hpp"

namespace kestrune::exports {

// Group data as ConvertPPR78GroupData left them, the one thing that outlives a call beside the frame's own. To be
// changed by one thread while no other one calculates.
inline constinit eos::GroupData group_data;

template <class Function, frame::ToolsEntry name>
Function bound_tool() noexcept {
  return frame::tools::entry<Function>(name);
}

inline constexpr eos::Tools kTools = {bound_tool<eos::CubicRoot, frame::ToolsEntry::BRACUB>,
                                      bound_tool<eos::RegressionLine, frame::ToolsEntry::REGLIN>,
                                      bound_tool<eos::LinearSystem, frame::ToolsEntry::MRSL01>,
                                      bound_tool<eos::KayRules, frame::ToolsEntry::CalcKayMR>,
                                      frame::pure_value,
                                      frame::pure_by_choice,
                                      frame::pure_correlation_info};

/* The context of a call with this record, which is not checked yet and may be null. */
inline eos::Context context_of(MixtureRecord* record) noexcept {
  return {record, &group_data, &kTools, record != nullptr ? record->trace_flag : 0};
}

}  // namespace kestrune::exports

#endif
