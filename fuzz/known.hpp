// Cases that once went wrong, made before the random runs.
#ifndef KESTRUNE_FUZZ_KNOWN_HPP
#define KESTRUNE_FUZZ_KNOWN_HPP

#include "calls.hpp"

namespace kestrune::fuzz {

// Makes the call, counts it and looks at its answer.
void make_call(Call& call);

}  // namespace kestrune::fuzz

#endif
