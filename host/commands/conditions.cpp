#include "commands/conditions.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr Quantity kQuantities[] = {Quantity::temperature, Quantity::pressure, Quantity::enthalpy,
                                    Quantity::entropy, Quantity::vapour_fraction};

std::string pairs_in_words() {
  std::vector<std::string> pairs;
  for (const Given given : kAllGiven) {
    const auto [first, second] = quantities_of(given);
    pairs.push_back(fmt::format("{} and {}", quantity_name(first), quantity_name(second)));
  }
  return joined(pairs, "; ");
}

// The flash with these quantities.
Given given_by(const std::vector<Quantity>& quantities) {
  for (const Given given : kAllGiven) {
    const auto wanted = quantities_of(given);
    if (std::is_permutation(quantities.begin(), quantities.end(), wanted.begin(), wanted.end())) return given;
  }
  std::vector<std::string> names;
  for (const Quantity quantity : quantities) names.emplace_back(quantity_name(quantity));
  const std::string problem =
      names.empty()       ? "no conditions are given"
      : names.size() == 1 ? fmt::format("only the {} is given", names.front())
      : names.size() == 2 ? fmt::format("a flash at {} is not available", joined(names, " and "))
                          : fmt::format("{} conditions are given ({})", names.size(), joined(names, ", "));
  throw InputError(fmt::format("{}: give one of the pairs {}", problem, pairs_in_words()));
}

}  // namespace

void ConditionOptions::add_TP_to(CLI::App& command, bool required) {
  command.add_option("-T,--temperature", temperature, "Value, list 200,220,250 or range 150:350:10 (25 C)")
      ->required(required);
  command.add_option("-P,--pressure", pressure, "Value, list or range (60 barg)")->required(required);
}

void ConditionOptions::add_energy_and_fraction_to(CLI::App& command) {
  command.add_option("-H,--enthalpy", enthalpy,
                     "Value, list or range (-310 kJ/kg), of the whole mixture; needs -P");
  command.add_option("-S,--entropy", entropy,
                     "Value, list or range (-2.5 kJ/kgK), of the whole mixture; needs -P");
  auto* beta =
      command.add_option("--beta", vapour_fraction,
                         "Value, list or range of the vapour fraction by mole (0:1:0.1); needs -P or -T");
  auto* at_bubble = command.add_flag("--bubble", bubble, "Bubble point, the same as --beta 0");
  auto* at_dew = command.add_flag("--dew", dew, "Dew point, the same as --beta 1");
  beta->excludes(at_bubble)->excludes(at_dew);
  at_bubble->excludes(at_dew);
}

std::string ConditionOptions::text_of(Quantity quantity) const {
  switch (quantity) {
    case Quantity::temperature:
      return temperature;
    case Quantity::pressure:
      return pressure;
    case Quantity::enthalpy:
      return enthalpy;
    case Quantity::entropy:
      return entropy;
    default:
      return bubble ? "0" : dew ? "1" : vapour_fraction;
  }
}

Conditions ConditionOptions::read(const UnitSystem& units, double molar_mass) const {
  std::vector<Quantity> quantities;
  std::copy_if(std::begin(kQuantities), std::end(kQuantities), std::back_inserter(quantities),
               [&](Quantity quantity) { return !text_of(quantity).empty(); });
  Conditions conditions{given_by(quantities), {}};
  const auto order = quantities_of(conditions.given);
  for (std::size_t i = 0; i < order.size(); ++i) {
    conditions.values[i] = parse_conditions(order[i], text_of(order[i]), units[order[i]], molar_mass);
  }
  if (conditions.count() > 1e6) throw InputError("more than a million states: ask for fewer conditions");
  return conditions;
}

}  // namespace kestrune::host
