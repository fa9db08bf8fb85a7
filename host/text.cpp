#include "text.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <locale>
#include <sstream>

namespace kestrune::host {

namespace {

bool is_blank(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}
bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  if (trimmed(text).empty()) return pieces;
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.emplace_back(trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

std::string joined(const std::vector<std::string>& pieces, std::string_view separator) {
  std::string result;
  for (const std::string& piece : pieces) {
    if (&piece != pieces.data()) result += separator;
    result += piece;
  }
  return result;
}

std::size_t number_length(std::string_view text) {
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  const std::size_t first = i;
  std::size_t digits = 0;
  for (; i < text.size() && (is_digit(text[i]) || text[i] == '.'); ++i) digits += is_digit(text[i]);
  if (digits == 0 || std::count(text.begin() + first, text.begin() + i, '.') > 1) return 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j < text.size() && is_digit(text[j])) {
      while (j < text.size() && is_digit(text[j])) ++j;
      i = j;
    }
  }
  return i;
}

std::optional<double> parse_number(std::string_view text) {
  text = trimmed(text);
  if (text.empty() || number_length(text) != text.size()) return {};
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double value = 0.0;
  if (!(stream >> value) || !std::isfinite(value)) return {};
  return value;
}

std::string search_key(std::string_view text) {
  std::string key;
  for (const char c : lower(text)) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) key += c;
  }
  return key;
}

int edit_distance(std::string_view a, std::string_view b) {
  std::vector<int> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = static_cast<int>(j);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = static_cast<int>(i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], before[j - 2] + 1);
      }
    }
    before.swap(last);
    last.swap(row);
  }
  return last[b.size()];
}

}  // namespace kestrune::host
