// CAS texts, made and looked for.

#include "frame/cas.hpp"

#include <algorithm>
#include <cstring>

#include "kestrune/records.h"

namespace kestrune::frame {

namespace {

// Writes the digits of a number that is not negative; returns the end.
char* write_number(std::int32_t number, char* out) noexcept {
  char digits[10];
  char* first = digits + sizeof digits;
  do {
    *--first = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number > 0);
  return std::copy(first, digits + sizeof digits, out);
}

}  // namespace

void FormatCasText(std::int32_t i, const double* table, std::int32_t nc, char out[kCasTextLength]) noexcept {
  std::fill_n(out, kCasTextLength, ' ');
  out[0] = '-';
  if (i < 1 || i > nc) return;
  const double value = table[static_cast<std::size_t>(KV_COL_CAS - 1) * static_cast<std::size_t>(nc) +
                             static_cast<std::size_t>(i - 1)];
  if (!(value > -1.0 && value < 2147483648.0)) return;
  const auto number = static_cast<std::int32_t>(value);
  char* end = write_number(number / 1000, out);
  *end++ = '-';
  *end++ = static_cast<char>('0' + number % 1000 / 100);
  *end++ = static_cast<char>('0' + number % 100 / 10);
  *end++ = '-';
  *end = static_cast<char>('0' + number % 10);
}

bool is_cas(const char text[kCasTextLength], const char* literal) noexcept {
  const std::size_t length = std::strlen(literal);
  return length <= kCasTextLength && std::memcmp(text, literal, length) == 0 &&
         std::all_of(text + length, text + kCasTextLength, [](char c) { return c == ' '; });
}

std::int32_t find_cas(std::int32_t nc, const double* table, const char* literal, CasPick pick) noexcept {
  std::int32_t found = 0;
  char text[kCasTextLength];
  for (std::int32_t i = 1; i <= nc; ++i) {
    FormatCasText(i, table, nc, text);
    if (!is_cas(text, literal)) continue;
    found = i;
    if (pick == CasPick::first) break;
  }
  return found;
}

}  // namespace kestrune::frame
