// Trace records of the three-phase solver; the labels with their exact spacing live in trace_phases.cpp.
#ifndef KESTRUNE_FLASH3_TRACE_PHASES_HPP
#define KESTRUNE_FLASH3_TRACE_PHASES_HPP

#include "flash3/solver.hpp"

namespace kestrune::flash3 {

/* The header of a flash and the phases that it starts from, which stand in their slots. */
void trace_start(support::TraceWriter& trace, const Iteration& how, int n, const double* z, const Phases& p);

struct Pass {
  int number;
  double error, factor;
  bool newton;
};
/* One pass; long_form: with the amounts and compositions of the three phases. */
void trace_pass(support::TraceWriter& trace, const Pass& pass, int n, const Phases& p, bool long_form);

}  // namespace kestrune::flash3

#endif
