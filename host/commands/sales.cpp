// kestrune sales: calorific values, Wobbe index, density and dew points of a gas against the limits of a contract.
#include "commands/sales.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "commands/states.hpp"
#include "commands/wet_gas.hpp"
#include "equilibrium.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr const char* kAllReferences = "15/15,25/0,25/20,60F/60F";
constexpr const char* kContractReference = "15/15";  // ISO 13443
constexpr double kTraceWithoutGroups = 1e-4;         // mole fraction, an odorant: dew points do without it
constexpr double kLeastZ = 0.9;                      // below it summation factors do not hold (ISO 6976)

struct SalesOptions {
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string references, calorific, pressure, water, others;
  std::vector<std::string> limits;
};

std::vector<Reference> references(const SalesOptions& o) {
  std::string text = o.references;
  if (text.empty()) text = o.limits.empty() ? kAllReferences : kContractReference;
  std::vector<Reference> result;
  for (const std::string& piece : split(text, ',')) result.push_back(reference_by_name(piece));
  if (result.empty()) reference_by_name("");
  if (!o.limits.empty() && result.size() > 1)
    throw InputError("limits are those of one reference: --reference 25/0, for instance");
  return result;
}

UnitSystem units_of(const SalesOptions& o) {
  UnitSystem units = o.output.system();
  if (!o.calorific.empty())
    units.units[static_cast<std::size_t>(Quantity::calorific_value)] =
        &unit(Quantity::calorific_value, o.calorific);
  return units;
}

// The water that the dew points of water are asked for; NaN: none.
double water_of_gas(const SalesOptions& o, const Mixture& mixture) {
  if (o.water.empty()) return water_fraction(mixture) > 0.0 ? water_fraction(mixture) : kNone;
  const std::vector<double> values = water_contents(o.water, dry_mass(mixture));
  if (values.size() != 1) throw InputError(fmt::format("--water {}: one content is wanted", o.water));
  return values.front() > 0.0 ? values.front() : kNone;
}

DewPoint hydrocarbon_dew(const Exports& library, Mixture& dry, double P, const DewPoints& dew) {
  const Equilibrium s = flash_of_all(library, dry, Given::WP, 1.0, P);
  if (s.answered()) return {P, s.T, s.status == KV_UNSTABLE_POINT ? KV_UNSTABLE_POINT : KV_OK};
  // Above the highest pressure of the curve there is none; below it the flash has missed one.
  return {P, kNone, dew.cricondentherm.found() && P > dew.cricondenbar.P ? KV_NO_SATURATION : s.status};
}

DewPoint water_dew(const Exports& library, Mixture& wet, double P) {
  double T = 0.0;
  const StatusCode status =
      library.WaterDewTemperature(P / kAtmInPa, wet.z.data(), 1, 0, 0, &wet.record, 0, &T);
  return {P, status == KV_OK ? T : kNone, status};
}

// Of the hydrocarbons without the water, of the water by the command water.
DewPoints dew_points(const Exports& library, Mixture& mixture, double water,
                     const std::vector<double>& pressures) {
  const std::vector<double> z = mixture.z;
  const double M = mixture.molar_mass;
  DewPoints dew;
  if (water_of(mixture) < z.size()) set_water(mixture, 0.0);
  const Curve curve = trace_curve(library, mixture, 1.0, {}, 0);
  dew.curve = curve.status;
  dew.cricondentherm = curve.cricondentherm;
  dew.cricondenbar = curve.cricondenbar;
  const auto colder = [&](const CurvePoint& p) { return p.T <= dew.cricondentherm.T * (1.0 + 1e-9); };
  dew.hottest_known =
      curve_is_good(curve.status) &&
      (curve.status != KV_ENVELOPE_OPEN ||
       (dew.cricondentherm.found() && std::all_of(curve.points.begin(), curve.points.end(), colder)));
  for (const double P : pressures) dew.hydrocarbon.push_back(hydrocarbon_dew(library, mixture, P, dew));
  if (!std::isnan(water)) {
    set_water(mixture, water);
    for (const double P : pressures) dew.water.push_back(water_dew(library, mixture, P));
  }
  mixture.z = z;
  mixture.molar_mass = M;
  return dew;
}

// The gas whose dew points are looked for: without traces of what has no groups, which a note names.
Mixture gas_of_dew_points(const SalesOptions& o, Composition gas, Mixture& mixture,
                          std::vector<std::string>& notes) {
  std::vector<std::string> names;
  double sum = 0.0;
  for (const int i : mixture.uncovered) sum += mixture.z[static_cast<std::size_t>(i)];
  if (sum <= kTraceWithoutGroups && !o.missing.allowed) {
    for (const int i : mixture.uncovered) {
      const Component& c = mixture.components[static_cast<std::size_t>(i)];
      names.emplace_back(c.name);
      const auto same = [&](const Component& other) { return other.name == c.name; };
      const auto at = std::find_if(gas.components.begin(), gas.components.end(), same) - gas.components.begin();
      if (at == static_cast<std::ptrdiff_t>(gas.components.size())) continue;
      gas.components.erase(gas.components.begin() + at);
      gas.amounts.erase(gas.amounts.begin() + at);
    }
    mixture.uncovered.clear();  // nothing is calculated with it as zero
  }
  if (!names.empty())
    notes.push_back(fmt::format("dew points are those of the gas without {}, which has no PPR78 groups",
                                joined(names, ", ")));
  return build_mixture(gas, interaction_set(o.mixture.set));
}

