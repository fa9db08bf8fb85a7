// kestrune hydrate: hydrate formation curve of a gas, with an inhibitor or the inhibitor that is needed.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "commands/points.hpp"
#include "error.hpp"
#include "hydrate_range.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr double kEndPercent = 70.0;
constexpr double kStartT = 200.0;                       // K: below it no answer, see kEndT
constexpr double kEndT = 313.15, kEndP = 1000e5;        // K, without inhibitor, and Pa
constexpr double kLeastMass = 30.0, kMostMass = 200.0;  // g/mol of an inhibitor: methanol 32, TEG 150

struct HydrateOptions {
  MixtureOptions mixture;
  OutputOptions output;
  std::string temperature, pressure, inhibitor, percent, depression;
  int points = 41;
};

struct Inhibitor {
  std::string name = "none";
  std::int32_t kind = 0;
  double molar_mass = 0.0;  // g/mol, of kind 5
};

// A salt or methanol, a glycol of the databank, or a molar mass.
Inhibitor inhibitor_of(const std::string& text) {
  if (text.empty()) return {};
  const std::string key = search_key(text);
  if (key == "nacl") return {"sodium chloride", 2, 0.0};
  if (key == "kcl") return {"potassium chloride", 3, 0.0};
  if (key == "cacl2") return {"calcium chloride", 4, 0.0};
  if (const auto M = parse_number(text)) {
    if (!(*M >= kLeastMass && *M <= kMostMass))
      throw InputError(fmt::format("{:g} g/mol is no molar mass of a hydrate inhibitor: {:g} to {:g} g/mol", *M,
                                   kLeastMass, kMostMass));
    return {fmt::format("inhibitor of {:g} g/mol", *M), 5, *M};
  }
  const Component& c = find_component(text);
  if (c.name == "methanol") return {"methanol", 1, 0.0};
  if (c.name.find("glycol") != std::string_view::npos) return {std::string(c.name), 5, c.molar_mass};
  throw InputError(
      fmt::format("{} is no hydrate inhibitor: use methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or the molar "
                  "mass of another one in g/mol",
                  c.name));
}

// The curve is a straight line of T over ln P: its first and last point say all of it. K, atm.
struct HydrateCurve {
  double T[2], P[2];
  double slope() const { return (T[1] - T[0]) / std::log(P[1] / P[0]); }
  double temperature(double atm) const { return T[0] + slope() * std::log(atm / P[0]); }
  double pressure(double kelvin) const { return P[0] * std::exp((kelvin - T[0]) / slope()); }
};

HydrateCurve curve(const Exports& library, Mixture& m, const Inhibitor& i, double percent) {
  HydrateCurve c{};
  const StatusCode status =
      library.HydrateLine(m.z.data(), i.kind, i.molar_mass, percent, 2, &m.record, 0, c.T, c.P);
  if (status != KV_OK) throw InputError(fmt::format("no hydrate curve: {}", kv_status_text(status)));
  return c;
}

// Mass percent for a depression in K: it is proportional to W/(100 - W), so that its value at 50 % says all.
double needed_percent(const Exports& library, Mixture& m, const Inhibitor& i, double depression) {
  const double at_half = curve(library, m, {}, 0.0).T[0] - curve(library, m, i, 50.0).T[0];
  return 100.0 * depression / (depression + at_half);
}

std::string range(const Unit& unit, double low, double high, int digits) {
  return fmt::format("{:.{}f} to {:.{}f} {}", unit.from_base(low), digits, unit.from_base(high), digits,
                     unit.name);
}

