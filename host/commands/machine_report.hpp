// What a valve, an expander or a compressor did, printed as text, JSON or CSV.
#ifndef KESTRUNE_HOST_COMMANDS_MACHINE_REPORT_HPP
#define KESTRUNE_HOST_COMMANDS_MACHINE_REPORT_HPP

#include <ostream>
#include <string>
#include <vector>

#include "commands/session.hpp"
#include "machine.hpp"

namespace kestrune::host {

struct MachineReport {
  const Mixture& mixture;
  UnitSystem units;
  Machine machine;
  double flow;  // mol/s, NaN where none was given
  std::vector<MachineResult> results;
  std::vector<std::string> notes;
};

// What the model cannot do, and liquid where none belongs.
std::vector<std::string> machine_notes(const MachineReport& report);

void print_machine_text(const MachineReport& report, std::ostream& out);
void print_machine_json(const MachineReport& report, std::ostream& out);
void print_machine_csv(const MachineReport& report, std::ostream& out);

}  // namespace kestrune::host

#endif
