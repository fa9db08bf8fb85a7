// The host's floating-point environment across a call, what is thrown, and the checks of arguments.
#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <new>
#include <vector>

#include "frame/boundary.hpp"

namespace {

using namespace kestrune::frame;

volatile double zero = 0.0, one = 1.0, three = 3.0, huge = 1e308;
volatile long double zero_x = 0.0L, one_x = 1.0L;
// Results go here, so that every operation is carried out where it stands.
volatile double sink;
volatile long double sink_x;

struct Words {
  std::uint16_t control, status;
  std::uint32_t mxcsr;
  bool operator==(const Words&) const = default;
};

Words read_words() {
  Words w;
  __asm__ __volatile__("fnstcw %0" : "=m"(w.control));
  __asm__ __volatile__("fnstsw %0" : "=m"(w.status));
  w.mxcsr = _mm_getcsr();
  return w;
}

void load_control(std::uint16_t word) {
  __asm__ __volatile__("fldcw %0" : : "m"(word));
}

void default_words() {
  __asm__ __volatile__("fninit");
  _mm_setcsr(0x1F80);
}

// Raises every exception in both units.
StatusCode noisy() {
  sink = one / zero;
  sink = zero / zero;
  sink = huge * huge;
  sink = 1e-300 * (one / huge) / three;
  sink_x = one_x / zero_x;
  sink_x = zero_x / zero_x;
  sink_x = one_x / 3.0L;
  return 7;
}

class Guard : public testing::Test {
 protected:
  void SetUp() override { default_words(); }
  void TearDown() override { default_words(); }
};

TEST_F(Guard, HostWithTrapsUnmaskedSeesNone) {
  load_control(0x0360);  // x87: zero divide, invalid, overflow, underflow ... unmasked
  _mm_setcsr(0x0000);    // SSE: all unmasked
  const Words before = read_words();
  const StatusCode status = guarded(noisy);
  const Words after = read_words();
  // Neither unit has anything waiting: more arithmetic is safe.
  volatile double sum = one + one;
  volatile long double sum_x = one_x + one_x;
  const Words later = read_words();
  default_words();
  EXPECT_EQ(status, 7);
  EXPECT_EQ(sum, 2.0);
  EXPECT_EQ(sum_x, 2.0L);
  EXPECT_TRUE(before == after);
  EXPECT_TRUE(before == later);
}

TEST_F(Guard, EveryHostsWordsComeBackExactly) {
  struct Case {
    std::uint16_t control;
    std::uint32_t mxcsr;
    bool sticky_x87;
  };
  for (const Case& c : {Case{0x037F, 0x1F80, false}, Case{0x027F, 0x1F80, true}, Case{0x0F7F, 0x7FBF, false},
                        Case{0x007F, 0xFFC0, true}, Case{0x037F, 0x1FA1, true}}) {
    default_words();
    if (c.sticky_x87) {
      sink_x = one_x / 3.0L;  // leaves the inexact flag
    }
    load_control(c.control);
    _mm_setcsr(c.mxcsr);
    const Words before = read_words();
    Words inside{};
    const StatusCode status = guarded([&inside] {
      inside = read_words();
      return noisy();
    });
    const Words after = read_words();
    const StatusCode quiet = guarded([] { return StatusCode{3}; });
    const Words again = read_words();
    default_words();
    EXPECT_EQ(status, 7);
    EXPECT_EQ(quiet, 3);
    EXPECT_EQ(inside.control, 0x037F);
    EXPECT_EQ(inside.mxcsr & ~0x3Fu, 0x1F80u);
    EXPECT_TRUE(before == after) << c.control << ' ' << before.status << ' ' << after.status;
    EXPECT_TRUE(before == again) << c.control;
  }
}

TEST_F(Guard, ResultDoesNotDependOnTheHostsSettings) {
  const auto third = [](double& out) {
    return guarded([&out] {
      out = (one / three) * 1e-308;
      return StatusCode{0};
    });
  };
  double expected = 0.0, found = 1.0;
  third(expected);
  for (const std::uint32_t mxcsr : {0x3F80u, 0x5F80u, 0x7F80u, 0x9FC0u}) {  // roundings; flush to zero
    _mm_setcsr(mxcsr);
    third(found);
    _mm_setcsr(0x1F80);
    EXPECT_EQ(found, expected) << mxcsr;
    EXPECT_GT(found, 0.0);
  }
}

TEST_F(Guard, TrapThatWaitsAtEntryStillWaitsAtExit) {
  sink_x = one_x / zero_x;
  load_control(0x037B);  // unmasks the zero divide whose flag is up
  const Words before = read_words();
  const StatusCode status = guarded(noisy);
  const Words after = read_words();
  __asm__ __volatile__("fnclex");
  default_words();
  EXPECT_EQ(status, 7);
  EXPECT_TRUE(before.status & 0x80);
  EXPECT_TRUE(before == after) << before.status << ' ' << after.status;
}

TEST_F(Guard, NothingThrownLeaves) {
  load_control(0x0360);
  _mm_setcsr(0x0000);
  const Words before = read_words();
  const StatusCode memory = guarded([]() -> StatusCode { throw std::bad_alloc(); });
  const StatusCode other = guarded([]() -> StatusCode {
    noisy();
    throw 5;
  });
  const StatusCode size = guarded([]() -> StatusCode {
    std::vector<double> v(3);
    return v.at(5) > 0.0;
  });
  const Words after = read_words();
  default_words();
  EXPECT_EQ(memory, KV_MEMORY);
  EXPECT_EQ(other, KV_INTERNAL);
  EXPECT_EQ(size, KV_INTERNAL);
  EXPECT_TRUE(before == after);
}

#if defined(__i386__)
// What an export does: its local variables need 16 bytes of alignment whatever the host's stack has.
extern "C" KV_REALIGN std::uint32_t KV_CALL misalignment_of_a_local() {
  alignas(16) char local[16];
  std::uint32_t address;
  __asm__ __volatile__("leal %1, %0" : "=r"(address) : "m"(local));
  return address % 16;
}

TEST(Entry, RealignsTheStackOfTheHost) {
  for (std::uint32_t offset : {0u, 4u, 8u, 12u}) {
    std::uint32_t result;
    __asm__ __volatile__("movl %%esp, %%ebx\n\tsubl %1, %%esp\n\tcall *%2\n\tmovl %%ebx, %%esp"
                         : "=a"(result)
                         : "S"(offset), "D"(&misalignment_of_a_local)
                         : "ebx", "ecx", "edx", "memory", "cc");
    EXPECT_EQ(result, 0u) << offset;
  }
}
#endif

TEST(Checks, WhatACallCannotWorkWith) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  MixtureRecord record{};
  const double table[1] = {};
  EXPECT_EQ(check_record(nullptr), KV_NULL_ARGUMENT);
  EXPECT_EQ(check_record(&record), KV_NULL_ARGUMENT);
  record.table = table;
  for (const auto& [count, expected] :
       {std::pair{0, KV_COMPONENT_COUNT}, std::pair{-1, KV_COMPONENT_COUNT},
        std::pair{10001, KV_COMPONENT_COUNT}, std::pair{1, KV_OK}, std::pair{10000, KV_OK}}) {
    record.count = count;
    EXPECT_EQ(check_record(&record), expected) << count;
  }
  for (const double bad : {0.0, -1.0, inf, -inf, nan}) {
    EXPECT_EQ(check_temperature(bad), KV_TEMPERATURE);
    EXPECT_EQ(check_pressure(bad), KV_PRESSURE);
    const double z[3] = {0.5, bad, bad == 0.0 ? -0.1 : 0.5};
    EXPECT_EQ(check_composition(3, z), KV_COMPOSITION) << bad;
  }
  EXPECT_EQ(check_temperature(1e-300), KV_OK);
  const double none[2] = {0.0, -0.0}, some[2] = {0.0, 1e-300};
  EXPECT_EQ(check_composition(2, nullptr), KV_NULL_ARGUMENT);
  EXPECT_EQ(check_composition(2, none), KV_COMPOSITION);
  EXPECT_EQ(check_composition(2, some), KV_OK);
  int a = 0;
  double b = 0.0;
  EXPECT_EQ(check_pointers(&a, &b), KV_OK);
  EXPECT_EQ(check_pointers(&a, static_cast<double*>(nullptr), &b), KV_NULL_ARGUMENT);
}

}  // namespace