// Why a point is no hydrate any more; empty for one that the correlation may be asked for.
std::string beyond(const UnitSystem& units, double T, double P, double bare) {
  const Unit &of_T = units[Quantity::temperature], &of_P = units[Quantity::pressure];
  if (T < kStartT)
    return fmt::format("hydrate at {:.5g} {} is beyond the correlation: at least {:.4g} {}", of_T.from_base(T),
                       of_T.name, of_T.from_base(kStartT), of_T.name);
  if (!(bare > kEndT || P > kEndP)) return "";
  return fmt::format(
      "hydrate at {:.5g} {} and {:.5g} {} is beyond the correlation: without inhibitor at most {:.4g} {} and "
      "{:.5g} {}, "
      "made from data of {} and {}",
      of_T.from_base(T), of_T.name, of_P.from_base(P), of_P.name, of_T.from_base(kEndT), of_T.name,
      of_P.from_base(kEndP), of_P.name, range(of_T, kHydrateLowestT, kHydrateHighestT, 1),
      range(of_P, kHydrateLowestP, kHydrateHighestP, 0));
}

// Adds a point with its warnings; one beyond the correlation has no answer.
void add_point(const UnitSystem& units, double T, double P, bool at_T, double shift,
               std::vector<std::string> warnings, Points& points) {
  const Unit &of_T = units[Quantity::temperature], &of_P = units[Quantity::pressure];
  const double bare = T + shift;
  const std::string reason = beyond(units, T, P, bare);
  if (!reason.empty()) {
    points.columns[0].values.push_back(at_T ? T : kNone);
    points.columns[1].values.push_back(at_T ? kNone : P);
    points.statuses.push_back(KV_WATER_RANGE);
    points.warnings.push_back(reason);
    return;
  }
  if (!(bare >= kHydrateLowestT && bare <= kHydrateHighestT))
    warnings.push_back(fmt::format("temperature{} outside {}", shift > 0.0 ? " without inhibitor" : "",
                                   range(of_T, kHydrateLowestT, kHydrateHighestT, 1)));
  if (!(P >= kHydrateLowestP && P <= kHydrateHighestP))
    warnings.push_back(fmt::format("pressure outside {}", range(of_P, kHydrateLowestP, kHydrateHighestP, 0)));
  points.columns[0].values.push_back(T);
  points.columns[1].values.push_back(P);
  points.statuses.push_back(KV_OK);
  points.warnings.push_back(joined(warnings, "; "));
}

// Returns how much lower the inhibitor brings the temperature, K.
double add_points(const HydrateOptions& options, const UnitSystem& units, const Exports& library,
                  Mixture& mixture, const Inhibitor& inhibitor, double percent, Points& points) {
  const HydrateCurve line = curve(library, mixture, inhibitor, percent);
  const double shift = curve(library, mixture, {}, 0.0).T[0] - line.T[0];
  const std::vector<std::string> warnings = hydrate_warnings(mixture, inhibitor.kind, percent);
  const bool at_T = !options.temperature.empty();
  const auto add = [&](double T, double P) { add_point(units, T, P, at_T, shift, warnings, points); };
  if (options.temperature.empty() && options.pressure.empty()) {
    std::vector<double> T(static_cast<std::size_t>(options.points)), P(T.size());
    library.HydrateLine(mixture.z.data(), inhibitor.kind, inhibitor.molar_mass, percent, options.points,
                        &mixture.record, 0, T.data(), P.data());
    for (std::size_t i = 0; i < T.size(); ++i) add(T[i], P[i] * kAtmInPa);
  } else if (!options.pressure.empty()) {
    for (const double v : parse_conditions(Quantity::pressure, options.pressure, units[Quantity::pressure]))
      add(line.temperature(v / kAtmInPa), v);
  } else {
    for (const double v :
         parse_conditions(Quantity::temperature, options.temperature, units[Quantity::temperature]))
      add(v, line.pressure(v) * kAtmInPa);
  }
  if (points.columns.size() > 2) points.columns[2].values.resize(points.statuses.size(), percent);
  return shift;
}