void note_range(SalesReport& report) {
  for (const CalorificResult& r : report.results) {
    if (r.Z > kLeastZ) continue;
    report.notes.push_back(
        fmt::format("compression factor {:.3f} at {}: below {:g} the summation factors do not hold, and values "
                    "by volume mean little",
                    r.Z, r.reference.name(), kLeastZ));
    return;
  }
}

void sales(const SalesOptions& o, Session& session) {
  const UnitSystem units = units_of(o);
  const std::vector<Reference> wanted = references(o);
  std::vector<double> pressures;
  if (!o.pressure.empty())
    pressures = parse_conditions(Quantity::pressure, o.pressure, units[Quantity::pressure]);
  const Composition composition = o.water.empty() ? o.mixture.composition() : composition_with_water(o.mixture);
  Mixture mixture = build_mixture(composition, interaction_set(o.mixture.set));
  SalesReport report{mixture, units, {}, {}, read_limits(o.limits, units, mixture), kNone, {}};
  if (needs_dew_pressure(report.limits) && pressures.empty())
    throw InputError(
        "a limit of a dew point needs its pressures: -P \"70 bar\", or -P 1:70:10 for the hottest");
  const double water = report.water = water_of_gas(o, mixture);
  for (const Limit& l : report.limits)
    if (l.name == "water_dew" && std::isnan(water))
      throw InputError("a limit of the water dew point needs water: --water 60 ppmv, or water in the mixture");
  const TabulatedGas gas = tabulated(mixture, o.others);
  report.notes = gas.notes;
  for (const Reference& r : wanted) report.results.push_back(calorific_result(gas, r));
  note_range(report);

  // Dew points need the group interactions, calorific values do not.
  const bool asked = !pressures.empty() || needs_dew(report.limits);
  Mixture of_dew = gas_of_dew_points(o, composition, mixture, report.notes);
  const bool missing = !o.missing.allowed && !missing_in_words(of_dew, kTracePair).empty();
  if (asked) o.missing.check(of_dew);
  if (missing) {
    report.dew.reason =
        "no dew points: group interactions are missing, --allow-missing-pairs takes them as zero";
  } else {
    const Exports library = session.library();
    of_dew.hand_over(library);
    report.dew = dew_points(library, of_dew, water, pressures);
  }
  judge(report);
  const bool failed =
      std::any_of(report.limits.begin(), report.limits.end(), [](const Limit& l) { return !l.kept(); });
  if (failed || report.dew.first_failure() != KV_OK) session.exit_code = exit_status;
  if (o.output.format == "json")
    print_sales_json(report, session.out);
  else if (o.output.format == "csv")
    print_sales_csv(report, session.out);
  else
    print_sales_text(report, session.out);
  if (o.output.format == "csv") {
    tell(session, remarks(mixture));
    tell(session, report.notes);
  }
}

}  // namespace

StatusCode DewPoints::first_failure() const {
  if (!curve_is_good(curve) && curve != KV_NO_SATURATION) return curve;
  for (const auto* points : {&hydrocarbon, &water})
    for (const DewPoint& p : *points)
      if (p.status != KV_OK && p.status != KV_NO_SATURATION) return p.status;
  return KV_OK;
}

void add_sales_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "sales",
      "Calorific values, Wobbe index, density and dew points of a gas, against the limits of a contract");
  const auto o = std::make_shared<SalesOptions>();
  o->mixture.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune sales --z methane=0.93,ethane=0.04,propane=0.01,N2=0.01,CO2=0.01\n"
      "  kestrune sales --z methane=0.93,ethane=0.05,nC4=0.02 --reference 25/0 --calorific kWh/m3\n"
      "  kestrune sales --z methane=0.93,ethane=0.06,nC4=0.01 --water 50 ppmv -P 70 bar "
      "--limit \"wobbe=46..54, CO2=..2.5 %, hydrocarbon_dew=..-2 C, water_dew=..-8 C\"");
  command->add_option(
      "--reference", o->references,
      "Temperatures of combustion/metering, by commas: 0, 15, 20, 25 C or 60F (15/15,25/0,25/20,"
      "60F/60F; with limits one, 15/15)");
  command->add_option(
      "--limit", o->limits,
      "NAME=low..high with a unit, by commas: wobbe, wobbe_net, gross, net, density, relative_density, "
      "Z, M, cricondentherm, hydrocarbon_dew, water_dew or a component (%, ppm, mg/m3)");
  command->add_option("-P,--pressure", o->pressure,
                      "Pressures of the dew points: value, list or range (70 bar)");
  command->add_option(
      "--water", o->water,
      "Water of the wet gas, for its dew point only: 60 ppmv, 50 mg/Sm3; replaces that of the mixture "
      "there");
  command->add_option("--others", o->others,
                      "Component of the table that stands, mass for mass, for those that are not in it");
  command->add_option("--calorific", o->calorific,
                      "Unit of calorific values by volume: MJ/m3, kJ/m3, J/m3, kWh/m3 or Btu/ft3");
  o->missing.add_to(*command);
  o->output.add_to(*command);
  command->callback([o, &session] { sales(*o, session); });
}

}  // namespace kestrune::host
