#include "options.hpp"

#include <algorithm>
#include <cstdlib>

namespace kestrune::sweep {

const char* const usage =
    "kestrune_sweep [options]\n"
    "  --saturation     bubble, dew and quality points instead of the flash at T and P\n"
    "  --caloric        flashes at enthalpy and entropy instead\n"
    "  --values         flashes at values of enthalpy and entropy on a grid, at several pressures\n"
    "  --three-phase    two liquids and a vapour at T and P, cold and warm\n"
    "  --three-phase-caloric  the same at enthalpy, entropy and vapour fraction\n"
    "  --sample         a small fixed sample for every build\n"
    "  --states N       states in all (default 100000; saturation and caloric 50000, three-phase 30000, 6000; "
    "values "
    "50000)\n"
    "  --jobs N         threads of the judge (default 1)\n"
    "  --seed N         another set of states (default 1)\n"
    "  --warm           ask every state a second time, warm from the answer of the state before it\n"
    "  --times          print the times of the calls (not of the flash at T and P)\n"
    "  --mixture NAME   one mixture only\n"
    "  --library FILE   shared library (default: beside this program)\n"
    "  --data DIR       folder of the component data (default: KESTRUNE_DATA of the environment, else the "
    "build's)\n"
    "  --failures FILE  wrong answers with their conditions (default sweep_failures.csv)\n";

bool parse(int argc, char** argv, Options& o) {
  const char* folder = std::getenv("KESTRUNE_DATA");
  o.data = folder ? folder : KESTRUNE_DATA;
  bool sample = false;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--sample" || name == "--warm" || name == "--times" || name == "--saturation" ||
        name == "--caloric" || name == "--values" || name == "--three-phase" ||
        name == "--three-phase-caloric") {
      if (name == "--sample") sample = true;
      if (name == "--warm") o.warm = true;
      if (name == "--times") o.times = true;
      if (name == "--saturation") o.mode = Mode::saturation;
      if (name == "--caloric") o.mode = Mode::caloric;
      if (name == "--values") o.mode = Mode::values;
      if (name == "--three-phase") o.mode = Mode::three_phase;
      if (name == "--three-phase-caloric") o.mode = Mode::three_phase_caloric;
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
  if (o.states == 0) {
    const int full[] = {100000, 50000, 50000, 30000, 6000, 50000}, few[] = {4000, 1500, 1500, 900, 240, 1500};
    o.states = (sample ? few : full)[static_cast<int>(o.mode)];
  }
  return true;
}

uint64_t Options::seed_of(const Feed& feed) const {
  uint64_t value = seed;
  for (char letter : feed.name) value = value * 131 + static_cast<unsigned char>(letter);
  return value;
}

void print_groups(const std::map<std::string, int>& groups) {
  for (const auto& [reason, count] : groups) std::printf("  %7d  %s\n", count, reason.c_str());
}

void write_values(std::FILE* file, const Composition& values) {
  for (size_t i = 0; i < values.size(); ++i) std::fprintf(file, "%s%.17g", i ? ";" : "", values[i]);
}

}  // namespace kestrune::sweep
