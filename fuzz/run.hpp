// One run: a mixture and some calls with it, read from bytes. What the drivers share.
#ifndef KESTRUNE_FUZZ_RUN_HPP
#define KESTRUNE_FUZZ_RUN_HPP

#include <cstddef>
#include <cstdint>

namespace kestrune::fuzz {

inline constexpr int kMostExports = 40, kMostKinds = 200, kKeyLength = 120;

// Figures of one export. Sound calls: nothing wrong with the mixture or the arguments.
struct Tally {
  std::uint64_t calls, answers, sound, faults;
  double total_ms, slowest_ms, slowest_sound_ms;
  std::uint64_t slowest_run, slowest_sound_run;
  int slowest_count, slowest_sound_count;  // components
};

// Plain data, so that a process can leave it to another one.
struct Progress {
  std::uint64_t seed, first, run, faults;
  int call;
  const char* only;  // name of an export, or null for all
  bool narrate;      // print every call before it is made
  Tally tally[kMostExports];
  struct Kind {
    char key[kKeyLength];
    std::uint64_t count;
  } kinds[kMostKinds];
};

// The progress that one_run counts in.
extern Progress* progress;

// Number of faults found.
int one_run(const std::uint8_t* data, std::size_t size);
void print_table(const Progress& p);
void count_fault(const char* key_export, const char* what, const char* details);

}  // namespace kestrune::fuzz

#endif
