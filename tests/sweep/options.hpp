// Command line of kestrune_sweep and its runs.
#ifndef KESTRUNE_TESTS_SWEEP_OPTIONS_HPP
#define KESTRUNE_TESTS_SWEEP_OPTIONS_HPP
#include <cstdio>
#include <map>
#include <string>

#include "library.hpp"

namespace kestrune::sweep {

enum class Mode {
  isothermal,
  saturation,
  caloric,
  values,
  three_phase,
  three_phase_caloric,
  free_water,
  own_routines
};

struct Options {
  Mode mode = Mode::isothermal;
  int states = 0, jobs = 1, critical_steps = 40;
  uint64_t seed = 1;
  bool warm = false, times = false;
  std::string mixture, library, data, failures = "/dev/null";

  // Other states for every feed.
  uint64_t seed_of(const Feed& feed) const;
};

// One of the runs: prints a table and returns the number of wrong answers; -1 when nothing was asked.
struct Run {
  Mode mode;
  const char *option, *what;
  int (*body)(const Options& options, Library& library, std::FILE* failures);
  int full, few;  // states of the whole run and of the sample
};
const Run& run_of(Mode mode);

void print_usage();

// False when the command line cannot be understood.
bool parse(int argc, char** argv, Options& options);

int run_isothermal(const Options& options, Library& library, std::FILE* failures);
int run_saturation(const Options& options, Library& library, std::FILE* failures);
int run_caloric(const Options& options, Library& library, std::FILE* failures);
int run_three(const Options& options, Library& library, std::FILE* failures);
int run_three_given(const Options& options, Library& library, std::FILE* failures);
int run_wet(const Options& options, Library& library, std::FILE* failures);
int run_routines(const Options& options, Library& library, std::FILE* failures);

}  // namespace kestrune::sweep

#endif
