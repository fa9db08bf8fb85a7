// Helpers of the host's tests.
#ifndef KESTRUNE_TESTS_HOST_SUPPORT_HPP
#define KESTRUNE_TESTS_HOST_SUPPORT_HPP

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
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

// Words apart by blanks; what stands between double quotes is one.
inline std::vector<std::string> words(const std::string& line) {
  std::vector<std::string> result;
  bool quoted = false, open = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      open = false;
      continue;
    }
    if (!open) result.emplace_back();
    open = true;
    if (c != '"') result.back() += c;
  }
  return result;
}

struct Run {
  int code;
  std::string out, err;
};

// The program in this process, with the library beside it or with these exports.
inline Run run(const std::string& line, const kestrune::host::Exports* exports = nullptr) {
  std::ostringstream out, err;
  const int code = kestrune::host::run(words(line), out, err, exports);
  return {code, out.str(), err.str()};
}

// What a command says in JSON.
inline nlohmann::json json_of(const std::string& line) {
  const Run r = run(line + " --format json");
  return r.out.empty() ? nlohmann::json{{"error", r.err}} : nlohmann::json::parse(r.out);
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

#endif
