// Text helpers of the parsers: trimming, splitting, numbers, search keys, near spellings.
#ifndef KESTRUNE_HOST_TEXT_HPP
#define KESTRUNE_HOST_TEXT_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::host {

std::string_view trimmed(std::string_view text);
std::string lower(std::string_view text);

// Pieces between separators, trimmed; an empty text gives no pieces.
std::vector<std::string> split(std::string_view text, char separator);

std::string joined(const std::vector<std::string>& pieces, std::string_view separator);

// A finite decimal number that fills the whole text, independent of the locale; else nothing.
std::optional<double> parse_number(std::string_view text);

// Length of the decimal number at the front of the text, 0 if there is none ("25 C" -> 2).
std::size_t number_length(std::string_view text);

// Lower case letters and digits only: "n-Butane" and "N BUTANE" have the same key.
std::string search_key(std::string_view text);

// Smallest number of inserted, removed, replaced or swapped neighbouring characters.
int edit_distance(std::string_view a, std::string_view b);

}  // namespace kestrune::host

#endif
