// kestrune water: water content of a saturated gas, water dew points and dew line.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "commands/points.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr double kWaterMass = 18.01528;  // g/mol
constexpr std::int32_t kWaterCas = 7732185;
// Moles in a volume of ideal gas: 1 m3 at 0 C and 1 atm, 10^6 ft3 at 60 F and 14.696 psia.
constexpr double kGasConstant = 8.314462618;
constexpr double kMolPerNormalM3 = kAtmInPa / (kGasConstant * kZeroCelsius);
constexpr double kFootInM = 0.3048, kPoundInG = 453.59237;
constexpr double kMolPerMMscf = 14.696 * kPsiInPa * 1e6 * kFootInM * kFootInM * kFootInM /
                                (kGasConstant * (kZeroFahrenheit + 60.0) * 5.0 / 9.0);

// Water contents and what one of them is as a mole fraction of the wet gas.
constexpr struct {
  const char* name;
  double fraction;
} kContents[] = {{"mol/mol", 1.0},
                 {"ppm", 1e-6},
                 {"%", 0.01},
                 {"mg/nm3", 1e-3 / (kWaterMass * kMolPerNormalM3)},
                 {"lb/mmscf", kPoundInG / (kWaterMass * kMolPerMMscf)}};

struct WaterOptions {
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string temperature, pressure, water, method = "eos";
  bool line = false;
  int points = 41;
};

double parse_content(const std::string& text) {
  const std::string_view whole = trimmed(text);
  const std::size_t length = number_length(whole);
  const auto value = parse_number(whole.substr(0, length));
  const std::string name = lower(trimmed(whole.substr(length)));
  for (const auto& content : kContents) {
    const double fraction = value ? *value * content.fraction : -1.0;
    if ((name == content.name || (name.empty() && content.fraction == 1.0)) && fraction >= 0.0 &&
        fraction < 1.0)
      return fraction;
  }
  throw InputError(
      fmt::format("the water content \"{}\" is not a number with mol/mol, ppm, %, mg/Nm3 or lb/MMscf, below "
                  "one mole fraction",
                  text));
}

// The mixture with water in it: that of the composition, or so much that the wet gas has the content asked for.
Mixture build(const WaterOptions& options) {
  Composition composition = options.mixture.composition();
  bool there = false;
  for (const Component& c : composition.components) there = there || c.cas_number == kWaterCas;
  if (!there) composition.set("water", 0.0);
  Mixture mixture = build_mixture(composition, interaction_set(options.mixture.set));
  if (options.water.empty()) return mixture;
  const double y = parse_content(options.water);
  const auto is_water = [&](std::size_t i) { return mixture.components[i].cas_number == kWaterCas; };
  double dry = 0.0;
  for (std::size_t i = 0; i < mixture.z.size(); ++i) dry += is_water(i) ? 0.0 : mixture.z[i];
  if (!(dry > 0.0)) throw InputError("there is nothing but water in the mixture");
  for (std::size_t i = 0; i < mixture.z.size(); ++i)
    mixture.z[i] = is_water(i) ? y : mixture.z[i] * (1.0 - y) / dry;
  return mixture;
}

double water_fraction(const Mixture& mixture) {
  for (std::size_t i = 0; i < mixture.z.size(); ++i)
    if (mixture.components[i].cas_number == kWaterCas) return mixture.z[i];
  return 0.0;
}

// What the rows of the command are made of.
struct Job {
  const Exports& library;
  Mixture& mixture;
  std::int32_t method;
  Points& points;

  // T in K, P in Pa, y the water of the gas there; humidity NaN: not asked for.
  void add(double T, double P, double y, double humidity, StatusCode status) {
    const double values[] = {
        T, P, y, y * kMolPerNormalM3 * kWaterMass * 1e3, y * kMolPerMMscf * kWaterMass / kPoundInG, humidity};
    for (std::size_t c = 0; c < points.columns.size(); ++c) points.columns[c].values.push_back(values[c]);
    points.statuses.push_back(status);
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
  double P = 0.0;
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
  Mixture mixture = build(options);
  const auto read = [&](Quantity quantity, const std::string& text) {
    return text.empty() ? std::vector<double>{} : parse_conditions(quantity, text, units[quantity]);
  };
  const std::vector<double> Ts = read(Quantity::temperature, options.temperature);
  const std::vector<double> Ps = read(Quantity::pressure, options.pressure);
  if (!options.line && Ts.empty() && Ps.empty())
    throw InputError("give -T and -P (water content), -P (dew temperature), -T (dew pressure) or --line");
  if (options.line && !Ts.empty()) throw InputError("--line takes pressures only");
  const bool content = !options.line && !Ts.empty() && !Ps.empty();
  if (!content && !(water_fraction(mixture) > 0.0))
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
                    {"water mol", "water", "water_mole_fraction", nullptr, -1, {}},
                    {"mg/Nm3", "water_mg_Nm3", "water_mg_Nm3", nullptr, -1, {}},
                    {"lb/MMscf", "water_lb_MMscf", "water_lb_MMscf", nullptr, -1, {}}};
  if (content && water_fraction(mixture) > 0.0)
    points.columns.push_back(
        {"rel. humidity %", "relative_humidity_percent", "relative_humidity_percent", nullptr, 2, {}});
  if (!chart)
    points.remarks = {
        "a flash puts another amount of water into its gas; for a gas this one is the one to trust "
        "(docs/water.md), and "
        "flash --water-model saturation takes it"};
  Job job{library, mixture, chart ? 2 : 1, points};
  if (options.line) dew_line(job, Ps, options.points);
  for (const double T : content ? Ts : std::vector<double>{})
    for (const double P : Ps) saturation(job, T, P);
  if (!content && !options.line) {
    for (const double P : Ps) dew_temperature(job, P);
    for (const double T : Ts) dew_pressure(job, T);
  }
  print_points(points, mixture, options.output, session);
}

}  // namespace

void add_water_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "water",
      "Water in a gas: content at saturation (-T and -P), dew temperature (-P), dew pressure (-T), dew line");
  const auto options = std::make_shared<WaterOptions>();
  options->mixture.add_to(*command);
  command->add_option("-T,--temperature", options->temperature, "Value, list or range (25 C)");
  command->add_option("-P,--pressure", options->pressure, "Value, list or range (60 barg)");
  command->add_option(
      "--water", options->water,
      "Water of the gas: number with mol/mol, ppm, %, mg/Nm3 or lb/MMscf, of the wet gas; replaces "
      "that of the mixture");
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
