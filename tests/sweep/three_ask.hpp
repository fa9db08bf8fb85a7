// Calls of the three-phase flashes at given values, judged: back from known states, and values on a grid.
#ifndef KESTRUNE_TESTS_SWEEP_THREE_ASK_HPP
#define KESTRUNE_TESTS_SWEEP_THREE_ASK_HPP
#include <functional>

#include "library.hpp"
#include "three_states.hpp"

namespace kestrune::sweep {

// One call and what came of it.
struct Trip {
  const char* name = "HP";  // of the export, with the start
  double value = 0, expected = 0, found = 0;
  ThreeAnswer phases;
  GivenVerdict verdict;
  bool none = false;  // a status where the value is not met, or where there are four phases
};

// What the calls of one system share.
struct Asker {
  Library& library;
  const System& system;
  const Components& components;

  // Everything that is asked about state k; before: the state before it, or null.
  std::vector<Trip> ask(int k, const ThreeState& s, const ThreeState* before) const;

  // Values on the lines through the state s: H or S at its pressure between the ends of the system's
  // temperatures, and W from 0 to 1 at its pressure or temperature; each cold and from a warm, an absurd or a
  // false start. An answer is judged at the point returned.
  std::vector<Trip> grid(int line, const ThreeState& s) const;

  Question question(const ThreeState& s, double T, double P) const { return {&components, s.z, T, P}; }

 private:
  // A value less the one that is wanted along a line of T or P; false where there is no answer.
  using Along = std::function<bool(double at, double& f, ThreeAnswer& answer)>;

  ThreeValues values(Quantity quantity, const Question& q, const ThreeAnswer& answer) const;
  double total(Quantity quantity, const ThreeState& s) const;
  Trip caloric(const char* name, Quantity quantity, double value, double T_low, double T_high,
               const ThreeState& s, double start, const ThreeAnswer* estimate) const;
  Trip point(const char* name, double W, bool at_pressure, const ThreeState& s, double start,
             const ThreeAnswer* estimate) const;
  double crossing(const ThreeState& s, bool of_T, const Along& along, double slack) const;
  void excuse(Trip& trip, const ThreeState& s, bool at_pressure, double known) const;
  void energy_line(int line, const ThreeState& s, std::vector<Trip>& trips) const;
  void fraction_line(int line, const ThreeState& s, std::vector<Trip>& trips) const;
};

}  // namespace kestrune::sweep

#endif
