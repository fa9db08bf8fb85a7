// One state of a mixture: its phases with their properties, from the flashes of two and of three phases.
#ifndef KESTRUNE_HOST_EQUILIBRIUM_HPP
#define KESTRUNE_HOST_EQUILIBRIUM_HPP

#include <array>
#include <string>
#include <vector>

#include "properties.hpp"

namespace kestrune::host {

// What a flash is given: two of temperature, pressure, enthalpy H, entropy S and vapour fraction W.
enum class Given { TP, HP, SP, WP, WT };
inline constexpr Given kAllGiven[] = {Given::TP, Given::HP, Given::SP, Given::WP, Given::WT};

// In the order of their names: of WT the vapour fraction and the temperature.
std::array<Quantity, 2> quantities_of(Given given);

struct PhaseState {
  PhaseKind kind;
  double mole_fraction, mass_fraction;  // of the whole; 0 for the incipient phase of a bubble or dew point
  std::vector<double> x;                // mole fractions
  double molar_mass;                    // g/mol
  PropertyValues properties;
  bool aqueous;  // see is_aqueous
  // Of a gas that holds water, and of a liquid rich in carbon dioxide: its water at saturation, by the balance of the command water; else NaN.
  double saturation = kNone;
  double volume_fraction = kNone;  // of the whole; NaN where a phase has no volume (free water)
};

// The enthalpy or entropy of the coldest or the hottest state, beyond which the one that was asked for lies.
struct Bound {
  double T = kNone, value = kNone;  // K, J/mol or J/(mol K)
  bool found() const { return value == value; }
};

struct Equilibrium {
  Given given;
  std::array<double, 2> values;  // what was given, in the order of quantities_of and in base units
  double T, P;                   // K, Pa; NaN where it was asked for and there is no answer
  bool flashed;                  // false: the mixture was taken as one phase, without asking whether it is
  StatusCode status;
  double beta;                     // vapour fraction, mole; 0 beside a dense fluid
  std::vector<double> x, y, K;     // as the library left them; x is all liquid, free water included
  double last_T;                   // K, of these
  std::vector<PhaseState> phases;  // in the order of PhaseKind, with the incipient ones; none without an answer
  PhaseState overall;              // of a flash with an answer: the phases together

  // Of a flash of up to three phases: the library's liquid A. x is its liquid B then, and K is empty.
  bool three = false;
  double beta_A = 0.0;  // mole fraction of A
  std::vector<double> xA = {};

  bool stable = true;          // false: a state of lower free enthalpy is known
  std::string remark = {};     // what is to be said of this state beside its status
  Bound bound = {};            // of a value of H or S that no state has
  bool by_saturation = false;  // the water of the gas was asked for by the balance of saturation

  bool of_fraction() const { return given == Given::WP || given == Given::WT; }
  // A status that comes with phases: one with a value, or a bubble or dew point where the feed is not stable.
  bool answered() const { return has_value(status) || status == KV_UNSTABLE_POINT; }
  // A flash that gave up on the way: beta, x, y, K and last_T are its last iterate.
  bool iterate_left() const;
  const PhaseState* phase(PhaseKind kind) const;  // null when absent
  double liquid_fraction(bool aqueous) const;     // moles of the aqueous or of the other liquids
  double liquid_volume() const;                   // volume of all liquids; NaN where a phase has none
  StatusCode first_failure() const;               // of this call, then of the properties; else 0
  bool extrapolated() const;                      // see PropertyValues
};

// x_i in one phase over x_i in another, K = y/x; NaN where the other has none of the component.
double ratio(const PhaseState& phase, const PhaseState& other, std::size_t component);

// "two-phase" for vapour and liquid, else their number and names, "2: vapour + free water", "1: liquid, incipient
// vapour"; "-" without an answer. A flash of up to three phases always has the names.
std::string phases_in_words(const Equilibrium& state);

// What writes a trace where the mixture asks for one: the flash that was asked for, none that an answer is held against.
enum class Trace { none, asked_for };

// The flash of the library from a cold start and the properties of every phase; at vapour fraction 0 or 1 the
// phase that is about to form is one of them, with fraction 0. The values are in base units and in the order of
// quantities_of. The mixture has been handed over to the library.
Equilibrium flash(const Exports& library, Mixture& mixture, Given given, double first, double second,
                  Trace trace = Trace::none);

// The same flash at a vapour fraction from a warm start: a state with two phases close to the answer, whose branch it
// stays on. Its trace is written.
Equilibrium flash_from(const Exports& library, Mixture& mixture, Given given, double first, double second,
                       const Equilibrium& start);

// The same with up to three phases: vapour, hydrocarbon liquid and aqueous liquid (or free water), or two
// liquids that are both hydrocarbon or both aqueous, the light and the heavy one.
Equilibrium flash_of_three(const Exports& library, Mixture& mixture, Given given, double first, double second,
                           Trace trace = Trace::none);

// As many phases as there are: the flash of three, and where it has no answer that of two, looked at from all sides.
Equilibrium flash_of_all(const Exports& library, Mixture& mixture, Given given, double first, double second);
// The flash of three phases with what there is to say of its answer.
Equilibrium flash_of_up_to_three(const Exports& library, Mixture& mixture, Given given, double first,
                                 double second);
// The flash of two phases; one beside which a flash of three finds something lower is not stable.
Equilibrium flash_of_two(const Exports& library, Mixture& mixture, Given given, double first, double second);

// --water-model saturation: flash_of_all at T and P, then the gas holds the water that the library's balance of
// saturation has for it, and the rest of the water is liquid.
Equilibrium flash_with_saturation(const Exports& library, Mixture& mixture, Given given, double T, double P);

// Of a phase with a Cp or Cv below zero, for which the speed of sound and the Joule-Thomson coefficient rest on it.
inline constexpr const char* kNegativeHeatText =
    "negative heat capacity: the model's own, where its k_ij change steeply with temperature; no property of a "
    "fluid, nor are the speed of sound and the Joule-Thomson coefficient that it makes";

// What the equation of state cannot do, for a phase and its properties; sentences.
std::vector<std::string_view> model_limits(const Mixture& mixture, const PhaseState& phase, double T);

// The mixture as one phase, vapour or liquid. T in K, P in Pa.
Equilibrium single_phase_at_TP(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                               double P);

}  // namespace kestrune::host

#endif
