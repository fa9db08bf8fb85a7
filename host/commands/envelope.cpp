// kestrune envelope: bubble and dew curve, quality lines, critical point and extremes, printed and drawn.
#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "commands/envelope_report.hpp"
#include "commands/session.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr int kDrawnPoints = 400;

struct EnvelopeOptions {
  MixtureOptions mixture;
  MissingPairOptions missing;
  OutputOptions output;
  std::string first_pressure, highest_pressure, lowest_temperature, quality, svg, png;
  PictureOptions frame;
  std::vector<std::string> point, overlays;
  int points = 0;
};

double one_value(Quantity quantity, const std::string& text, const UnitSystem& units) {
  if (text.empty()) return 0.0;
  const auto values = parse_conditions(quantity, text, units[quantity]);
  if (values.size() != 1)
    throw InputError(fmt::format("one {} is wanted, not \"{}\"", quantity_name(quantity), text));
  return values.front();
}

std::vector<double> quality_lines(const EnvelopeOptions& o, const UnitSystem& units) {
  if (o.quality.empty()) return {};
  auto fractions = parse_conditions(Quantity::vapour_fraction, o.quality, units[Quantity::vapour_fraction]);
  for (const double f : fractions)
    if (!(f > 0.0 && f < 1.0)) throw InputError("quality lines have vapour fractions between 0 and 1");
  return fractions;
}

std::optional<CurvePlace> operating_point(const EnvelopeOptions& o, const UnitSystem& units) {
  if (o.point.empty()) return std::nullopt;
  return CurvePlace{one_value(Quantity::temperature, o.point[0], units),
                    one_value(Quantity::pressure, o.point[1], units)};
}

EnvelopeReport trace_all(const Exports& library, Mixture& mixture, const UnitSystem& units,
                         const CurveLimits& limits, const std::vector<double>& fractions, int points) {
  EnvelopeReport report{mixture, units, {}, critical_point(library, mixture)};
  report.curves.push_back(trace_curve(library, mixture, 1.0, limits, points));
  for (const double f : fractions) report.curves.push_back(trace_curve(library, mixture, f, limits, points));
  return report;
}

void show_envelope(const EnvelopeOptions& o, Session& session) {
  const UnitSystem units = o.output.system();
  const CurveLimits limits{one_value(Quantity::pressure, o.first_pressure, units),
                           one_value(Quantity::pressure, o.highest_pressure, units),
                           one_value(Quantity::temperature, o.lowest_temperature, units)};
  const auto fractions = quality_lines(o, units);
  const auto point = operating_point(o, units);
  if (o.svg == "-" && o.png == "-") throw InputError("standard output takes one picture: --svg - or --png -");
  if (o.points < 0 || o.points > 100000) throw InputError("--points takes a number from 0 to 100000");
  const PictureOptions& f = o.frame;
  const bool framed = !f.title.empty() || !f.T_title.empty() || !f.P_title.empty() || !f.T_limits.empty() ||
                      !f.P_limits.empty() || !o.point.empty() || !o.overlays.empty();
  if (framed && o.svg.empty() && o.png.empty())
    throw InputError(
        "titles, limits of axes, --point and --overlay belong to a picture: --svg FILE or --png FILE");
  std::vector<Overlay> overlays;
  for (const std::string& text : o.overlays) overlays.push_back(read_overlay(text, units));
  Mixture mixture = o.mixture.build();
  o.missing.check(mixture);
  const Exports library = session.library();
  mixture.hand_over(library);
  const EnvelopeReport report = trace_all(library, mixture, units, limits, fractions, o.points);
  for (const Curve& curve : report.curves)
    if (!curve_is_good(curve.status)) session.exit_code = exit_status;
  if (!o.svg.empty() || !o.png.empty()) {
    const EnvelopeReport drawn = trace_all(library, mixture, units, limits, fractions, kDrawnPoints);
    if (drawn.curves.front().points.empty()) throw InputError("there is no curve to draw");
    const Chart chart = envelope_chart(drawn, overlays, point, limits.highest_P, o.frame);
    if (!o.svg.empty()) write_svg(chart, o.svg, session.out);
    if (!o.png.empty()) write_png(chart, o.png, session.out);
    if (o.svg == "-" || o.png == "-") return;
  }
  if (o.output.format == "json")
    print_envelope_json(report, session.out);
  else if (o.output.format == "csv")
    print_envelope_csv(report, session.out);
  else
    print_envelope_text(report, session.out);
  if (o.output.format == "csv") tell(session, notes_of(report));
}

}  // namespace

void add_envelope_command(CLI::App& app, Session& session) {
  auto* command =
      app.add_subcommand("envelope", "Bubble and dew curve, critical point, extremes, quality lines");
  const auto o = std::make_shared<EnvelopeOptions>();
  o->mixture.add_to(*command);
  o->missing.add_to(*command);
  o->output.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune envelope --z methane=0.9,nC4=0.1 --quality 0.9,0.5\n"
      "  kestrune envelope --z methane=0.9,nC4=0.1 --point 0C 50bar --svg - > envelope.svg\n"
      "  kestrune envelope --z methane=0.9,nC4=0.1 --points 40 --format csv --units K,atm");
  command->add_option("--quality", o->quality, "Vapour fractions of quality lines: 0.9,0.5");
  command->add_option("--points", o->points, "Points per curve, evenly spaced (default: as traced)");
  command->add_option("--from-P", o->first_pressure, "First pressure (1 atm)");
  command->add_option("--max-P", o->highest_pressure, "Highest pressure (2000 atm), also of the picture");
  command->add_option("--min-T", o->lowest_temperature, "Lowest temperature (50 K)");
  command->add_option("--svg", o->svg, "Draw the curves to this file; - is standard output, without the table");
  command->add_option("--png", o->png, "Draw them as PNG, the same; needs gnuplot");
  command->add_option("--point", o->point, "Operating point to draw: T P (25C 60barg)")->expected(2);
  command->add_option("--overlay", o->overlays,
                      "FILE:label, a line to draw over: CSV with T and P in its first columns, or with columns "
                      "such as temperature_C and pressure_bar");
  command->add_option("--title", o->frame.title, "Title of the picture");
  command->add_option("--T-title", o->frame.T_title, "Title of its temperature axis");
  command->add_option("--P-title", o->frame.P_title, "Title of its pressure axis");
  command->add_option("--T-limits", o->frame.T_limits, "Ends of its temperature axis: -80,20 C");
  command->add_option("--P-limits", o->frame.P_limits, "Ends of its pressure axis: 0,100 barg");
  command->callback([o, &session] { show_envelope(*o, session); });
}

}  // namespace kestrune::host
