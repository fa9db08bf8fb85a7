// Command line of kestrune_sweep and its runs.
#pragma once
#include <cstdio>
#include <map>
#include <string>

#include "library.hpp"

namespace kestrune::sweep {

enum class Mode { isothermal, saturation, caloric, three_phase, three_phase_caloric, values };

struct Options {
  Mode mode = Mode::isothermal;
  int states = 0, jobs = 1, critical_steps = 40;
  uint64_t seed = 1;
  bool warm = false, times = false;
  std::string mixture, library, data, failures = "sweep_failures.csv";

  // Other states for every feed.
  uint64_t seed_of(const Feed& feed) const;
};

extern const char* const usage;

// False when the command line cannot be understood.
bool parse(int argc, char** argv, Options& options);

// Each prints a table and returns the number of wrong answers; -1 when nothing was asked.
int run_isothermal(const Options& options, Library& library, std::FILE* failures);
int run_saturation(const Options& options, Library& library, std::FILE* failures);
int run_caloric(const Options& options, Library& library, std::FILE* failures);
int run_three(const Options& options, Library& library, std::FILE* failures);
int run_three_given(const Options& options, Library& library, std::FILE* failures);

// Wrong answers by what is wrong, one line each.
void print_groups(const std::map<std::string, int>& groups);

// Values between semicolons in 17 digits.
void write_values(std::FILE* file, const Composition& values);

}  // namespace kestrune::sweep
