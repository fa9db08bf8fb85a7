// The output of a batch with its journal, from which a run that was ended goes on.
//
// The journal FILE.journal is text: what was asked for, one item a line, an empty line, then a line for every chunk that
// stands in FILE as a whole, in order: its rows, those without an answer, hash and size of its input, the hash of its
// output, the size of FILE behind it and a hash of the line; at the end a line "done". The output is written first, its
// line second. What a resumed run goes on from is read back and compared, so that it does not matter what was on the disk
// when the machine went down: a chunk whose bytes are not those of its line is calculated again. Both files are synced to
// the disk every ten seconds and at the end, and locked while a run has them.
#ifndef KESTRUNE_HOST_BATCH_JOURNAL_HPP
#define KESTRUNE_HOST_BATCH_JOURNAL_HPP

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "batch/job.hpp"

namespace kestrune::host::batch {

// What must be the same when a run is resumed: name and value.
using Identity = std::vector<std::pair<std::string, std::string>>;

struct JournalEntry {
  std::uint64_t rows, failed, input_hash, input_size, output_hash, end;
};

struct Journal {
  Identity identity;
  std::vector<JournalEntry> entries;
  std::vector<std::uint64_t> places;  // where its head ends, then the lines of the entries
  bool done = false;
};

std::string journal_path(const std::string& output);
// Reads a journal up to its first line that is not whole; nothing where not even its head is.
std::optional<Journal> journal_of(std::string_view text);
// InputError that names the first item which is not the same.
void check_identity(const Identity& then, const Identity& now, const std::string& output);

// What a run does with an output that is there.
enum class Existing { refuse, resume, replace };

// Writes chunks in order to a file and its journal. What cannot be written is an InputError that says how to go on.
class OutputFile {
 public:
  // Opens the file for this run alone; nothing is changed before the first chunk is put, but for an empty file where there
  // was none. head: what stands before the chunks. InputError for a file that is there and is not to be replaced, that is
  // no output of this batch, or that another run has.
  OutputFile(const std::string& path, Existing existing, std::string head, Identity identity);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // The chunks that stand in an output which is resumed, compared with the journal byte by byte.
  const std::vector<JournalEntry>& entries() const { return journal_.entries; }
  // Of these the first ones stay.
  void keep(std::size_t count);
  // Whether the file could not be locked, and another run would not be noticed.
  bool is_unlocked() const { return unlocked_; }

  void put(const Result& result);
  void finish();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, Close>;

  void lock_for_this_run(std::FILE* file, const std::string& path);
  void settle(Existing existing);
  void read_back();
  void verify();
  void begin();
  void take_away();
  void write(std::FILE* file, std::string_view bytes);
  void sync();
  [[noreturn]] void fail(const char* what) const;

  std::string path_, head_;
  Identity identity_;
  File file_, lines_;  // the output and the journal
  Journal journal_;
  bool made_ = false, unlocked_ = false;
  bool whole_ = false;  // a finished output in which nothing is to be changed
  bool begun_ = false;  // both files are at the place where the next chunk belongs
  std::uint64_t end_ = 0, rows_ = 0;
  std::chrono::steady_clock::time_point synced_ = std::chrono::steady_clock::now();
};

}  // namespace kestrune::host::batch

#endif
