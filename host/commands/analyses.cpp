// --analysis all: a command over every composition of a table, one after the other.
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "commands/session.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

// The value of an option, "--name value" or "--name=value", and the argument that holds it.
struct Value {
  std::size_t index;
  std::string text;
};
std::optional<Value> value_of(const std::vector<std::string>& arguments,
                              std::initializer_list<std::string_view> names) {
  for (std::size_t i = 0; i < arguments.size(); ++i)
    for (const std::string_view name : names) {
      if (arguments[i] == name && i + 1 < arguments.size()) return Value{i + 1, arguments[i + 1]};
      const std::string start = std::string(name) + "=";
      if (arguments[i].rfind(start, 0) == 0) return Value{i, arguments[i].substr(start.size())};
    }
  return {};
}

// Lines of a table: the heading once, the name of the analysis in front of every row.
void add_csv(const std::string& text, const std::string& name, bool first, std::ostream& out) {
  bool heading = true;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line); heading = false) {
    if (heading && !first) continue;
    out << (heading ? "analysis" : csv_field(name)) << ',' << line << '\n';
  }
}

}  // namespace

bool asks_for_all(const std::vector<std::string>& arguments) {
  const auto analysis = value_of(arguments, {"--analysis"});
  return analysis && lower(trimmed(analysis->text)) == "all";
}

int run_all(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
            const Exports* exports) {
  const auto analysis = value_of(arguments, {"--analysis"}), file = value_of(arguments, {"-m", "--mixture"});
  if (!file || file->text == "-") throw InputError("--analysis all needs a mixture file: -m FILE");
  const std::vector<std::string> names = analyses_of_file(file->text);
  if (names.empty())
    throw InputError(
        fmt::format("{}: no table with one composition a row, and components in its heading", file->text));
  const auto format = value_of(arguments, {"--format"}), print = value_of(arguments, {"--print"});
  const std::string form = print ? "print" : format ? lower(format->text) : "table";
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  int code = exit_good;
  bool first = true;
  for (std::size_t k = 0; k < names.size(); ++k) {
    std::vector<std::string> one = arguments;
    const std::string number = fmt::format("#{}", k + 1);
    one[analysis->index] = one[analysis->index].rfind("--", 0) == 0 ? "--analysis=" + number : number;
    std::ostringstream result, messages;
    code = std::max(code, run(one, result, messages, exports));
    std::istringstream lines(messages.str());
    for (std::string line; std::getline(lines, line);) err << names[k] << ": " << line << '\n';
    const std::string text = result.str();
    if (form == "json" && !text.empty())
      all.push_back({{"analysis", names[k]}, {"result", nlohmann::ordered_json::parse(text)}});
    else if (form == "csv" && !text.empty())
      add_csv(text, names[k], first, out);
    else if (form == "print" && !text.empty())
      out << names[k] << ' ' << text;
    else if (form == "table" && !text.empty())
      out << fmt::format("{}Analysis     {}\n{}", first ? "" : "\n", names[k], text);
    first = first && text.empty();
  }
  if (form == "json") out << all.dump(2) << '\n';
  return code;
}

}  // namespace kestrune::host
