// Flashes at the same time on records of their own give the bits of the same flashes one after the other.
#include <gtest/gtest.h>

#include <thread>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr int kFlashes = 2000, kThreads = 2;

// One thread's work: its own record and table, feeds and conditions that differ from call to call.
std::vector<FlashResult> work(Mixture& m, int thread) {
  std::vector<FlashResult> results;
  results.reserve(kFlashes);
  for (int k = 0; k < kFlashes; ++k) {
    std::vector<double> z = kRichGasFeed;
    z[static_cast<std::size_t>(k % 10)] += 0.02 * (k % 7) + 0.01 * thread;
    m.record.flags = k % 5 == 0 ? FreeWaterFlag : 0;
    results.push_back(flash(m, 150.0 + (k * 37 + thread * 11) % 250, 1.0 + (k * 13 + thread * 5) % 120, z));
  }
  return results;
}

TEST(Reentrancy, TwoThreadsGiveTheBitsOfOne) {
  Mixture shared = mixture_of(kRichGas);
  shared.use();
  Mixture own[kThreads] = {mixture_of(kRichGas), mixture_of(kRichGas)};
  std::vector<FlashResult> together[kThreads], alone[kThreads];
  std::vector<std::thread> threads;
  // First of all the threads: the library binds its siblings in here.
  for (int k = 0; k < kThreads; ++k) threads.emplace_back([&, k] { together[k] = work(own[k], k); });
  for (std::thread& t : threads) t.join();
  int two_phases = 0;
  for (int k = 0; k < kThreads; ++k) {
    alone[k] = work(own[k], k);
    ASSERT_EQ(together[k].size(), alone[k].size());
    for (std::size_t i = 0; i < alone[k].size(); ++i) {
      EXPECT_TRUE(together[k][i] == alone[k][i]) << k << ' ' << i;
      EXPECT_EQ(alone[k][i].status, KV_OK) << k << ' ' << i;
      two_phases += alone[k][i].two_phases();
    }
  }
  EXPECT_GT(two_phases, kFlashes / 4);
}

}  // namespace
