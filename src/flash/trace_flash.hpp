// Trace records of the isothermal solver; the labels with their exact spacing live in trace_flash.cpp.
#ifndef KESTRUNE_FLASH_TRACE_FLASH_HPP
#define KESTRUNE_FLASH_TRACE_FLASH_HPP

#include "flash/energy_flash.hpp"
#include "flash/isothermal.hpp"

namespace kestrune::flash {

void trace_header(support::TraceWriter& trace, const IsothermalCall& call, const Settings& settings);
void trace_initial(support::TraceWriter& trace, const IsothermalCall& call, double beta, const double* x,
                   const double* y, const double* z);
void trace_internal_index(support::TraceWriter& trace, int index);
/* Headers of the flashes at vapour fraction W, of the temperature (of_T) or the pressure, and their start. */
void trace_quality_header(support::TraceWriter& trace, bool of_T, double W, int index,
                          const Settings& settings);
void trace_quality_start(support::TraceWriter& trace, bool of_T, double start, int n, const double* x,
                         const double* y);
/* Records of the flashes at enthalpy or entropy: header, one state, result. */
void trace_energy_header(support::TraceWriter& trace, const EnergyCall& call, const Settings& settings,
                         double T_low);
void trace_energy_pass(support::TraceWriter& trace, const EnergyCall& call, double T, double beta,
                       double liquid, double vapour);
void trace_energy_result(support::TraceWriter& trace, const EnergyCall& call);
void trace_result(support::TraceWriter& trace, const IsothermalCall& call);

}  // namespace kestrune::flash

#endif
