// The input of a batch in chunks, which are the same every time it is read.
#ifndef KESTRUNE_HOST_BATCH_SOURCE_HPP
#define KESTRUNE_HOST_BATCH_SOURCE_HPP

#include <cstdint>
#include <optional>

#include "batch/job.hpp"
#include "batch/lines.hpp"

namespace kestrune::host::batch {

// A chunk ends behind the line that fills it, so that long lines take no more memory than short ones.
inline constexpr std::size_t kChunkBytes = std::size_t{2} << 20;

class Source {
 public:
  // Both behind their headings. With compositions every one of them meets all states, one composition after the other.
  Source(Lines states, std::optional<Lines> compositions, std::size_t chunk_lines);

  // The next chunk, of that many lines of states (the last one of fewer, and where they are long); false when there is none.
  bool next(Chunk& chunk);
  // The chunk that came last, to come again.
  void put_back(Chunk chunk);
  // A file that is not what it was when it was opened; empty where all are.
  std::string changed_file() const;

  double share_read() const;  // 0 .. 1, of what there is to read
  std::uint64_t chunks() const { return chunks_; }

 private:
  bool next_composition();

  Lines states_;
  std::optional<Lines> compositions_;
  std::size_t chunk_lines_;
  std::uint64_t chunks_ = 0;
  std::string composition_;  // the one whose states are being read, with its end of line
  std::int64_t composition_line_ = 0;
  std::optional<Chunk> returned_;
};

// Of a text: tells inputs and outputs apart (XXH3, 64 bits).
std::uint64_t hash_of(std::string_view text);

}  // namespace kestrune::host::batch

#endif
