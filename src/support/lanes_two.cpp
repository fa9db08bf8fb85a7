// The loops for vectors of two doubles, and the choice.
#define KESTRUNE_LANES kTwoLanes
#define KESTRUNE_LANES_NAME "two"
#include "support/lanes_loops.hpp"

namespace kestrune::support {
namespace {

const Lanes* widest() {
#ifdef KESTRUNE_WIDE
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx2")) return &kFourLanes;
#endif
  return &kTwoLanes;
}

}  // namespace

const Lanes* const lanes = widest();

}  // namespace kestrune::support
