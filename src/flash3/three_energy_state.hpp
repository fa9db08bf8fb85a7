// One flash of up to three phases at enthalpy or entropy under way: what its named steps share. Private to these
// flashes.
#ifndef KESTRUNE_FLASH3_THREE_ENERGY_STATE_HPP
#define KESTRUNE_FLASH3_THREE_ENERGY_STATE_HPP

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash3/specified.hpp"
#include "flash3/three_energy.hpp"

namespace kestrune::flash3 {

// Phases of an equilibrium that are kept, with its temperature.
struct KeptState {
  double T = 0.0;
  bool known = false;
  bool fourth = false;      // another phase would split off (118)
  flash::Gibbs gibbs = {};  // of an analytic model
  Phases p;
};

struct EnergySearch {
  const ThreeEnergyCall& call;
  Equilibrium e;
  flash::CaloricModel caloric;
  Specified s;
  KeptState low, high;  // the closest states below and above the value
  Phases joined;        // of both
  flash::EnergyBracket bracket;
  double value = 0.0;       // of e.p at e.m.T
  double slope = 0.0;       // at constant amounts
  double Cp = 0.0;          // of the phases, cal/(mol K), where it is known
  bool rising = true;       // the value of every phase rises with T
  flash::Gibbs gibbs = {};  // of e.p, of an analytic model
  double phase[kMostPhases] = {};
  double attempted = 1.0;  // relative width of the bracket at the last attempt between its sides
  bool asked_coldest = false, end_of_range = false;
  bool falling = false;             // the coldest states lie above the value, but it may fall with T
  bool jump = false;                // the value lies between those of two sets of three of four phases
  double aside = 4.0;               // beside_jump: how far from the place, in the square of the relative width
  double narrowed = 1.0;            // relative width before the last state
  double no_answer = 0.0;           // the last temperature that had none; 0: none yet
  StatusCode status = KV_OK;        // of what failed
  StatusCode state_status = KV_OK;  // of the equilibrium: KV_OK or KV_FOURTH_PHASE
};

inline double off(const EnergySearch& q) {
  return q.value - q.call.wanted;
}

inline double size_of_value(const EnergySearch& q) {
  return std::max(std::fabs(q.call.wanted), 1.0);
}

/*
 * Value of every phase of e.p and of the whole, and their Gibbs energy where the model is analytic; of the phases as
 * they will be written, since what a trace adds to the value need not vanish with it. False: q.status.
 */
bool evaluate(EnergySearch& q);

// Newton at the phases of e.p, without those that end with less than nothing. True: e.p at q.s.T has the value.
bool solve_at_phases(EnergySearch& q, double T);

/*
 * Whether what Newton found is the equilibrium at its temperature. If not, e.p is what is, and the bracket
 * knows it.
 */
bool confirm(EnergySearch& q);

/*
 * The phases that are seen on the two sides of the bracket, and of four of them all sets of three: those
 * between the sides, where temperature stands still.
 */
bool solve_between_sides(EnergySearch& q);

// Whether the sides have three of four phases each (118), and not the same ones.
bool other_three(const EnergySearch& q);

/*
 * Where three of four phases give way to three others the value jumps. True: T, inside the bracket, is beside the
 * place where their Gibbs energies are the same, so that its longer side goes; low: T is below that place.
 */
bool beside_jump(const EnergySearch& q, double& T, bool& low);

// The bracket holds such a place and hardly anything else, and the value is far from that of its sides.
bool is_jump(const EnergySearch& q);

}  // namespace kestrune::flash3

#endif
