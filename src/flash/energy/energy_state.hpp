// One flash at enthalpy or entropy under way: what its named steps share. Private to these flashes.
#ifndef KESTRUNE_FLASH_ENERGY_ENERGY_STATE_HPP
#define KESTRUNE_FLASH_ENERGY_ENERGY_STATE_HPP

#include <cmath>

#include "flash/accept.hpp"
#include "flash/energy/energy_flash.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "flash/settings.hpp"
#include "support/status.hpp"
#include "support/trace.hpp"

namespace kestrune::flash {

// Whether a temperature given is one to start from, K.
inline bool plausible(double T) {
  return T >= 60.0 && T <= 2000.0;
}

inline constexpr double kColdest = 3.0, kHottest = 10000.0;  // K, the range that is searched
inline constexpr double kFarOff = 1e-6;  // of the scale of a value: more than what is within rounding of T

/*
 * Before a search goes on below kCold it looks at these states, the coldest last. A value that still lies lower has no
 * state; but where the model lets the value of a phase fall as T rises the coldest state is not the lowest: the search
 * goes on then, as far as the first of these.
 */
inline constexpr double kCold = 60.0;  // K
inline constexpr double kColdStates[] = {27.0, 9.0, kColdest};

/*
 * Whether a value that lies off below that of the state at T is further away than a feed can give up on its way to the
 * coldest state: for every kelvin twice what its phases give up at T, and what changes of phase add, 40 R; where helium,
 * hydrogen and neon alone can still condense, 15 R. capacity: of the phases at T and constant amounts, cal/(mol K).
 */
inline bool out_of_reach(Property property, double T, double off, double capacity) {
  constexpr double kTimes = 2.0, kCondensing = 80.0, kCondensed = 30.0;  // cal/(mol K)
  const double most = (T > kColdStates[0] ? kCondensing : kCondensed) + kTimes * std::fmax(capacity, 0.0);
  return off > most * (property == Property::enthalpy ? T : std::log(T / kColdest));
}

/* What cold states say of a value that lies below that of the state at which they are asked. */
enum class Cold {
  unknown,
  goes_on,  // a state below has a lower value, or there is no telling: the search goes on
  falling,  // the value may fall as T rises: so too, as far as the first of the cold states
  beyond    // no state has it
};

/* What one of them says, whose value is above the one wanted by off. */
inline Cold ask_cold_state(Property property, double T, double off, double capacity, bool rising) {
  if (off < 0.0) return Cold::goes_on;
  if (!rising) return Cold::falling;
  return T == kColdest || out_of_reach(property, T, off, capacity) ? Cold::beyond : Cold::unknown;
}

/* Asks those below T, by Cold ask(T), until one knows. */
template <class Ask>
Cold ask_cold_states(double below, Ask&& ask) {
  Cold found = Cold::unknown;
  for (const double T : kColdStates)
    if (T < below && found == Cold::unknown) found = ask(T);
  return found;
}

// The equilibrium at one temperature. Arrays [ld].
struct EnergyState {
  double T = 0.0, beta = 0.0;
  double *x = nullptr, *y = nullptr;
  double liquid = 0.0, vapour = 0.0;  // values of the phases, 0 for one that is absent
  double value = 0.0;                 // of the whole
  double slope = 0.0;                 // d value/dT along the equilibrium where it is known, else 0
  bool rising = true;                 // the value of every phase rises with T
  double Cp = 0.0;                    // of the phases, cal/(mol K), where it is known
  Gibbs gibbs;                        // of an analytic model
  StatusCode status = KV_OK;          // of the isothermal flash, 95 as KV_OK
  bool two_phases() const { return beta > 0.0 && beta < 1.0; }
};

// Temperatures between which the value is crossed. The weights are those of the Illinois rule: an end that
// stays twice counts half.
struct EnergyBracket {
  static constexpr double kSlack = 1e-4, kSameEnd = 1e-9;
  double low = kColdest, high = kHottest;
  double f_low = 0.0, f_high = 0.0;
  double weight_low = 1.0, weight_high = 1.0;
  bool have_low = false, have_high = false;
  int side = 0;

