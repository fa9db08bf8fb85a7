// Messages to the user, by the host's own box or the system's.

#include "frame/messages.hpp"

#include <algorithm>

#include "frame/state.hpp"
#include "kestrune/platform.h"

namespace kestrune::frame {

namespace {

constexpr std::size_t kTextCapacity = 4096;
constexpr std::size_t kCaptionCapacity = 256;

// The host's own box: owner window, text, caption and style as the system's, then a word of the caller.
using TavrinMessageBox = std::int32_t(KV_CALL*)(void* owner, const char* text, const char* caption,
                                                std::int32_t style, std::int32_t further);

void terminated_copy(const char* text, std::size_t length, char* out, std::size_t capacity) noexcept {
  *std::copy_n(text, std::min(length, capacity - 1), out) = '\0';
}

// Fills the two cells of the state; leaves what cannot be found null.
void find_host_box() noexcept {
  char path[platform::kModulePathCapacity];
  std::size_t length = platform::host_executable(path, sizeof path);
  if (length == 0 || length >= sizeof path) return;
  while (length > 0 && path[length - 1] == ' ') --length;
  path[length] = '\0';
  State& s = state();
  s.host_module = platform::load_host_module(path);
  if (s.host_module == nullptr) return;
  s.host_message_box = platform::find_symbol(s.host_module, "TavrinMessageBox");
}

}  // namespace

std::int32_t ShowLibraryMessage(void* const& owner, const char* text, std::size_t text_length,
                                const char* caption, std::size_t caption_length, const std::int32_t& style,
                                const std::int32_t& further) noexcept {
  char text_z[kTextCapacity];
  char caption_z[kCaptionCapacity];
  terminated_copy(text, text_length, text_z, sizeof text_z);
  terminated_copy(caption, caption_length, caption_z, sizeof caption_z);

  find_host_box();
  State& s = state();
  std::int32_t result;
  if (s.host_message_box != nullptr)
    result = reinterpret_cast<TavrinMessageBox>(s.host_message_box)(owner, text_z, caption_z, style, further);
  else
    result = platform::system_message_box(owner, text_z, caption_z, style);

  platform::free_library(s.host_module);
  s.host_module = nullptr;
  s.host_message_box = nullptr;
  return result;
}

}  // namespace kestrune::frame
