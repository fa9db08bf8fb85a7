// The loops for vectors of four doubles; compiled for AVX2, and run where the processor has it.
#ifdef KESTRUNE_WIDE
#define KESTRUNE_LANES kFourLanes
#define KESTRUNE_LANES_NAME "four"
#include "support/lanes_loops.hpp"
#endif
