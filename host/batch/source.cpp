#include "batch/source.hpp"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>

namespace kestrune::host::batch {

std::uint64_t hash_of(std::string_view text) {
  return XXH3_64bits(text.data(), text.size());
}

Source::Source(Lines states, std::optional<Lines> compositions, std::size_t chunk_lines)
    : states_(std::move(states)), compositions_(std::move(compositions)), chunk_lines_(chunk_lines) {}

bool Source::next_composition() {
  do {
    composition_.clear();
    composition_line_ = compositions_->next_line();
    if (compositions_->append(composition_, 1) == 0) return false;
  } while (is_empty_line(composition_));
  states_.rewind();
  return true;
}

bool Source::next(Chunk& chunk) {
  if (returned_) {
    chunk = std::move(*returned_);
    returned_.reset();
    ++chunks_;
    return true;
  }
  chunk.clear();
  chunk.number = chunks_;
  for (std::size_t lines = 0; lines < chunk_lines_ && chunk.text.size() < kChunkBytes;) {
    Chunk::Piece piece;
    piece.first_line = states_.next_line();
    const std::size_t begin = chunk.text.size();
    chunk.text += composition_;
    const std::size_t found =
        compositions_ && composition_.empty()
            ? 0
            : states_.append(chunk.text, chunk_lines_ - lines, kChunkBytes - std::min(kChunkBytes - 1, begin));
    if (found == 0) {
      chunk.text.resize(begin);
      if (!compositions_ || !next_composition()) break;
      if (!chunk.pieces.empty()) ++lines;  // compositions whose states hold nothing come to an end, too
      continue;
    }
    piece.composition_line = composition_line_;
    piece.composition_size = composition_.size();
    piece.rows_size = chunk.text.size() - begin - composition_.size();
    chunk.pieces.push_back(piece);
    lines += found;
  }
  if (chunk.pieces.empty()) return false;
  ++chunks_;
  return true;
}

void Source::put_back(Chunk chunk) {
  returned_ = std::move(chunk);
  --chunks_;
}

std::string Source::changed_file() const {
  if (states_.has_changed()) return states_.name();
  return compositions_ && compositions_->has_changed() ? compositions_->name() : "";
}

double Source::share_read() const {
  const auto share = [](const Lines& lines) {
    return lines.size() > 0 ? static_cast<double>(lines.position()) / static_cast<double>(lines.size()) : 1.0;
  };
  if (!compositions_) return share(states_);
  const auto of_one = static_cast<double>(composition_.size()) / static_cast<double>(compositions_->size());
  return share(*compositions_) - of_one * (1.0 - share(states_));
}

}  // namespace kestrune::host::batch
