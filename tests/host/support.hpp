// Helpers of the host's tests.
#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "commands/session.hpp"
#include "text.hpp"

namespace host_test {

using Row = std::map<std::string, std::string>;

// Rows of a data table without quoted fields.
inline std::vector<Row> rows(const std::string& name) {
  std::ifstream file(std::string(KESTRUNE_DATA) + "/" + name);
  std::string line;
  std::getline(file, line);
  const auto keys = kestrune::host::split(line, ',');
  std::vector<Row> result;
  while (std::getline(file, line)) {
    const auto fields = kestrune::host::split(line, ',');
    Row row;
    for (std::size_t i = 0; i < keys.size() && i < fields.size(); ++i) row[keys[i]] = fields[i];
    result.push_back(row);
  }
  return result;
}

struct Run {
  int code;
  std::string out, err;
};

// The program in this process, with the toy library.
inline Run run(std::vector<std::string> arguments, const std::string& library = KESTRUNE_FAKE) {
  std::ostringstream out, err;
  arguments.insert(arguments.begin(), {"--library", library});
  const int code = kestrune::host::run(arguments, out, err);
  return {code, out.str(), err.str()};
}

// What an input error says; empty when nothing is thrown.
template <class Body>
std::string error_of(Body&& body) {
  try {
    body();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "";
}

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace host_test
