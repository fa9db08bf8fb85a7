// What the exports give the calculations.
#ifndef KESTRUNE_FRAME_EXPORTS_CONTEXT_HPP
#define KESTRUNE_FRAME_EXPORTS_CONTEXT_HPP

#include "eos/context.hpp"
#include "flash/feed.hpp"
#include "frame/provider.hpp"
#include "frame/tools_bridge.hpp"

namespace kestrune::exports {

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

/*
 * The context of a call: this record, which is not checked yet and may be null, the group data of the process and
 * the sibling libraries.
 */
eos::Context context_of(MixtureRecord* record) noexcept;

/* The feed of a flash by that, without routines and free water, which the wrappers fill in. */
inline flash::Feed feed_of(const double* z, MixtureRecord* record) noexcept {
  return {z, context_of(record)};
}

}  // namespace kestrune::exports

#endif
