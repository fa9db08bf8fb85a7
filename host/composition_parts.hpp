// What the readers of compositions share.
#ifndef KESTRUNE_HOST_COMPOSITION_PARTS_HPP
#define KESTRUNE_HOST_COMPOSITION_PARTS_HPP

#include <string_view>

namespace kestrune::host {

// "0.9", "9 %" (a hundredth); where says what would be right. InputError for anything else.
double parse_amount(std::string_view text, std::string_view where);

// Trimmed, and without double quotes around it.
std::string_view without_quotes(std::string_view text);

}  // namespace kestrune::host

#endif
