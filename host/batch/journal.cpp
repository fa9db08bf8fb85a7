#include "batch/journal.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

#include "batch/platform.hpp"
#include "batch/source.hpp"
#include "error.hpp"

namespace kestrune::host::batch {

namespace {

constexpr std::string_view kTitle = "kestrune batch journal 2";
constexpr auto kSyncEvery = std::chrono::seconds(10);

std::string line_of(const JournalEntry& e) {
  const std::string line = fmt::format("{} {} {:016x} {} {:016x} {}", e.rows, e.failed, e.input_hash,
                                       e.input_size, e.output_hash, e.end);
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
  return number(e.rows, 10) && number(e.failed, 10) && number(e.input_hash, 16) && number(e.input_size, 10) &&
         number(e.output_hash, 16) && number(e.end, 10) && line_of(e) == std::string(line) + '\n';
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

std::optional<Journal> journal_of(std::string_view text) {
  Journal journal;
  std::size_t begin = 0, number = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string_view::npos; begin = end + 1, ++number) {
    const std::string_view line = text.substr(begin, end - begin);
    if (number == 0 && line != kTitle) break;
    if (number == 0) continue;
    if (journal.places.empty() && line.empty()) {
      journal.places.push_back(end + 1);
    } else if (journal.places.empty()) {
      const std::size_t blank = std::min(line.find(' '), line.size() - 1);
      journal.identity.emplace_back(line.substr(0, blank), line.substr(blank + 1));
    } else if (line == "done") {
      journal.done = true;
      break;
    } else {
      JournalEntry entry{};
      if (!read_entry(line, entry)) break;
      journal.entries.push_back(entry);
      journal.places.push_back(end + 1);
    }
  }
  if (journal.places.empty()) return {};
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

OutputFile::OutputFile(const std::string& path, Existing existing, std::string head, Identity identity)
    : path_(path), head_(std::move(head)), identity_(std::move(identity)) {
  std::error_code none;
  if (std::filesystem::exists(path, none) && !std::filesystem::is_regular_file(path, none))
    throw InputError(fmt::format("{} is {}", path,
                                 std::filesystem::is_directory(path, none)
                                     ? "a folder: -o names a file"
                                     : "no plain file: leave out -o, and redirect standard output"));
  errno = 0;
  file_.reset(open_to_change(path, true, made_));
  if (!file_) throw InputError(fmt::format("{} cannot be written: {}", path, std::strerror(errno)));
  try {
    lock_for_this_run(file_.get(), path);
    bool never = false;
    lines_.reset(open_to_change(journal_path(path), false, never));
    if (lines_) lock_for_this_run(lines_.get(), journal_path(path));
    if (!lines_ && errno != ENOENT)
      throw InputError(fmt::format("{} cannot be written: {}", journal_path(path), std::strerror(errno)));
    settle(existing);
  } catch (const InputError&) {
    take_away();
    throw;
  }
}

OutputFile::~OutputFile() {
  if (!begun_) take_away();
}

// The empty file that was made to be locked.
void OutputFile::take_away() {
  if (!made_ || std::remove(path_.c_str()) == 0) return;
  file_.reset();  // Windows keeps what is open
  std::remove(path_.c_str());
}

void OutputFile::lock_for_this_run(std::FILE* file, const std::string& path) {
  const Lock got = lock(file);
  if (got == Lock::in_use)
    throw InputError(fmt::format("{} is in use: another run writes to it. Nothing was changed", path));
  unlocked_ = unlocked_ || got == Lock::impossible;
}

// Whether this run may have the files as they are.
void OutputFile::settle(Existing existing) {
  if (existing == Existing::replace) return;
  const bool empty = size_of(file_.get()) == 0;
  if (existing == Existing::refuse) {
    if (made_) return;
    throw InputError(fmt::format("{} exists{}--overwrite replaces it", path_,
                                 lines_ ? " with a journal: --resume goes on with it, " : ": "));
  }
  if (lines_) read_back();
  // A run that was ended while it began has written nothing yet.
  if (empty && journal_.entries.empty()) return;
  if (made_)
    throw InputError(fmt::format("{} is missing beside its journal: start anew with --overwrite", path_));
  if (!lines_)
    throw InputError(
        fmt::format("{} exists without a journal to resume it from: --overwrite replaces it", path_));
  if (journal_.places.empty())
    throw InputError(fmt::format(
        "{} is no journal of this version's batch, or broken at its head: delete it and its output to "
        "start anew, or give --overwrite",
        journal_path(path_)));
  check_identity(journal_.identity, identity_, path_);
  verify();
}

void OutputFile::read_back() {
  std::string text(size_of(lines_.get()), '\0');
  errno = 0;
  go_to(lines_.get(), 0);
  text.resize(std::fread(text.data(), 1, text.size(), lines_.get()));
  if (std::ferror(lines_.get()) != 0)
    throw InputError(fmt::format("{} cannot be read: {}", journal_path(path_), std::strerror(errno)));
  journal_ = journal_of(text).value_or(Journal{});
  journal_.done = journal_.done && !journal_.places.empty() && journal_.places.back() + 5 == text.size();
}

// Leaves those entries that stand in the file, byte by byte.
void OutputFile::verify() {
  const std::uint64_t size = size_of(file_.get());
  std::string bytes(head_.size(), '\0');
  go_to(file_.get(), 0);
  const bool whole = std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
  const bool never_written = bytes.find_first_not_of('\0') == std::string::npos;  // after the machine went down
  if (whole && bytes != head_ && !never_written)
    throw InputError(
        fmt::format("{} does not begin as the output of this batch does: it is another file", path_));
  std::uint64_t begin = head_.size();
  std::size_t count = 0;
  for (; whole && !never_written && count < journal_.entries.size(); ++count) {
    const JournalEntry& entry = journal_.entries[count];
    if (entry.end < begin || entry.end > size) break;
    bytes.resize(entry.end - begin);
    if (std::fread(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) break;
    if (hash_of(bytes) != entry.output_hash) break;
    begin = entry.end;
  }
  const bool all = whole && !never_written && count == journal_.entries.size();
  whole_ = all && journal_.done && size == begin;
  keep(count);
}

void OutputFile::keep(std::size_t count) {
  if (count < journal_.entries.size()) whole_ = false;
  journal_.entries.resize(count);
  journal_.places.resize(count + 1);
  end_ = count > 0 ? journal_.entries.back().end : 0;
  rows_ = 0;
  for (const JournalEntry& e : journal_.entries) rows_ += e.rows;
}

// From here on the files are changed: behind what stays of an old output, or from their beginning.
void OutputFile::begin() {
  errno = 0;
  bool made = false;
  const bool anew = journal_.entries.empty();
  if (!lines_) {
    lines_.reset(open_to_change(journal_path(path_), true, made));
    if (!lines_)
      throw InputError(fmt::format("{} cannot be written: {}", journal_path(path_), std::strerror(errno)));
    lock_for_this_run(lines_.get(), journal_path(path_));
  }
  begun_ = true;
  // What a journal says must stand in the output: it is cut first, and the output is written first.
  if (!cut_off(lines_.get(), anew ? 0 : journal_.places.back()) || !cut_off(file_.get(), end_))
    fail("the output could not be cut to what is good of it");
  if (!anew) return;
  write(lines_.get(), head_of(identity_));
  write(file_.get(), head_);
  end_ = head_.size();
}

void OutputFile::put(const Result& result) {
  if (!begun_) begin();
  write(file_.get(), result.bytes);
  end_ += result.bytes.size();
  write(lines_.get(), line_of({result.rows, result.failed, result.input_hash, result.input_size,
                               hash_of(result.bytes), end_}));
  rows_ += result.rows;
  if (std::chrono::steady_clock::now() - synced_ >= kSyncEvery) sync();
}

void OutputFile::sync() {
  errno = 0;
  if (!sync_to_disk(file_.get()) || !sync_to_disk(lines_.get())) fail("the output did not reach the disk");
  synced_ = std::chrono::steady_clock::now();
}

void OutputFile::finish() {
  if (whole_ && !begun_) return;
  if (!begun_) begin();
  sync();
  write(lines_.get(), "done\n");
  sync();
}

}  // namespace kestrune::host::batch
