// The one way in which the library speaks to the user.
#ifndef KESTRUNE_FRAME_MESSAGES_HPP
#define KESTRUNE_FRAME_MESSAGES_HPP

#include <cstddef>
#include <cstdint>

namespace kestrune::frame {

// Style of the errors: the error icon with an OK button.
inline constexpr std::int32_t kMessageStyleError = 16;

/*
 * Shows a message in the host's own box, the entry TavrinMessageBox that its executable may export, else in
 * the system's. text and caption are not zero-terminated; they are cut at 4095 and 255 characters. style as
 * the system's message box defines it; further is for the host's entry only. Returns the result of the box.
 * No failure is reported: every failure on the way to the host's box leads to the system's.
 */
std::int32_t ShowLibraryMessage(void* const& owner, const char* text, std::size_t text_length,
                                const char* caption, std::size_t caption_length, const std::int32_t& style,
                                const std::int32_t& further) noexcept;

}  // namespace kestrune::frame

#endif
