// kestrune hydrate: hydrate formation curve of a gas, with an inhibitor or the inhibitor that is needed.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "commands/points.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

struct HydrateOptions {
  MixtureOptions mixture;
  OutputOptions output;
  std::string temperature, pressure, inhibitor;
  double percent = 0.0, depression = 0.0;
  int points = 41;
};

struct Inhibitor {
  std::string name = "none";
  std::int32_t kind = 0;
  double molar_mass = 0.0;  // g/mol, of kind 5
};

// A salt or methanol, a component of the databank, or a molar mass.
Inhibitor inhibitor_of(const std::string& text) {
  if (text.empty()) return {};
  const std::string key = search_key(text);
  if (key == "methanol" || key == "meoh") return {"methanol", 1, 0.0};
  if (key == "nacl") return {"sodium chloride", 2, 0.0};
  if (key == "kcl") return {"potassium chloride", 3, 0.0};
  if (key == "cacl2") return {"calcium chloride", 4, 0.0};
  if (const auto M = parse_number(text)) {
    if (!(*M > 0.0)) throw InputError("the molar mass of the inhibitor must be positive");
    return {fmt::format("inhibitor of {:g} g/mol", *M), 5, *M};
  }
  const Component& c = find_component(text);
  return {std::string(c.name), 5, c.molar_mass};
}

// The curve is a straight line of T over ln P: its first and last point say all of it. K, atm.
struct Curve {
  double T[2], P[2];
  double slope() const { return (T[1] - T[0]) / std::log(P[1] / P[0]); }
  double temperature(double atm) const { return T[0] + slope() * std::log(atm / P[0]); }
  double pressure(double kelvin) const { return P[0] * std::exp((kelvin - T[0]) / slope()); }
};

Curve curve(const Exports& library, Mixture& m, const Inhibitor& i, double percent) {
  Curve c{};
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

void fill(const HydrateOptions& options, const UnitSystem& units, const Exports& library, Mixture& mixture,
          const Inhibitor& inhibitor, double percent, Points& points) {
  std::vector<double>&T = points.columns[0].values, &P = points.columns[1].values;
  const Curve line = curve(library, mixture, inhibitor, percent);
  if (options.temperature.empty() && options.pressure.empty()) {
    T.resize(static_cast<std::size_t>(options.points));
    P.resize(T.size());
    library.HydrateLine(mixture.z.data(), inhibitor.kind, inhibitor.molar_mass, percent, options.points,
                        &mixture.record, 0, T.data(), P.data());
    for (double& v : P) v *= kAtmInPa;
  }
  if (!options.pressure.empty()) {
    P = parse_conditions(Quantity::pressure, options.pressure, units[Quantity::pressure]);
    for (const double v : P) T.push_back(line.temperature(v / kAtmInPa));
  }
  if (!options.temperature.empty()) {
    T = parse_conditions(Quantity::temperature, options.temperature, units[Quantity::temperature]);
    for (const double v : T) P.push_back(line.pressure(v) * kAtmInPa);
  }
  points.statuses.assign(T.size(), KV_OK);
}

void hydrate(const HydrateOptions& options, Session& session) {
  const UnitSystem units = options.output.system();
  const Inhibitor inhibitor = inhibitor_of(options.inhibitor);
  if (!options.temperature.empty() && !options.pressure.empty())
    throw InputError("give -T (hydrate pressure), -P (hydrate temperature) or neither (the curve), not both");
  if (inhibitor.kind == 0 && (options.percent != 0.0 || options.depression != 0.0))
    throw InputError("--percent and --depression need an --inhibitor");
  Mixture mixture = options.mixture.build();
  const Exports library = session.library();
  const double percent = options.depression > 0.0
                             ? needed_percent(library, mixture, inhibitor, options.depression)
                             : options.percent;
  Points points;
  points.columns = {temperature_column(units), pressure_column(units)};
  fill(options, units, library, mixture, inhibitor, percent, points);
  const double shift = curve(library, mixture, {}, 0.0).T[0] - curve(library, mixture, inhibitor, percent).T[0];
  points.notes = {fmt::format("Gravity      {:.4f} (air 1)", mixture.molar_mass / 28.966),
                  inhibitor.kind == 0
                      ? std::string("Inhibitor    none")
                      : fmt::format("Inhibitor    {}, {:.4g} % by mass of its solution{}: {:.4g} K lower",
                                    inhibitor.name, percent, options.depression > 0.0 ? " needed" : "", shift)};
  print_points(points, mixture, options.output, session);
}

}  // namespace

void add_hydrate_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "hydrate",
      "Hydrate formation of a gas by its gravity: curve, temperature (-P) or pressure (-T), inhibitors");
  const auto options = std::make_shared<HydrateOptions>();
  options->mixture.add_to(*command);
  command->add_option("-T,--temperature", options->temperature,
                      "Value, list or range: the hydrate pressures there");
  command->add_option("-P,--pressure", options->pressure,
                      "Value, list or range: the hydrate temperatures there");
  command->add_option("--inhibitor", options->inhibitor,
                      "methanol, NaCl, KCl, CaCl2, a component (MEG) or a molar mass in g/mol");
  auto* percent =
      command->add_option("--percent", options->percent, "Inhibitor in its aqueous solution, % by mass (0)")
          ->check(CLI::Range(0.0, 99.9));
  command
      ->add_option("--depression", options->depression,
                   "Wanted depression in K: says how much inhibitor it takes")
      ->check(CLI::Range(0.0, 200.0))
      ->excludes(percent);
  command->add_option("--points", options->points, "Points of the curve (41)")->check(CLI::Range(2, 100000));
  options->output.add_to(*command);
  command->callback([options, &session] { hydrate(*options, session); });
}

}  // namespace kestrune::host