// The mass percents asked for, or those that the depressions take.
std::vector<double> percents(const HydrateOptions& options, const Exports& library, Mixture& mixture,
                             const Inhibitor& inhibitor) {
  static const Unit plain{"", 1.0};
  if (options.percent.empty() && options.depression.empty()) {
    if (inhibitor.kind == 0) return {0.0};
    throw InputError("--inhibitor needs its --percent or the --depression that is wanted");
  }
  if (inhibitor.kind == 0) throw InputError("--percent and --depression need an --inhibitor");
  const bool given = options.depression.empty();
  std::string text = given ? options.percent : options.depression;
  text.erase(std::remove(text.begin(), text.end(), given ? '%' : 'K'), text.end());
  std::vector<double> values = parse_conditions(Quantity::ratio, text, plain);
  for (double& v : values) {
    if (!(v >= 0.0)) throw InputError(fmt::format("{:g} {} of inhibitor", v, given ? "%" : "K"));
    const double depression = v;
    if (!given) v = needed_percent(library, mixture, inhibitor, depression);
    if (v <= kEndPercent) continue;
    throw InputError(given
                         ? fmt::format("{:g} % of {} is no solution that the correlation knows: at most {:g} %",
                                       v, inhibitor.name, kEndPercent)
                         : fmt::format("a depression of {:g} K would take {:.3g} % of {}: at most {:g} %",
                                       depression, v, inhibitor.name, kEndPercent));
  }
  return values;
}

void hydrate(const HydrateOptions& options, Session& session) {
  const UnitSystem units = options.output.system();
  const Inhibitor inhibitor = inhibitor_of(options.inhibitor);
  if (!options.temperature.empty() && !options.pressure.empty())
    throw InputError("give -T (hydrate pressure), -P (hydrate temperature) or neither (the curve), not both");
  Mixture mixture = options.mixture.build();
  const Exports library = session.library();
  const std::vector<double> all = percents(options, library, mixture, inhibitor);
  Points points;
  points.with_warnings = true;
  points.columns = {temperature_column(units), pressure_column(units)};
  points.notes = {fmt::format("Gravity      {:.4f} (air 1)", mixture.molar_mass / 28.966)};
  if (inhibitor.kind == 0) points.notes.emplace_back("Inhibitor    none");
  if (all.size() > 1)
    points.columns.push_back(
        {"inhibitor %", "inhibitor_mass_percent", "inhibitor_mass_percent", nullptr, 2, {}});
  for (const double percent : all) {
    const double shift = add_points(options, units, library, mixture, inhibitor, percent, points);
    if (inhibitor.kind != 0)
      points.notes.push_back(fmt::format("Inhibitor    {}, {:.4g} % by mass of its solution{}: {:.4g} K lower",
                                         inhibitor.name, percent, options.depression.empty() ? "" : " needed",
                                         shift));
  }
  if (std::count(points.statuses.begin(), points.statuses.end(), KV_OK) == 0)
    throw InputError(points.warnings.front());
  print_points(points, mixture, options.output, session);
}

}  // namespace

void add_hydrate_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "hydrate",
      "Hydrate formation of a gas by its gravity: curve, temperature (-P) or pressure (-T), inhibitors");
  const auto options = std::make_shared<HydrateOptions>();
  options->mixture.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune hydrate --z methane=0.93,ethane=0.05,propane=0.02 -P 30:90:30 bar\n"
      "  kestrune hydrate --z methane=0.93,ethane=0.05,propane=0.02 -P 70 --inhibitor MEG --depression 5,10\n"
      "  kestrune hydrate --z methane=0.93,ethane=0.05,propane=0.02 -P 70 --inhibitor methanol --percent "
      "0:20:10");
  command->add_option("-T,--temperature", options->temperature,
                      "Value, list or range: the hydrate pressures there");
  command->add_option("-P,--pressure", options->pressure,
                      "Value, list or range: the hydrate temperatures there");
  command->add_option("--inhibitor", options->inhibitor,
                      "methanol, MEG, DEG, TEG, NaCl, KCl, CaCl2 or a molar mass in g/mol");
  auto* percent = command->add_option("--percent", options->percent,
                                      "Inhibitor in its aqueous solution, % by mass: value, list or range (0)");
  command
      ->add_option("--depression", options->depression,
                   "Wanted depression in K, value, list or range: says how much inhibitor it takes")
      ->excludes(percent);
  command->add_option("--points", options->points, "Points of the curve (41)")->check(CLI::Range(2, 100000));
  options->output.add_to(*command);
  command->callback([options, &session] { hydrate(*options, session); });
}

}  // namespace kestrune::host