  void add(double T, double f) {
    if (f < 0.0 && (!have_low || T > low)) {
      low = T;
      f_low = f;
      have_low = true;
      weight_low = 1.0;
      if (side == -1) weight_high *= 0.5;
      side = -1;
    } else if (f > 0.0 && (!have_high || T < high)) {
      high = T;
      f_high = f;
      have_high = true;
      weight_high = 1.0;
      if (side == 1) weight_low *= 0.5;
      side = 1;
    }
  }
  bool closed() const { return have_low && have_high; }
  bool inside(double T) const { return T > low && T < high; }
  // At an end whose value is off by more than that: a flash has been there, and the answer is not.
  bool at_end(double T, double off) const {
    return (have_low && T <= low * (1.0 + kSameEnd) && -f_low > off) ||
           (have_high && T >= high * (1.0 - kSameEnd) && f_high > off);
  }
  // Where the vapour fraction grows within a hair of T flashes see one phase only, and the ends are no better
  // known than that.
  bool about(double T) const { return T > low * (1.0 - kSlack) && T < high * (1.0 + kSlack); }
  // A Newton step that leaves, or after some steps still is about as long as the bracket: it may go to and fro
  // for ever.
  bool should_halve(int steps, double T, double next) const {
    return !inside(next) || (steps >= 4 && std::fabs(next - T) > 0.25 * (high - low));
  }
  double secant() const {
    const double a = weight_low * f_low, b = weight_high * f_high;
    return low - a * (high - low) / (b - a);
  }
};

struct Energy {
  Energy(const EnergyCall& c, CaloricModel& m, support::TraceWriter& t) : call(c), model(m), trace(t) {}
  const EnergyCall& call;
  CaloricModel& model;
  support::TraceWriter& trace;
  const double* z = nullptr;  // [ld], sum 1
  int n = 0, ld = 0;
  eos::Context silent;  // of the flashes inside
  Model fugacities;     // of those, where they can share the prepared temperature of the values
  EnergyState state, spare, saved, other;
  EnergyState low, high;  // the ends of the bracket, once it has them
  EnergyBracket bracket;
  double start_T = 0.0;
  double limit = 0.0;  // +100, -100: the value lies beyond the highest, lowest temperature
  bool jump = false;   // the value lies between those of two different pairs of phases
  bool turned_low = false,
       turned_high = false;  // phases below, above the value have it where others are stable
  bool asked_coldest = false,
       falling = false;    // the coldest states lie above the value, but it may fall with T
  double no_answer = 0.0;  // the last temperature at which a flash had none; 0: none yet
  int flashes = 0;
  StatusCode status = KV_OK;
  // Work of the Newton steps.
  PhaseCaloric liquid, vapour;
  double *in_liquid = nullptr, *in_vapour = nullptr;  // [ld] moles of each component, of one mole of the feed
  double *gap = nullptr, *gap_dT = nullptr;    // [ld] ln f(vapour) - ln f(liquid), g of (26), and d/dT, w
  double *step = nullptr, *along_T = nullptr;  // [ld] change of the amounts; its part with the temperature
  double* scale = nullptr;                     // [ld] of the system
  double* K = nullptr;                         // [ld] where flashes inside write theirs
  double *liquid_dn = nullptr, *vapour_dn = nullptr, *system = nullptr;  // [ld * n]

