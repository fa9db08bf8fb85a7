// What is to be said of states beside their numbers.
#ifndef KESTRUNE_HOST_NOTES_HPP
#define KESTRUNE_HOST_NOTES_HPP

#include <span>
#include <string>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

inline constexpr const char* kSaturationText =
    "the water of a gas is by the group interactions; its saturation by the command water is the one to trust "
    "(docs/water.md): --water-model saturation";
inline constexpr const char* kLiquidCO2Text =
    "a liquid rich in carbon dioxide holds far too much water by the group interactions; the command water is "
    "nearer "
    "(docs/water.md)";
inline constexpr const char* kOilText =
    "water in a hydrocarbon liquid by the group interactions: near ambient temperature orders of magnitude too "
    "little; "
    "--free-water --solubility A,B takes another";

inline constexpr const char* kExtrapolatedText =
    "temperature outside the range of the ideal-gas heat capacity of at least one component: continued beyond "
    "it";

// Limits of the model, remarks on states, and the water of gases; each once.
std::vector<std::string> notes_of(const Mixture& mixture, std::span<const Equilibrium> states);

}  // namespace kestrune::host

#endif
