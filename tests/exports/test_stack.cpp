// A 32-bit host whose stack is aligned to 4 bytes only: every export, found by its plain name, called with the
// stack at every offset from 16. The callee removes exactly its own arguments.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <map>

#include "export_table.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

// Pushes words so that esp % 16 = offset at the call, calls, and tells by how much esp is off afterwards (0
// when the callee removed them all). The result of the callee comes back in result.
int call_at(void* function, const std::uint32_t* words, int count, unsigned offset, std::uint32_t& result) {
  // The address goes in front of the words: with the stack moved, only registers can be relied on.
  std::vector<std::uint32_t> block{static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(function))};
  block.insert(block.end(), words, words + count);
  const std::uint32_t* first = block.data() + 1;
  __asm__ __volatile__(
      "movl %%esp, %%edi\n\t"  // the caller's stack
      "leal 0(,%%ecx,4), %%eax\n\t"
      "movl %%esp, %%ebx\n\t"
      "subl %%eax, %%ebx\n\t"
      "subl $256, %%ebx\n\t"
      "andl $-16, %%ebx\n\t"
      "addl %%edx, %%ebx\n\t"  // esp at the call
      "leal (%%ebx,%%eax), %%esp\n\t"
      "movl %%esp, %%edx\n\t"  // where esp has to be afterwards
      "1:\n\t"
      "testl %%ecx, %%ecx\n\t"
      "jz 2f\n\t"
      "decl %%ecx\n\t"
      "pushl (%%esi,%%ecx,4)\n\t"
      "jmp 1b\n\t"
      "2:\n\t"
      "movl %%edx, %%ebx\n\t"
      "call *-4(%%esi)\n\t"
      "movl %%ebx, %%edx\n\t"
      "subl %%esp, %%edx\n\t"
      "movl %%edi, %%esp\n\t"
      : "=&a"(result), "+d"(offset), "+c"(count)
      : "S"(first)
      : "ebx", "edi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
  return static_cast<int>(offset);
}

std::vector<std::uint32_t> words_of(const std::vector<Slot>& slots) {
  std::vector<std::uint32_t> words;
  for (const Slot& s : slots) {
    if (s.kind == 'd') {
      std::uint32_t halves[2];
      std::memcpy(halves, &s.number, 8);
      words.insert(words.end(), halves, halves + 2);
    } else if (s.kind == 'i') {
      words.push_back(static_cast<std::uint32_t>(s.integer));
    } else {
      words.push_back(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(s.address)));
    }
  }
  return words;
}

const std::map<std::string, std::size_t> kBytes{
#define EXPORT(name, bytes) {#name, bytes},
#include "headers/exports.inc"
#undef EXPORT
};

void* entry(const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("KVGasThermo.dll"), name));
}

TEST(Stack, EveryExportAtEveryOffset) {
  Mixture m = mixture_of({"methane", "propane", "n_hexane"});
  std::vector<double> z{0.6, 0.3, 0.1};
  m.use();
  for (const Export& e : export_table())
    for (const unsigned offset : {0u, 4u, 8u, 12u}) {
      SCOPED_TRACE(testing::Message() << e.name << " at " << offset);
      void* const function = entry(e.name);
      ASSERT_NE(function, nullptr);
      Arguments a(e, m, z), direct(e, m, z);
      const auto words = words_of(a.slots);
      EXPECT_EQ(words.size() * 4, kBytes.at(e.name));
      std::uint32_t status = 0;
      EXPECT_EQ(call_at(function, words.data(), static_cast<int>(words.size()), offset, status), 0);
      EXPECT_EQ(static_cast<StatusCode>(status), e.call(direct.slots));
      EXPECT_EQ(a.doubles, direct.doubles);
      EXPECT_EQ(a.integers, direct.integers);
    }
}

TEST(Stack, GroupDataAndMolarMass) {
  Mixture m = mixture_of({"methane", "propane"});
  for (const unsigned offset : {4u, 8u, 12u}) {
    for (double& v : m.buffers[1]) v = kMark;
    const auto address = [](const void* p) {
      return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(p));
    };
    const std::uint32_t convert[] = {2,
                                     static_cast<std::uint32_t>(m.groups),
                                     address(m.counts.data()),
                                     address(m.A.data()),
                                     address(m.B.data()),
                                     address(m.storage)};
    std::uint32_t status = 0;
    EXPECT_EQ(call_at(entry("ConvertPPR78GroupData"), convert, 6, offset, status), 0);
    EXPECT_EQ(m.buffers[1][0], 0.0);
    const double x[] = {0.5, 0.5}, M[] = {16.0, 44.0};
    double out = 0.0;
    const std::uint32_t weight[] = {2, address(x), address(M), address(&out)};
    EXPECT_EQ(call_at(entry("MolecularWeight"), weight, 4, offset, status), 0);
    EXPECT_EQ(out, 30.0);
  }
}

}  // namespace
