// The rows of commands.txt: command, exit code, words that the output has and words that it has not.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "stub.hpp"
#include "support.hpp"

using namespace kestrune::host;

namespace {

std::vector<std::string> cut(std::string text, const std::string& separator) {
  std::vector<std::string> pieces;
  for (std::size_t at; (at = text.find(separator)) != std::string::npos; text.erase(0, at + separator.size()))
    pieces.push_back(std::string(trimmed(text.substr(0, at))));
  pieces.push_back(std::string(trimmed(text)));
  return pieces;
}

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
}

// [FlashLLVatTP=118,Humidity=151] in front of a command: statuses of exports.
std::map<std::string, StatusCode> statuses_of(std::string& command) {
  std::map<std::string, StatusCode> result;
  if (command.empty() || command.front() != '[') return result;
  const std::size_t end = command.find(']');
  for (const std::string& entry : split(command.substr(1, end - 1), ',')) {
    const std::size_t equals = entry.find('=');
    result[entry.substr(0, equals)] = std::stoi(entry.substr(equals + 1));
  }
  command.erase(0, end + 1);
  return result;
}

}  // namespace

TEST(commands, do_what_the_table_says) {
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "kestrune_commands";
  std::filesystem::create_directories(folder);
  std::vector<std::pair<std::string, std::string>> names{{"$DIR", folder.generic_string()}};
  std::ifstream table(KESTRUNE_COMMANDS);
  ASSERT_TRUE(table) << KESTRUNE_COMMANDS;
  int count = 0, number = 0;
  for (std::string line; std::getline(table, line);) {
    ++number;
    if (line.empty() || line.front() == '#') continue;
    for (auto name = names.rbegin(); name != names.rend(); ++name) replace_all(line, name->first, name->second);
    const auto fields = cut(line, " | ");
    if (fields[0] == "name") {
      names.emplace_back("$" + fields[1], fields[2]);
    } else if (fields[0] == "file") {
      std::string text = fields[2];
      replace_all(text, "\\n", "\n");
      std::ofstream(folder / fields[1]) << text;
    } else {
      ASSERT_GE(fields.size(), 2u) << line;
      std::string command = fields[1];
      const auto statuses = statuses_of(command);
      const Exports exports = statuses.empty() ? Exports{} : host_test::stub_exports(statuses);
      const auto r = host_test::run(command, statuses.empty() ? nullptr : &exports);
      const std::string all = r.out + r.err;
      const std::string where = KESTRUNE_COMMANDS ":" + std::to_string(number) + ": " + fields[1] + "\n" + all;
      EXPECT_EQ(std::to_string(r.code), fields[0]) << where;
      EXPECT_TRUE(fields[0] != "2" || r.out.empty()) << where;
      for (const std::string& word : fields.size() > 2 ? cut(fields[2], "; ") : std::vector<std::string>{}) {
        const bool unwanted = word.front() == '!';
        EXPECT_NE(host_test::contains(all, word.substr(unwanted)), unwanted) << word << "\n" << where;
      }
      ++count;
    }
  }
  EXPECT_GT(count, 100);
  std::filesystem::remove_all(folder);
}
