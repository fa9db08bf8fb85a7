#include "table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrune::host {

Table::Table(std::vector<std::string> headings, std::string alignment) : alignment_(std::move(alignment)) {
  rows_.push_back(std::move(headings));
}

void Table::add(std::vector<std::string> row) {
  row.resize(rows_.front().size());
  rows_.push_back(std::move(row));
}

void Table::print(std::ostream& out) const {
  std::vector<std::size_t> width(rows_.front().size(), 0);
  for (const auto& row : rows_) {
    for (std::size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
  }
  for (const auto& row : rows_) {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) {
      const bool left = c < alignment_.size() && alignment_[c] == 'l';
      if (c > 0) line += "  ";
      line += left ? fmt::format("{:<{}}", row[c], width[c]) : fmt::format("{:>{}}", row[c], width[c]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

std::string shown_fraction(double value) {
  if (!std::isfinite(value)) return "-";
  return value != 0.0 && std::abs(value) < 1e-4 ? fmt::format("{:.2e}", value) : fmt::format("{:.6f}", value);
}

std::string shown_fixed(double value, int decimals) {
  return std::isfinite(value) ? fmt::format("{:.{}f}", value, decimals) : "-";
}

std::string shown_significant(double value) {
  if (!std::isfinite(value)) return "-";
  const double size = std::abs(value);
  if (size != 0.0 && (size < 1e-3 || size >= 1e7)) return fmt::format("{:.5e}", value);
  const int decimals = size == 0.0 ? 0 : std::max(0, 5 - static_cast<int>(std::floor(std::log10(size))));
  return fmt::format("{:.{}f}", value, decimals);
}

std::string shown_digits(double value, int digits) {
  return std::isfinite(value) ? fmt::format("{:.{}g}", value, digits) : "-";
}

std::string csv_field(const std::string& text) {
  if (text.find_first_of(",\"\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace kestrune::host
