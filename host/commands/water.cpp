// kestrune water: water content of a saturated gas, water dew points and dew line.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "commands/points.hpp"
#include "commands/wet_gas.hpp"
#include "equilibrium.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

struct WaterOptions {
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string temperature, pressure, water, content = "mg/Nm3,lb/MMscf", method = "eos";
  bool line = false;
  int points = 41;
};

// What the rows of the command are made of.
struct Job {
  const Exports& library;
  Mixture& mixture;
  std::int32_t method;
  std::vector<const Unit*> units;  // of the water content, a column each
  double dry;                      // molar mass
  Points& points;

  // T in K, P in Pa, y the water of the gas there; humidity NaN: not asked for.
  void add(double T, double P, double y, double humidity, StatusCode status) {
    std::vector<double> values{T, P, y};
    for (const Unit* u : units) values.push_back(u->from_base(y, wet_mass(dry, y)));
    values.push_back(humidity);
    for (std::size_t c = 0; c < points.columns.size(); ++c) points.columns[c].values.push_back(values[c]);
    points.statuses.push_back(status);
    const bool place = std::isfinite(T) && std::isfinite(P) && status == KV_OK;
    const bool none = status == KV_NOT_CONVERGED || status == KV_ZERO_SLOPE;
    points.warnings.push_back(place  ? warning(T, P)
                              : none ? "no water dew point was found for this water content"
                                     : "");
  }

  // The methods take the feed for a gas; a flash of it without its water says whether it is one.
  std::string warning(double T, double P) {
    const std::vector<double> wet = mixture.z;
    const double M = mixture.molar_mass;
    set_water(mixture, 0.0);
    const Equilibrium s = flash_of_all(library, mixture, Given::TP, T, P);
    mixture.z = wet;
    mixture.molar_mass = M;
    if (!s.answered() || (s.phases.size() == 1 && is_gas(s.phases.front().kind))) return "";
    return fmt::format("no single gas here: {} without its water", phases_in_words(s));
  }
};

void saturation(Job& job, double T, double P) {
  double y = 0.0, content = 0.0;
  const StatusCode status = job.library.Humidity(T, P / kAtmInPa, job.method, job.mixture.z.data(),
                                                 &job.mixture.record, &y, &content);
  const bool good = status == KV_OK;
  job.add(T, P, good ? y : kNone, good ? 100.0 * water_fraction(job.mixture) / y : kNone, status);
}

void dew_temperature(Job& job, double P) {
  double T = 0.0;
  const StatusCode status = job.library.WaterDewTemperature(P / kAtmInPa, job.mixture.z.data(), job.method, 0,
                                                            0, &job.mixture.record, 0, &T);
  job.add(status == KV_OK ? T : kNone, P, water_fraction(job.mixture), kNone, status);
}

void dew_pressure(Job& job, double T) {
  double P = dew_start(water_fraction(job.mixture));
  const StatusCode status =
      job.library.WaterDewPressure(T, job.mixture.z.data(), job.method, 0, 0, &job.mixture.record, 0, &P);
  job.add(T, status == KV_OK ? P * kAtmInPa : kNone, water_fraction(job.mixture), kNone, status);
}

void dew_line(Job& job, const std::vector<double>& pressures, int n) {
  if (pressures.size() != 0 && pressures.size() != 2)
    throw InputError("--line takes two pressures, the lowest and the highest: -P \"1,200 bar\"");
  const auto size = static_cast<std::size_t>(n);
  std::vector<double> T(size), P(size);
  std::vector<std::int32_t> status(size);
  std::int32_t found = 0;
  const double low = pressures.empty() ? 0.0 : pressures[0] / kAtmInPa;
  const double high = pressures.empty() ? 0.0 : pressures[1] / kAtmInPa;
  const StatusCode whole = job.library.WaterDewLine(job.mixture.z.data(), job.method, 0, 0, &job.mixture.record,
                                                    0, low, high, n, T.data(), P.data(), status.data(), &found);
  if (whole == KV_SPECIFICATION) throw InputError("the lowest pressure of the line is above the highest");
  if (found == 0 && P[0] == 0.0) return job.add(kNone, kNone, water_fraction(job.mixture), kNone, whole);
  for (std::size_t k = 0; k < size; ++k)
    job.add(status[k] == KV_OK ? T[k] : kNone, P[k] * kAtmInPa, water_fraction(job.mixture), kNone, status[k]);
}

