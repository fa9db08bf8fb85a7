// Work storage of one call: a block on the caller's stack that is handed out piece by piece, with the heap as
// its extension for mixtures that are too large for it. Nothing is freed before the whole arena goes.
#ifndef KESTRUNE_SUPPORT_ARENA_HPP
#define KESTRUNE_SUPPORT_ARENA_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace kestrune::support {

inline constexpr std::size_t kAlignment = 16;

// Components padded to whole vectors of four doubles; the padding of every padded array holds zeros.
inline constexpr int padded(int n) {
  return (n + 3) & ~3;
}
// First element of the vector of four that holds element i: where a loop over the lower triangle of column i begins.
inline constexpr int block_start(int i) {
  return i & ~3;
}

class Arena {
 public:
  // Starts on a block of the caller's; capacity in bytes, the block aligned to kAlignment.
  Arena(void* block, std::size_t capacity) : next_(static_cast<std::byte*>(block)), left_(capacity) {}
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // count doubles, not initialised. Throws std::bad_alloc when the heap is needed and has no room.
  double* take(std::size_t count) {
    const std::size_t bytes = (count * sizeof(double) + kAlignment - 1) / kAlignment * kAlignment;
    if (bytes > left_) return extend(bytes);
    auto* piece = reinterpret_cast<double*>(next_);
    next_ += bytes;
    left_ -= bytes;
    return piece;
  }
  // The same, all zero.
  double* zeros(std::size_t count) {
    double* piece = take(count);
    std::memset(piece, 0, count * sizeof(double));
    return piece;
  }
  // A place to come back to: rewind(mark()) gives back all that was taken since.
  struct Mark {
    std::byte* next;
    std::size_t left;
    const void* heap;
  };
  Mark mark() const { return {next_, left_, heap_.get()}; }
  void rewind(const Mark& m) {
    while (heap_.get() != m.heap) heap_ = std::move(heap_->before);
    next_ = m.next;
    left_ = m.left;
  }
  int* take_ints(std::size_t count) { return reinterpret_cast<int*>(take((count + 1) / 2)); }

 private:
  struct Chunk {
    std::unique_ptr<Chunk> before;
    std::unique_ptr<std::byte[]> bytes;
  };
  [[gnu::noinline]] double* extend(std::size_t bytes) {
    auto chunk = std::make_unique<Chunk>();
    const std::size_t size = bytes + kAlignment + (std::size_t{1} << 16);
    chunk->bytes = std::make_unique<std::byte[]>(size);
    void* start = chunk->bytes.get();
    std::size_t room = size;
    start = std::align(kAlignment, bytes, start, room);
    chunk->before = std::move(heap_);
    heap_ = std::move(chunk);
    next_ = static_cast<std::byte*>(start) + bytes;
    left_ = room - bytes;
    return static_cast<double*>(start);
  }

  std::byte* next_;
  std::size_t left_;
  std::unique_ptr<Chunk> heap_;
};

// Every mixture up to this many components is worked on without touching the heap; a block that stays small is
// made for up to twice as many.
inline constexpr std::size_t kStackComponents = 16;
// Bytes of a block for more than that. Blocks of nested calls add up, and what a call needs in all has to fit
// the stack that a host's thread may have (a quarter of a megabyte).
inline constexpr std::size_t kLargestBlock = 48 * 1024;

namespace detail {
template <std::size_t Bytes, class Body>
[[gnu::noinline]] auto on_stack(Body& body) {
  alignas(kAlignment) std::byte block[Bytes];
  Arena arena(block, Bytes);
  return body(arena);
}
}  // namespace detail

// Runs body(Arena&) with room on the stack for "matrices" n x n matrices and "vectors" n-vectors when n is at
// most kStackComponents, or what a block of kLargestBlock holds; beyond that the heap adds what is missing.
template <int Matrices, int Vectors, class Body>
auto with_arena(int n, Body&& body) {
  constexpr auto bytes = [](std::size_t m) {
    return (Matrices * m * m + Vectors * m) * sizeof(double) + 64 * kAlignment;
  };
  constexpr auto largest = [bytes](std::size_t m) {
    while (m > kStackComponents && bytes(m) > kLargestBlock) m -= 4;
    return bytes(m);
  }(2 * kStackComponents);
  if (n <= static_cast<int>(kStackComponents)) return detail::on_stack<bytes(kStackComponents)>(body);
  return detail::on_stack<largest>(body);
}

}  // namespace kestrune::support

#endif
