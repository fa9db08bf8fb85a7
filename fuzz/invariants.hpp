// What holds after every call.
#ifndef KESTRUNE_FUZZ_INVARIANTS_HPP
#define KESTRUNE_FUZZ_INVARIANTS_HPP

#include <string>

#include "calls.hpp"

namespace kestrune::fuzz {

// What is wrong with the answer of a call, in words without numbers, then the numbers; empty: nothing.
struct Finding {
  std::string what, numbers;
};
Finding broken_rule(const Call& call);

// Makes a call, counts it and the rule that it broke.
void make_call(Call& call);

}  // namespace kestrune::fuzz

#endif
