// The output of a batch with its journal, from which a run that was ended goes on.
//
// The journal FILE.journal is text: what was asked for, one item a line, an empty line, then a line for every chunk that
// stands in FILE as a whole, in order: its rows, those without an answer, the hashes of its input and its output, the size
// of FILE behind it and a hash of the line; at the end a line "done". The output is written first, its line second.
// What a resumed run goes on from is read back and compared, so that it does not matter what was on the disk when the
// machine went down: a chunk whose bytes are not those of its line is calculated again. Both files are synced to the disk
// every ten seconds and at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "batch/job.hpp"

namespace kestrune::host::batch {

// What must be the same when a run is resumed: name and value.
using Identity = std::vector<std::pair<std::string, std::string>>;

struct JournalEntry {
  std::uint64_t rows, failed, input_hash, output_hash, end;
};

struct Journal {
  Identity identity;
  std::vector<JournalEntry> entries;
  bool done = false;
};

std::string journal_path(const std::string& output);
// Reads a journal up to its first line that is not whole. InputError when it is none.
Journal read_journal(const std::string& path);
// InputError that names the first item which is not the same.
void check_identity(const Identity& then, const Identity& now, const std::string& output);
// How many of the entries stand in the file, byte by byte; InputError when its head is another one.
std::size_t verified_entries(const std::string& output, std::string_view head,
                             const std::vector<JournalEntry>& entries);

// Writes chunks in order to a file and its journal. What cannot be written is an InputError that says how to go on.
class OutputFile {
 public:
  // A new file: head, then chunks.
  OutputFile(const std::string& path, std::string_view head, const Identity& identity);
  // Behind the first count entries of an old one, which have been verified; what stands behind them is cut off.
  OutputFile(const std::string& path, std::string_view head, const Journal& journal, std::size_t count);

  void put(const Result& result);
  void finish();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, Close>;

  void write(std::FILE* file, std::string_view bytes);
  void sync();
  [[noreturn]] void fail(const char* what) const;

  std::string path_;
  File file_, journal_;
  std::uint64_t end_ = 0, rows_ = 0;
  std::chrono::steady_clock::time_point synced_ = std::chrono::steady_clock::now();
};

}  // namespace kestrune::host::batch
