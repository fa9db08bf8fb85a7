// The columns of the results: their names, headings and units.
#ifndef KESTRUNE_HOST_BATCH_COLUMNS_HPP
#define KESTRUNE_HOST_BATCH_COLUMNS_HPP

#include <string>
#include <string_view>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host::batch {

// What a phase is, as kestrune flash calls it, and its letter in the column phases: a liquid is any that is not aqueous,
// of two the lighter comes first; free water is aqueous.
enum Place : std::size_t { kVapour, kDense, kLiquid, kLiquid2, kAqueous, kPlaces };
inline constexpr std::string_view kPlaceNames[kPlaces] = {"vapour", "dense", "liquid", "liquid2", "aqueous"};
inline constexpr char kPlaceLetters[kPlaces] = {'V', 'D', 'L', 'L', 'W'};

struct Column {
  enum class Kind {
    kept,   // a cell of the input as it stands
    feed,   // of a component
    given,  // enthalpy, entropy or vapour fraction that was given
    T,
    P,
    phases,  // "V", "VL", "LW": their letters
    status,
    text,        // of the status, or what is wrong with the row
    whole,       // property of all phases together
    molar_mass,  // of all
    fraction,    // of a phase, by mole
    phase_mass,  // molar mass of a phase
    phase_property,
    composition,  // of a phase, a component
  };
  Kind kind;
  std::string heading;
  const Unit* unit = nullptr;  // none for what has no unit
  Quantity quantity = Quantity::ratio;
  Property property = Property::Z;
  std::size_t phase = kVapour;  // a Place
  std::size_t index = 0;        // of a component; of a kept column its place in --keep

  bool is_text() const { return kind == Kind::kept || kind == Kind::text; }
};

// The columns that a list of names stands for, "" the usual ones: what was given, T, P, phases, beta, status and text.
// Names are given, T, P, beta, phases, status, text, z, M, a property of the whole (H, S, G, density, molar_volume) and, behind
// "vapour.", "dense.", "liquid.", "liquid2." or "aqueous.", fraction, x, M and a property of a phase; z and x have a column
// for each component. InputError names what is not one of these. kept: headings. phases: 2 or 3 of the flash.
std::vector<Column> columns_by_name(std::string_view names, const std::vector<std::string>& kept, Given given,
                                    int phases, const Mixture& mixture, const UnitSystem& units);

// The bits of the properties that the columns of a place want; those of the whole want them of every phase.
unsigned wanted_of_phase(const std::vector<Column>& columns, std::size_t phase);
// Whether a column tells a dense fluid from a liquid.
bool tell_dense(const std::vector<Column>& columns);

}  // namespace kestrune::host::batch

#endif