  double f(const EnergyState& s) const { return s.value - call.wanted; }
  // Whether a flash at T may show something new.
  bool worth_a_look(double T) const {
    return bracket.inside(T) && !bracket.at_end(T, kFarOff * value_scale(T));
  }
  // Of values at T: an enthalpy counts in parts of R T, an entropy of R, where the wanted one is smaller.
  double value_scale(double T) const {
    return std::fmax(std::fabs(call.wanted), eos::kCalR * (call.property == Property::enthalpy ? T : 1.0));
  }
};

// What has found a state, and with that what is still to be shown of it.
enum class Found {
  flash,      // the isothermal flash at its temperature: its phases are proven
  newton,     // Newton's method at given phases
  between,    // the amounts, or the vapour fraction, between those of the ends of the bracket
  component,  // the saturation of a single component, or one of its phases on its side of that
};

/*
 * The gate: every answer leaves through it. Evaluates s and shows that it is a split of the feed, that its
 * fugacities are equal, that it has the value and that its phases are those of equilibrium. What has come from
 * the bracket alone needs no stability test beside the stable ends. component: the one whose fugacities count,
 * -1 for all. False: it is none, or e.status says why that cannot be told.
 */
bool accept(Energy& e, EnergyState& s, Found found, int component = -1);

/* ln phi of a liquid x and a vapour y at T, by whatever gives fugacities here, into e.liquid and e.vapour. False:
 * e.status.
 */
bool fugacities_of(Energy& e, double T, const double* x, const double* y);

void copy_state(const Energy& e, const EnergyState& from, EnergyState& to);

/* The equilibrium at T into s; warm: s holds the start. False: e.status, nothing usable. */
bool equilibrium_at(Energy& e, double T, bool warm, EnergyState& s);

/* Values of the phases of s at s.T from its compositions. False: e.status. */
bool evaluate_state(Energy& e, EnergyState& s);

/* The isothermal flash of the feed at s.T with its answer in s. */
IsothermalCall isothermal_call(Energy& e, EnergyState& s);

/* Whether s has the value, as precisely as a flash can tell. */
bool has_value(const Energy& e, const EnergyState& s);

/* Takes e.state up into the bracket. */
void add_to_bracket(Energy& e);

/*
 * Closes the bracket by isothermal flashes until a state inside is the answer or no width is left. KV_OK with
 * it in e.state; 112 with e.jump where the value lies between two different pairs of phases. Others: of the
 * model.
 */
StatusCode close_bracket(Energy& e);

/* Whether the ends of the bracket have different pairs of phases which change places between them. */
bool pairs_cross(const Energy& e);

inline constexpr double kLimitReached = 100.0;
/* Whether e.status is of the model, and the same at any temperature. */
inline bool model_refuses(const Energy& e) {
  return support::of_model(e.status);
}
inline constexpr StatusCode kNotApplicable = -1;
/*
 * Single component j: saturation by equal fugacities, the lever rule between the two values, else one phase.
 * Returns -1 when it cannot say.
 */
StatusCode solve_single_component(Energy& e, int j, support::Arena& arena);

enum class Local {
  converged,
  vanished,  // a phase is about to vanish; s.T is where
  unstable,  // not what the gate wants
  failed
};
/*
 * Newton at the phases that s has: temperature, and amounts of two phases. On converged s is that state; when
 * one phase alone never has the value, since it lies between those of its two roots, s.T is where they change
 * places.
 */
Local solve_one_phase(Energy& e, EnergyState& s);
Local solve_two_phases(Energy& e, EnergyState& s);

/* Newton on the amounts alone, (26) of docs/method.md with dT = 0: equal fugacities of the phases of s at its T. */
bool equalise(Energy& e, EnergyState& s);

/* As solve_two_phases, within the bracket, through the gate. On converged e.state is the answer. */
Local solve_phases(Energy& e, EnergyState& s);

/*
 * Scale of the residual of the search: the value itself within 1 .. 10000, +-1 below, and +10000 above whatever
 * the sign: large negative values are scaled the other way round than large positive ones.
 */
double residual_scale(double wanted);

/* The search by repeated isothermal flashes with forward differences, from *call.T. */
StatusCode search_temperature(Energy& e, bool warm);

}  // namespace kestrune::flash

#endif