void water(const WaterOptions& options, Session& session) {
  const UnitSystem units = options.output.system();
  Mixture mixture = build_with_water(options.mixture);
  const auto read = [&](Quantity quantity, const std::string& text) {
    return text.empty() ? std::vector<double>{} : parse_conditions(quantity, text, units[quantity]);
  };
  const std::vector<double> Ts = read(Quantity::temperature, options.temperature);
  const std::vector<double> Ps = read(Quantity::pressure, options.pressure);
  if (!options.line && Ts.empty() && Ps.empty())
    throw InputError("give -T and -P (water content), -P (dew temperature), -T (dew pressure) or --line");
  if (options.line && !Ts.empty()) throw InputError("--line takes pressures only");
  const bool content = !options.line && !Ts.empty() && !Ps.empty();
  const double dry = dry_mass(mixture);
  const std::vector<double> waters =
      options.water.empty() ? std::vector<double>{water_fraction(mixture)} : water_contents(options.water, dry);
  const bool wet = std::all_of(waters.begin(), waters.end(), [](double y) { return y > 0.0; });
  if (!content && !wet)
    throw InputError(
        "a dew point needs water in the gas: give it in the mixture or with --water, \"50 mg/Nm3\"");
  options.missing.check(mixture);
  const Exports library = session.library();
  mixture.hand_over(library);

  const bool chart = options.method == "chart";
  Points points;
  points.notes = {
      fmt::format("Method       {}", chart ? "chart correlation with the acid-gas correction"
                                           : "equation of state beside water or ice"),
      fmt::format("Rows         {}", content ? "the gas saturated with water" : "water dew points")};
  points.columns = {temperature_column(units),
                    pressure_column(units),
                    {"water mol", "water", "water_mole_fraction", nullptr, -1, {}}};
  if (!chart)
    points.remarks = {
        "a flash puts another amount of water into its gas; for a gas this one is the one to trust "
        "(docs/water.md), "
        "and flash --water-model saturation takes it"};
  points.with_warnings = true;
  Job job{library, mixture, chart ? 2 : 1, {}, dry, points};
  for (const std::string& name : split(options.content, ',')) {
    const Unit& u = unit(Quantity::water_content, name);
    job.units.push_back(&u);
    const std::string key = column_name("water_mol_mol", Quantity::water_content, u);
    points.columns.push_back({std::string(u.name), key, key, nullptr, -1, {}});
  }
  if (content && wet)
    points.columns.push_back(
        {"rel. humidity %", "relative_humidity_percent", "relative_humidity_percent", nullptr, 2, {}});
  for (const double y : waters) {
    set_water(mixture, y);
    if (options.line) dew_line(job, Ps, options.points);
    for (const double T : content ? Ts : std::vector<double>{})
      for (const double P : Ps) saturation(job, T, P);
    if (content || options.line) continue;
    for (const double P : Ps) dew_temperature(job, P);
    for (const double T : Ts) dew_pressure(job, T);
  }
  const auto is_gas_row = [](const std::string& warning) { return warning.empty(); };
  if (std::none_of(points.warnings.begin(), points.warnings.end(), is_gas_row)) points.remarks.clear();
  print_points(points, mixture, options.output, session);
}

}  // namespace

void add_water_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "water",
      "Water in a gas: content at saturation (-T and -P), dew temperature (-P), dew pressure (-T), dew line");
  const auto options = std::make_shared<WaterOptions>();
  options->mixture.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune water --z methane=0.95,CO2=0.05 -T 0:40:20 C -P 70 bar\n"
      "  kestrune water --z methane=0.95,CO2=0.05 --water \"50,100 mg/Sm3\" -P 70 bar\n"
      "  kestrune water --z methane=0.95,CO2=0.05 --water 60 ppmv --line -P \"1,100 bar\" --points 5");
  command->add_option("-T,--temperature", options->temperature, "Value, list or range (25 C)");
  command->add_option("-P,--pressure", options->pressure, "Value, list or range (60 barg)");
  command->add_option("--water", options->water,
                      "Water of the wet gas, value, list or range with mol/mol, %, ppmv, ppmw, mg/Nm3, g/Nm3, "
                      "mg/Sm3 or lb/MMscf; "
                      "replaces that of the mixture");
  command->add_option("--content", options->content, "Units of the water contents shown (mg/Nm3,lb/MMscf)");
  command->add_flag("--line", options->line,
                    "Dew line between two pressures, -P \"1,200 bar\" (1 and 200 atm)");
  command->add_option("--points", options->points, "Points of the line (41)")->check(CLI::Range(1, 100000));
  command->add_option("--method", options->method, "eos (default): equation of state; chart: correlation")
      ->check(CLI::IsMember({"eos", "chart"}));
  options->missing.add_to(*command);
  options->output.add_to(*command);
  command->callback([options, &session] { water(*options, session); });
}

}  // namespace kestrune::host
