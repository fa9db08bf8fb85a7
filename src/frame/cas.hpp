// CAS numbers of the components, as texts.
#ifndef KESTRUNE_FRAME_CAS_HPP
#define KESTRUNE_FRAME_CAS_HPP

#include <cstddef>
#include <cstdint>

namespace kestrune::frame {

inline constexpr std::size_t kCasTextLength = 12;

// The components that the model singles out.
inline constexpr const char* WaterCas = "7732-18-5";
inline constexpr const char* kHydrogenSulphideCas = "7783-06-4";
inline constexpr const char* kCarbonDioxideCas = "124-38-9";
inline constexpr const char* kAmmoniaCas = "7664-41-7";
inline constexpr const char* kHydrogenCas = "1333-74-0";
inline constexpr const char* kHeliumCas = "7440-59-7";

/*
 * CasText of component i (from 1): 12 characters, blank-padded, no terminating zero. table is the
 * ComponentTable of nc components. "-" and 11 blanks for an i outside 1 .. nc and for a number that is
 * not finite, negative, or beyond the range of an int32.
 */
void FormatCasText(std::int32_t i, const double* table, std::int32_t nc, char out[kCasTextLength]) noexcept;

// True when the CasText begins with the literal and the rest is blank.
bool is_cas(const char text[kCasTextLength], const char* literal) noexcept;

enum class CasPick { first, last };

// Number (from 1) of the first or last component with that CAS number, 0 when there is none.
std::int32_t find_cas(std::int32_t nc, const double* table, const char* literal,
                      CasPick pick = CasPick::first) noexcept;

}  // namespace kestrune::frame

#endif
