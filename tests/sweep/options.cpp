#include "options.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace kestrune::sweep {

const Run runs[] = {
    {Mode::isothermal, "--isothermal", "the flash at T and P (the default)", run_isothermal, 100000, 4000},
    {Mode::saturation, "--saturation", "bubble, dew and quality points", run_saturation, 50000, 1500},
    {Mode::caloric, "--caloric", "flashes at enthalpy and entropy, there and back", run_caloric, 50000, 1500},
    {Mode::values, "--values", "the same at values on a grid, at several pressures", run_caloric, 50000, 1500},
    {Mode::three_phase, "--three-phase", "two liquids and a vapour at T and P, cold and warm", run_three, 30000,
     900},
    {Mode::three_phase_caloric, "--three-phase-caloric", "the same at enthalpy, entropy and vapour fraction",
     run_three_given, 6000, 240},
    {Mode::free_water, "--free-water", "two-phase flashes of random feeds with free water", run_wet, 50000,
     1500},
    {Mode::own_routines, "--own-routines", "the library's own routines in the record against the null record",
     run_routines, 600, 60},
};

const Run& run_of(Mode mode) {
  return *std::find_if(std::begin(runs), std::end(runs), [&](const Run& run) { return run.mode == mode; });
}

void print_usage() {
  std::fputs("kestrune_sweep [run] [options]\n", stderr);
  for (const Run& run : runs)
    std::fprintf(stderr, "  %-24s %s: %d states, a sample %d\n", run.option, run.what, run.full, run.few);
  std::fputs(
      "  --sample         a small fixed sample for every build\n"
      "  --states N       states in all\n"
      "  --jobs N         threads of the judge (default 1)\n"
      "  --seed N         another set of states (default 1)\n"
      "  --warm           ask every state a second time, warm from the answer of the state before it\n"
      "  --times          print the times of the calls (not of the flash at T and P)\n"
      "  --mixture NAME   one mixture only\n"
      "  --library FILE   shared library (default: beside this program)\n"
      "  --data DIR       folder of the component data (default: KESTRUNE_DATA of the environment, else the "
      "build's)\n"
      "  --failures FILE  wrong answers with their conditions (default: none is written)\n",
      stderr);
}

bool parse(int argc, char** argv, Options& o) {
  const char* folder = std::getenv("KESTRUNE_DATA");
  o.data = folder ? folder : KESTRUNE_DATA;
  bool sample = false;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    const auto run =
        std::find_if(std::begin(runs), std::end(runs), [&](const Run& r) { return name == r.option; });
    if (run != std::end(runs)) {
      o.mode = run->mode;
      continue;
    }
    if (name == "--sample" || name == "--warm" || name == "--times") {
      (name == "--sample" ? sample : name == "--warm" ? o.warm : o.times) = true;
      continue;
    }
    if (i + 1 >= argc) return false;
    const char* value = argv[++i];
    if (name == "--states")
      o.states = std::max(1, std::atoi(value));
    else if (name == "--jobs")
      o.jobs = std::max(1, std::atoi(value));
    else if (name == "--seed")
      o.seed = std::strtoull(value, nullptr, 10);
    else if (name == "--mixture")
      o.mixture = value;
    else if (name == "--library")
      o.library = value;
    else if (name == "--data")
      o.data = value;
    else if (name == "--failures")
      o.failures = value;
    else
      return false;
  }
  if (sample) o.critical_steps = 14;
  if (o.states == 0) o.states = sample ? run_of(o.mode).few : run_of(o.mode).full;
  return true;
}

uint64_t Options::seed_of(const Feed& feed) const {
  uint64_t value = seed;
  for (char letter : feed.name) value = value * 131 + static_cast<unsigned char>(letter);
  return value;
}

}  // namespace kestrune::sweep
