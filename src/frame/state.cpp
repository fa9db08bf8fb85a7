// The one instance of all that is remembered.

#include "frame/state.hpp"

namespace kestrune::frame {

constinit State the_state;

void reset_state() noexcept {
  State& s = the_state;
  platform::free_library(s.pure_library.exchange(nullptr));
  platform::free_library(s.tools_library.exchange(nullptr));
  for (ProviderEntry& slot : s.pure_properties) slot = nullptr;
  for (ProviderEntry& slot : s.pure_checks) slot = nullptr;
  for (ProviderEntry& slot : s.pure_services) slot = nullptr;
  for (ProviderEntry& slot : s.tools_entries) slot = nullptr;
  s.folder_override_set = false;
  s.traces.counter = 0;
  s.host_module = nullptr;
  s.host_message_box = nullptr;
}

}  // namespace kestrune::frame
