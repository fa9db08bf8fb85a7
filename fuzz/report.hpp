// Runs and what is counted of them: shared by the programs, the plain driver and libFuzzer.
#ifndef KESTRUNE_FUZZ_REPORT_HPP
#define KESTRUNE_FUZZ_REPORT_HPP

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrune::fuzz {

// A call that took long: of which run, with how many components.
struct Slowest {
  double ms;
  std::uint64_t run;
  int size;
};

// Figures of one export or reader. Sound: nothing was wrong with what it was given.
struct Tally {
  char name[48];
  std::uint64_t calls, answers, faults;
  std::uint64_t slow;  // sound calls of up to 40 components above 50 ms
  double total_ms;
  Slowest sound, any;  // sound: up to 40 components

  void count(double ms, int size, bool answered, bool is_sound);
};

// Plain data, so that a process can leave it to another one.
struct Progress {
  static constexpr std::size_t kTallies = 48, kKinds = 200, kKey = 120;

  std::uint64_t seed, first, run, faults, known;  // known: cases made before the runs
  int call;
  const char* only;  // name of an export or reader, or null for all
  bool narrate;      // print every call before it is made
  Tally tallies[kTallies];
  struct Kind {
    char key[kKey];
    std::uint64_t count;
  } kinds[kKinds];

  Tally& tally(const char* name);
};

// What the runs count in.
extern Progress* progress;

// One run of the program, read from bytes.
void one_run(const std::uint8_t* data, std::size_t size);

// Cases that are made before the runs.
std::size_t known_cases();
void known_case(std::size_t k);

// Processor time of this process so far, ms (of the wall under Windows): other work on the machine is none of a call's.
double processor_ms();

// Prints a fault, the first few of its kind.
void count_fault(const char* of, const std::string& what, const std::string& details);
void print_table(const Progress& p);

}  // namespace kestrune::fuzz

#endif
