#include "batch/journal.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

#include "batch/platform.hpp"
#include "batch/source.hpp"
#include "composition.hpp"
#include "error.hpp"

namespace kestrune::host::batch {

namespace {

constexpr std::string_view kTitle = "kestrune batch journal 1";
constexpr auto kSyncEvery = std::chrono::seconds(10);

std::string line_of(const JournalEntry& e) {
  const std::string line =
      fmt::format("{} {} {:016x} {:016x} {}", e.rows, e.failed, e.input_hash, e.output_hash, e.end);
  return fmt::format("{} {:016x}\n", line, hash_of(line));
}

// The entry of a line; false for one that is not whole.
bool read_entry(std::string_view line, JournalEntry& e) {
  const char *at = line.data(), *const stop = at + line.size();
  const auto number = [&](std::uint64_t& value, int base) {
    while (at != stop && *at == ' ') ++at;
    const auto [end, error] = std::from_chars(at, stop, value, base);
    at = end;
    return error == std::errc();
  };
  std::uint64_t check = 0;
  return number(e.rows, 10) && number(e.failed, 10) && number(e.input_hash, 16) && number(e.output_hash, 16) &&
         number(e.end, 10) && number(check, 16) && line_of(e) == std::string(line) + '\n';
}

std::string head_of(const Identity& identity) {
  std::string text = std::string(kTitle) + '\n';
  for (const auto& [name, value] : identity) {
    std::string one = value;
    std::replace(one.begin(), one.end(), '\n', ' ');
    text += fmt::format("{} {}\n", name, one);
  }
  return text + '\n';
}

}  // namespace

std::string journal_path(const std::string& output) {
  return output + ".journal";
}

Journal read_journal(const std::string& path) {
  const std::string text = text_of_file(path);
  Journal journal;
  bool head = true;
  std::size_t begin = 0, number = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1, ++number) {
    const std::string_view line(text.data() + begin, end - begin);
    if (number == 0 && line != kTitle) break;
    if (number == 0) continue;
    if (head && line.empty()) {
      head = false;
    } else if (head) {
      const std::size_t blank = std::min(line.find(' '), line.size() - 1);
      journal.identity.emplace_back(line.substr(0, blank), line.substr(blank + 1));
    } else if (line == "done") {
      journal.done = true;
    } else {
      JournalEntry entry{};
      if (journal.done || !read_entry(line, entry)) break;
      journal.entries.push_back(entry);
    }
  }
  if (head)
    throw InputError(
        fmt::format("{} is no journal of a batch, or broken at its head: delete it and its output to start "
                    "anew, or give --overwrite",
                    path));
  return journal;
}

void check_identity(const Identity& then, const Identity& now, const std::string& output) {
  if (head_of(then) == head_of(now)) return;
  for (std::size_t k = 0; k < now.size(); ++k) {
    const std::string was = k < then.size() && then[k].first == now[k].first ? then[k].second : "(nothing)";
    if (was == now[k].second) continue;
    throw InputError(fmt::format(
        "{} was begun by another run, with {} \"{}\" where it is \"{}\" now: resume it with what it was begun "
        "with, or start anew with --overwrite",
        output, now[k].first, was, now[k].second));
  }
  throw InputError(fmt::format("{} was begun by another run: start anew with --overwrite", output));
}

std::size_t verified_entries(const std::string& output, std::string_view head,
                             const std::vector<JournalEntry>& entries) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(output.c_str(), "rb"), std::fclose);
  if (!file) throw InputError(fmt::format("{} cannot be read: {}", output, std::strerror(errno)));
  std::string bytes(head.size(), '\0');
  const bool whole = std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  const bool never_written = bytes.find_first_not_of('\0') == std::string::npos;  // after the machine went down
  if (whole && bytes != head && !never_written)
    throw InputError(
        fmt::format("{} does not begin as the output of this batch does: it is another file", output));
  std::uint64_t begin = head.size();
  std::size_t count = 0;
  for (; whole && !never_written && count < entries.size(); ++count) {
    const JournalEntry& entry = entries[count];
    if (entry.end < begin || entry.end - begin > std::filesystem::file_size(output)) break;
    bytes.resize(entry.end - begin);
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) break;
    if (hash_of(bytes) != entry.output_hash) break;
    begin = entry.end;
  }
  return count;
}

void OutputFile::fail(const char* what) const {
  throw InputError(
      fmt::format("{}: {}{}{}. {} rows are complete; the same command with --resume goes on from there", path_,
                  what, errno != 0 ? ": " : "", errno != 0 ? std::strerror(errno) : "", rows_));
}

void OutputFile::write(std::FILE* file, std::string_view bytes) {
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || std::fflush(file) != 0)
    fail("the output could not be written");
}

OutputFile::OutputFile(const std::string& path, std::string_view head, const Identity& identity) : path_(path) {
  errno = 0;
  // The journal first: an output without one is taken for a finished file of somebody else.
  journal_.reset(std::fopen(journal_path(path).c_str(), "wb"));
  if (journal_) file_.reset(std::fopen(path.c_str(), "wb"));
  if (!file_) throw InputError(fmt::format("{} cannot be written: {}", path, std::strerror(errno)));
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  write(journal_.get(), head_of(identity));
  write(file_.get(), head);
  end_ = head.size();
}

OutputFile::OutputFile(const std::string& path, std::string_view head, const Journal& journal,
                       std::size_t count)
    : path_(path), end_(count > 0 ? journal.entries[count - 1].end : head.size()) {
  // A journal of what is known to be good takes the place of the old one in one step.
  std::string text = head_of(journal.identity);
  for (std::size_t k = 0; k < count; ++k) {
    text += line_of(journal.entries[k]);
    rows_ += journal.entries[k].rows;
  }
  const std::string next = journal_path(path) + ".next";
  errno = 0;
  journal_.reset(std::fopen(next.c_str(), "wb"));
  if (!journal_) fail("the journal could not be written");
  write(journal_.get(), text);
  sync_to_disk(journal_.get());
  journal_.reset();
  std::error_code failure;
  std::filesystem::rename(next, journal_path(path), failure);
  if (!failure && std::filesystem::file_size(path, failure) >= end_)
    std::filesystem::resize_file(path, end_, failure);
  if (failure) throw InputError(fmt::format("{} cannot be resumed: {}", path, failure.message()));
  journal_.reset(std::fopen(journal_path(path).c_str(), "ab"));
  if (journal_) file_.reset(std::fopen(path.c_str(), count > 0 ? "ab" : "wb"));
  if (!file_) throw InputError(fmt::format("{} cannot be written: {}", path, std::strerror(errno)));
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  if (count == 0) write(file_.get(), head);
}

void OutputFile::put(const Result& result) {
  write(file_.get(), result.bytes);
  end_ += result.bytes.size();
  write(journal_.get(), line_of({result.rows, result.failed, result.input_hash, hash_of(result.bytes), end_}));
  rows_ += result.rows;
  if (std::chrono::steady_clock::now() - synced_ >= kSyncEvery) sync();
}

void OutputFile::sync() {
  errno = 0;
  if (!sync_to_disk(file_.get()) || !sync_to_disk(journal_.get())) fail("the output did not reach the disk");
  synced_ = std::chrono::steady_clock::now();
}

void OutputFile::finish() {
  sync();
  write(journal_.get(), "done\n");
  sync();
}

}  // namespace kestrune::host::batch
