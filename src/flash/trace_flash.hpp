// Trace records of the isothermal solver; the labels with their exact spacing live in trace_flash.cpp.
#ifndef KESTRUNE_FLASH_TRACE_FLASH_HPP
#define KESTRUNE_FLASH_TRACE_FLASH_HPP

#include "flash/isothermal.hpp"

namespace kestrune::flash {

void trace_header(support::TraceWriter& trace, const IsothermalCall& call, const Settings& settings);
void trace_initial(support::TraceWriter& trace, const IsothermalCall& call, double beta, const double* x,
                   const double* y, const double* z);
void trace_internal_index(support::TraceWriter& trace, int index);
void trace_result(support::TraceWriter& trace, const IsothermalCall& call);

}  // namespace kestrune::flash

#endif
