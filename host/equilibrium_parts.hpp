// What the flashes of two and of three phases build a state from.
#ifndef KESTRUNE_HOST_EQUILIBRIUM_PARTS_HPP
#define KESTRUNE_HOST_EQUILIBRIUM_PARTS_HPP

#include <algorithm>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

inline constexpr double kAqueous = 0.5;  // share of water, alcohols and glycols above which a liquid is aqueous
inline constexpr double kSomeWater = 0.01;    // and its least water
inline constexpr double kPureEnough = 0.9;    // water of an aqueous liquid for which the balance of water holds
inline constexpr double kWaterRich = 0.9999;  // from here on the library takes a liquid for free water

// K: an answer at an enthalpy or entropy beyond these is none, there is no state there.
inline constexpr double kColdest = 60.0, kHottest = 2000.0;

// Turns the trace of the record on while a call of the library lasts.
class TraceOfCall {
 public:
  TraceOfCall(Mixture& mixture, Trace trace) : record_(mixture.record) {
    constexpr std::int32_t full = 2;
    record_.trace_flag = mixture.trace && trace == Trace::asked_for ? full : 0;
  }
  ~TraceOfCall() { record_.trace_flag = 0; }
  TraceOfCall(const TraceOfCall&) = delete;
  TraceOfCall& operator=(const TraceOfCall&) = delete;

 private:
  MixtureRecord& record_;
};

// Water with the alcohols, glycols and ammonia of the databank, and whether a liquid of it is called aqueous.
double polar_share(const Mixture& mixture, const std::vector<double>& x);
bool is_aqueous(const Mixture& mixture, const std::vector<double>& x);

// The critical temperature of a composition, K; NaN where it has none. Kept for one that comes again.
struct LastCritical {
  std::vector<double> x;
  double T = kNone;
};

// Whether a phase that is packed like a liquid is hotter than its critical temperature: above that of every component;
// above that of its critical point; where there is none, without a bubble point.
bool is_dense(const Exports& library, const Mixture& mixture, const std::vector<double>& x, double T,
              LastCritical* last = nullptr);

// A liquid of a flash of three by what it is, without water, alcohols and glycols in the feed just "liquid"; alone:
// there is no vapour beside it. T in K.
PhaseKind liquid_kind(const Exports& library, const Mixture& mixture, double T, const std::vector<double>& x,
                      bool alone, LastCritical* last = nullptr);

// The liquid of a flash of two phases; alone: there is no vapour beside it. T in K.
PhaseKind only_liquid_kind(const Exports& library, const Mixture& mixture, double T,
                           const std::vector<double>& x, bool alone, LastCritical* last = nullptr);

// Packed like a liquid: v/b below a part of its value at the critical point of the equation of state.
bool is_packed(const Mixture& mixture, const std::vector<double>& x, double molar_volume, double part = 1.0);

// Whether the lightest of three phases is a liquid as well: the root of lower free enthalpy says so, or its volume.
// gas: its free enthalpy and molar volume as a gas; G_liquid: the free enthalpy of its liquid root.
bool is_third_liquid(const Mixture& mixture, const std::vector<double>& x, const PropertyValues& gas,
                     double G_liquid);

// Of liquids that are not aqueous, the lighter and the heavier one by name; of three the other one is "liquid".
void name_by_density(const std::vector<PhaseKind*>& kinds, const std::vector<double>& densities);

// Whether the equation of state has one volume for the phase: gas and liquid are the same.
bool has_one_root(const Exports& library, const Mixture& mixture, const PhaseState& phase, double T, double P);

// A gas that is packed like a liquid and has no liquid but water beside it is a dense fluid or a liquid.
void rename_packed_gas(const Exports& library, const Mixture& mixture, Equilibrium& state);

// Water of the gas at saturation as a mole fraction; NaN where there is no such limit.
double saturated_water(const Exports& library, Mixture& mixture, double T, double P,
                       const std::vector<double>& gas);

// False for the composition of a phase that is absent.
inline bool has_entries(const std::vector<double>& x) {
  return std::any_of(x.begin(), x.end(), [](double value) { return value > 0.0; });
}

// Adds a phase with its properties at T and P of the state; fraction by mole of the whole.
void add_phase(const Exports& library, const Mixture& mixture, PhaseKind kind, double fraction,
               const std::vector<double>& x, Equilibrium& state);
// The phases together.
void add_overall(const Exports& library, const Mixture& mixture, Equilibrium& state);

}  // namespace kestrune::host

#endif
