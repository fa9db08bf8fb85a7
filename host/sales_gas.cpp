#include "sales_gas.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "error.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

// ISO 6976:2016: the gas constant of its tables, dry air at 1 atm, and the heat of condensation of water (the calorific
// value of water vapour), kJ/mol at the reference temperatures. Read in the open implementations that
// data/README.md names.
constexpr double kTableGas = 8.3144621;  // J/(mol K)
constexpr double kAirMass = 28.96546;    // g/mol
constexpr std::array<double, kMeteringCount> kAirZ{0.999419, 0.999595, 0.999601, 0.999645};
constexpr std::array<double, 5> kCondensation{45.064, 44.431, 44.408, 44.222, 44.013};

const CalorificEntry* find_entry(std::int32_t cas_number) {
  for (const CalorificEntry& e : tables::calorific_values())
    if (cas_number != 0 && e.cas_number == cas_number) return &e;
  return nullptr;
}

// Index of "15", "15 C" or "60 F"; the table prints 60 F as 15.55 C.
std::size_t temperature_index(std::string_view text, std::string_view whole) {
  const std::size_t length = number_length(text);
  const auto number = parse_number(text.substr(0, length));
  const std::string unit = lower(trimmed(text.substr(length)));
  if (number && (unit.empty() || unit == "c" || unit == "f")) {
    const double C = unit == "f" ? (*number - 32.0) / 1.8 : *number;
    for (std::size_t i = 0; i < kReferenceTemperatures.size(); ++i)
      if (std::fabs(kReferenceTemperatures[i] - C) < 0.01) return i;
  }
  throw InputError(
      fmt::format("\"{}\" is no reference: write combustion/metering with 0, 15, 20 or 25 C or 60 F (metering: "
                  "not 25 C), for instance "
                  "25/0, 15/15 or 60F/60F",
                  whole));
}

double net_of(const CalorificEntry& e, std::size_t combustion) {
  return e.gross[combustion] - 0.5 * e.hydrogen_atoms * kCondensation[combustion];
}

std::string share_in_words(std::string_view name, double x) {
  return fmt::format("{} ({:.3g} %)", name, 100.0 * x);
}

// Numbers at one compression factor; those of the ideal gas have that of 1 and an ideal air.
CalorificNumbers numbers_at(double gross, double net, double M, double T, double Z, double Z_air) {
  CalorificNumbers n{};
  const double moles = kAtmInPa / (Z * kTableGas * T);  // in one m3
  n.gross = gross;
  n.net = net;
  n.gross_by_volume = gross * moles;
  n.net_by_volume = net * moles;
  n.density = 1e-3 * M * moles;
  n.relative_density = M / kAirMass * Z_air / Z;
  n.wobbe = n.gross_by_volume / std::sqrt(n.relative_density);
  n.wobbe_net = n.net_by_volume / std::sqrt(n.relative_density);
  return n;
}

}  // namespace

std::string Reference::name() const {
  const auto shown = [](std::size_t i) {
    return i == 2 ? std::string("60 F") : fmt::format("{:g} C", kReferenceTemperatures[i]);
  };
  return combustion == metering ? shown(combustion) : shown(combustion) + "/" + shown(metering);
}

Reference reference_by_name(std::string_view text) {
  const auto pieces = split(text, '/');
  if (pieces.empty() || pieces.size() > 2) temperature_index("", text);
  const Reference r{temperature_index(pieces.front(), text), temperature_index(pieces.back(), text)};
  if (r.metering >= kMeteringCount) temperature_index("", text);
  return r;
}

TabulatedGas tabulated(const Mixture& mixture, const std::string& stand_in) {
  TabulatedGas gas;
  const Component other = stand_in.empty() ? Component{} : find_component(stand_in);
  const CalorificEntry* entry = find_entry(other.cas_number);
  if (!stand_in.empty() && entry == nullptr)
    throw InputError(
        fmt::format("--others {}: the table of calorific values does not have it either", stand_in));
  std::vector<std::string> others;
  double moles = 0.0, mass = 0.0, sum = 0.0;  // of the others, in one mole of mixture; of what is in the table
  for (std::size_t i = 0; i < mixture.z.size(); ++i) {
    const Component& c = mixture.components[i];
    const double z = mixture.z[i];
    if (!(z > 0.0)) continue;
    if (const CalorificEntry* e = find_entry(c.cas_number)) {
      gas.entries.push_back(e);
      gas.x.push_back(z);
      continue;
    }
    others.push_back(share_in_words(c.name, z));
    moles += z;
    mass += z * c.molar_mass;
  }
  if (!others.empty() && stand_in.empty()) {
    if (!(moles < kNegligible)) {
      throw InputError(
          fmt::format("the table of calorific values does not have {}: --others n-octane counts it, mass for "
                      "mass, as n-octane "
                      "(any component of the table); less than {:g} % in all would be left out",
                      joined(others, ", "), 100.0 * kNegligible));
    }
    gas.notes.push_back("not in the table of calorific values, left out: " + joined(others, ", "));
  } else if (!others.empty()) {
    gas.entries.push_back(entry);
    gas.x.push_back(mass / entry->molar_mass);
    gas.notes.push_back(fmt::format("not in the table of calorific values, counted mass for mass as {}: {}",
                                    other.name, joined(others, ", ")));
  }
  for (const double x : gas.x) sum += x;
  if (!(sum > 0.0)) throw InputError("nothing of the mixture is in the table of calorific values");
  for (double& x : gas.x) x /= sum;
  return gas;
}

CalorificResult calorific_result(const TabulatedGas& gas, const Reference& r) {
  double M = 0.0, s = 0.0, gross = 0.0, net = 0.0;
  for (std::size_t i = 0; i < gas.x.size(); ++i) {
    const CalorificEntry& e = *gas.entries[i];
    M += gas.x[i] * e.molar_mass;
    s += gas.x[i] * e.s[r.metering];
    gross += gas.x[i] * 1e3 * e.gross[r.combustion];
    net += gas.x[i] * 1e3 * net_of(e, r.combustion);
  }
  CalorificResult result{r, M, 1.0 - s * s, 1e3 * gross / M, 1e3 * net / M, {}, {}};
  const double T = kZeroCelsius + kReferenceTemperatures[r.metering];
  result.real = numbers_at(gross, net, M, T, result.Z, kAirZ[r.metering]);
  result.ideal = numbers_at(gross, net, M, T, 1.0, 1.0);
  return result;
}

}  // namespace kestrune::host
