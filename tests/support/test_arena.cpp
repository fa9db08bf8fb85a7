// Work storage: alignment, no overlap, extension by the heap.
#include <gtest/gtest.h>

#include <vector>

#include "support/arena.hpp"

using namespace kestrune::support;

namespace {

// Takes pieces of many sizes and fills each with its number: nothing may touch another's.
void exercise(Arena& arena, int pieces, std::size_t largest) {
  std::vector<std::pair<double*, std::size_t>> all;
  for (int k = 0; k < pieces; ++k) {
    const std::size_t count = 1 + (static_cast<std::size_t>(k) * 37) % largest;
    double* piece = k % 3 == 0 ? arena.zeros(count) : arena.take(count);
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(piece) % kAlignment, 0u);
    for (std::size_t i = 0; i < count; ++i) {
      if (k % 3 == 0) {
        ASSERT_EQ(piece[i], 0.0);
      }
      piece[i] = k;
    }
    all.emplace_back(piece, count);
  }
  for (std::size_t k = 0; k < all.size(); ++k)
    for (std::size_t i = 0; i < all[k].second; ++i) ASSERT_EQ(all[k].first[i], static_cast<double>(k));
}

TEST(Arena, PiecesAreAlignedAndApartOnTheBlockAndBeyond) {
  alignas(kAlignment) std::byte block[4096];
  Arena small(block, sizeof block);
  exercise(small, 12, 20);  // fits
  Arena mixed(block, sizeof block);
  exercise(mixed, 500, 700);  // many chunks
  Arena none(nullptr, 0);
  exercise(none, 10, 200000);  // pieces larger than a chunk
}

TEST(Arena, UsesAllOfItsBlockBeforeTheHeap) {
  alignas(kAlignment) std::byte block[320];
  Arena arena(block, sizeof block);
  EXPECT_EQ(static_cast<void*>(arena.take(39)), static_cast<void*>(block));  // 312 bytes take 320
  const auto* beyond = reinterpret_cast<std::byte*>(arena.take(1));
  EXPECT_FALSE(beyond >= block && beyond < block + sizeof block);
}

TEST(Arena, MixturesOfEverySizeAreServed) {
  for (const int n : {1, 16, 17, 64, 65, 100, 700}) {
    const double sum = with_arena<6, 100>(n, [n](Arena& arena) {
      double total = 0.0;
      for (int k = 0; k < 6; ++k) {
        const std::size_t size = static_cast<std::size_t>(padded(n)) * static_cast<std::size_t>(n);
        double* matrix = arena.zeros(size);
        for (std::size_t i = 0; i < size; ++i) matrix[i] += 1.0;
        total += matrix[size - 1];
      }
      return total;
    });
    EXPECT_EQ(sum, 6.0) << n;
  }
}

}  // namespace
