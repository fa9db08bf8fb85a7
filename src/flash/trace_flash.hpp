// Trace records of the flashes of two phases; the labels with their exact spacing live in trace_flash.cpp.
#ifndef KESTRUNE_FLASH_TRACE_FLASH_HPP
#define KESTRUNE_FLASH_TRACE_FLASH_HPP

#include "flash/energy/energy_flash.hpp"
#include "flash/isothermal/isothermal.hpp"

namespace kestrune::flash {

/*
 * A flash at T and P: its header; for every start that is iterated from the state there, and the passes; at the
 * end the result, before it the number of the start when that was the solver's own. Without any iteration the
 * initial state is the feed.
 */
void trace_header(FlashTrace& trace, const IsothermalCall& call, const Settings& settings);
void trace_initial(FlashTrace& trace, int n, const Iterate& it);
void trace_pass(FlashTrace& trace, bool linearised, double factor, const Iterate& it);
void trace_result(FlashTrace& trace, const IsothermalCall& call, const Iterate& it);
/* Headers of the flashes at vapour fraction W, of the temperature (of_T) or the pressure, and their start. */
void trace_quality_header(support::TraceWriter& trace, bool of_T, double W, int index,
                          const Settings& settings);
void trace_quality_start(support::TraceWriter& trace, bool of_T, double start, int n, const double* x,
                         const double* y);
/*
 * Records of the flashes at enthalpy or entropy: header with the temperature that is started from, one state,
 * the summary with the lowest temperature of the components.
 */
void trace_energy_header(support::TraceWriter& trace, const EnergyCall& call, double start);
void trace_energy_pass(support::TraceWriter& trace, const EnergyCall& call, double T, double beta,
                       double liquid, double vapour);
void trace_energy_result(support::TraceWriter& trace, const EnergyCall& call);

}  // namespace kestrune::flash

#endif
