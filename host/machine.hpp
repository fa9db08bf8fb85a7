// Valves, expanders and compressors: what comes out, and the work, from flashes at enthalpy and at entropy.
#ifndef KESTRUNE_HOST_MACHINE_HPP
#define KESTRUNE_HOST_MACHINE_HPP

#include <string>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

enum class MachineKind { valve, expander, compressor };

// Of the efficiency: isentropic, of the whole step (work against that of the step at constant entropy), or polytropic, of
// every small part of it.
enum class Path { isentropic, polytropic };

struct Machine {
  MachineKind kind;
  Path path = Path::isentropic;
  double efficiency = 1.0;   // 0 < efficiency <= 1
  int stages = 1;            // of equal pressure ratio
  double cooling_T = kNone;  // K, of a compressor between its stages; NaN: none
};

// A place on the way, with what was done since the one before it. J/mol: work that the fluid took up (an expander's is
// negative), heat that it took up in a cooler.
struct Station {
  std::string name;  // "inlet", "stage 1", "cooler 1"
  Equilibrium state;
  double work = 0.0, heat = 0.0;
};

struct MachineResult {
  double P;  // Pa, of the outlet that was asked for
  std::vector<Station> stations;
  double work = 0.0, heat = 0.0;         // J/mol of all stations
  double isentropic_efficiency = kNone;  // of a machine of one stage
  StatusCode status = KV_OK;             // the first that is no answer; the stations end there

  const Equilibrium& outlet() const { return stations.back().state; }
};

// From an inlet state with an answer to a pressure, Pa. The mixture has been handed over to the library. Polytropic: dH = v dP/efficiency
// of a compressor, dH = efficiency v dP of an expander, integrated over ln P by the classical Runge-Kutta rule
// with so many steps that twice as many change the work by less than 1e-6 of it.
MachineResult run_machine(const Exports& library, Mixture& mixture, const Machine& machine,
                          const Equilibrium& inlet, double P);

}  // namespace kestrune::host

#endif
