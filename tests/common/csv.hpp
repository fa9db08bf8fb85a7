// Rows of the comma-separated data files of the tests: columns by name, lists separated by semicolons.
#ifndef KESTRUNE_TESTS_CSV_HPP
#define KESTRUNE_TESTS_CSV_HPP

#include <cstdlib>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrune::tests {

using Row = std::map<std::string, std::string>;

// Fields of a line; a separator between double quotes does not count.
inline std::vector<std::string> split(const std::string& line, char separator) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == separator && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

// The rows of a file of tests/data (or of another folder); throws when it cannot be read.
inline std::vector<Row> rows(const std::string& name, const std::string& folder = KESTRUNE_TEST_DATA) {
  std::ifstream file(folder + "/" + name);
  if (!file) throw std::runtime_error("cannot read " + folder + "/" + name);
  std::vector<Row> result;
  std::vector<std::string> head;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> fields = split(line, ',');
    if (head.empty()) {
      head = fields;
      continue;
    }
    Row row;
    for (std::size_t i = 0; i < head.size(); ++i) row[head[i]] = i < fields.size() ? fields[i] : "";
    result.push_back(row);
  }
  return result;
}

inline double number(const Row& row, const std::string& column) {
  return std::strtod(row.at(column).c_str(), nullptr);
}

inline std::vector<double> numbers(const Row& row, const std::string& column) {
  std::vector<double> values;
  for (const std::string& text : split(row.at(column), ';'))
    values.push_back(std::strtod(text.c_str(), nullptr));
  return values;
}

}  // namespace kestrune::tests

#endif
