// Routines of a host: they work, or they fail in one of the ways in which a host's code fails.
#ifndef KESTRUNE_FUZZ_ROUTINES_HPP
#define KESTRUNE_FUZZ_ROUTINES_HPP

#include <initializer_list>
#include <string>
#include <string_view>

#include "choices.hpp"
#include "kestrune/kvgasthermo.h"

namespace kestrune::fuzz {

// Fills some entries and decides how they behave. True when there is one.
bool draw_routines(Choices& choices, ModelRoutines& routines);
// The same with given entries: manner as routines_text says it.
void set_routines(ModelRoutines& routines, std::initializer_list<int> entries, std::string_view manner,
                  int good_calls);
// Before a call: nothing has been called yet.
void start_routines();
// A routine got a state that is none: not finite, or no composition.
bool routines_were_abused();
// They write what the library itself would write.
bool routines_are_faithful();
// The status that ended a routine, 0 if none did.
StatusCode status_of_routines();
std::string routines_text(const ModelRoutines& routines);

}  // namespace kestrune::fuzz

#endif
