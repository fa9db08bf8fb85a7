// Everything that the frame remembers between calls: one record, one instance, of which nothing below the
// exports knows. What is not in here, nor the group data of frame/exports/general.cpp, is an argument or a local
// variable.
//
// The binding cells are atomic, so that two calls that bind the same entry at the same time both end with
// the same good address. The rest belongs to one thread at a time, as stated at each field.
#ifndef KESTRUNE_FRAME_STATE_HPP
#define KESTRUNE_FRAME_STATE_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "frame/entries.hpp"
#include "frame/platform.hpp"

namespace kestrune::frame {

// Resolved address of one entry; null until its first use.
using ProviderEntry = std::atomic<void*>;
// Handle of one sibling library; null until its first use.
using LibraryCell = std::atomic<void*>;

inline constexpr std::int32_t kTraceStackDepth = 32;

// Names and units of the trace files that are in use, innermost call last. One calling thread.
struct TraceStack {
  char names[kTraceStackDepth][platform::kTraceNameCapacity] = {};  // blank-padded
  std::int32_t units[kTraceStackDepth] = {};
  std::int32_t counter = 0;
};

inline constexpr std::size_t kFolderCapacity = 1024;

struct State {
  // Sibling libraries: handles, and one slot for each entry name.
  LibraryCell pure_library{nullptr};
  LibraryCell tools_library{nullptr};
  ProviderEntry pure_properties[static_cast<std::size_t>(PureProperty::count)] = {};
  ProviderEntry pure_checks[kPureCheckCount] = {};
  ProviderEntry pure_services[static_cast<std::size_t>(PureService::count)] = {};
  ProviderEntry tools_entries[static_cast<std::size_t>(ToolsEntry::count)] = {};

  // Folder in which the sibling libraries are looked for first, with its trailing separator.
  bool folder_override_set = false;
  char folder_override[kFolderCapacity] = {};

  TraceStack traces;

  // The host's executable and its TavrinMessageBox; null between messages. One calling thread.
  void* host_module = nullptr;
  void* host_message_box = nullptr;
};

extern State the_state;
inline State& state() noexcept {
  return the_state;
}

// As at the start of the process: frees both sibling libraries and forgets everything else.
void reset_state() noexcept;

}  // namespace kestrune::frame

#endif
