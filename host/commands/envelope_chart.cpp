#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <fstream>

#include "commands/envelope_report.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr const char* kDewColour = "#c0392b";
constexpr const char* kBubbleColour = "#1f5fa8";
constexpr const char* kLiquidsColour = "#7d6b91";
constexpr const char* kUnstableColour = "#999999";
constexpr const char* kQualityColours[] = {"#3c8d5a", "#8fb339", "#2aa198"};
constexpr const char* kOverlayColours[] = {"#d68910", "#117a8b", "#8e44ad", "#7e5109"};
constexpr double kOpenTop = 4e7;  // Pa, of an envelope without a cricondenbar

std::string degrees(std::string_view unit) {
  return unit == "C" || unit == "F" ? fmt::format("°{}", unit) : std::string(unit);
}

struct Style {
  const char *label, *colour;
  double width;
  bool dashed;
};

Style style_of(Piece::Kind kind) {
  switch (kind) {
    case Piece::Kind::dew:
      return {"Dew curve", kDewColour, 2.6, false};
    case Piece::Kind::bubble:
      return {"Bubble curve", kBubbleColour, 2.6, false};
    case Piece::Kind::liquids:
      return {"A second liquid forms", kLiquidsColour, 2.0, true};
    case Piece::Kind::not_stable:
      return {"Another phase splits off", kUnstableColour, 1.6, true};
    default:
      return {"", kQualityColours[0], 1.5, true};
  }
}

void add_pieces(const EnvelopeReport& r, const Curve& curve, std::size_t number, Chart& chart) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  for (const Piece& piece : pieces_of(curve)) {
    const Style style = style_of(piece.kind);
    std::string label = piece.kind == Piece::Kind::quality ? fmt::format("Vapour fraction {:g}", curve.fraction)
                                                           : std::string(style.label);
    for (const ChartLine& line : chart.lines)
      if (line.label == label) label.clear();
    const bool quality = piece.kind == Piece::Kind::quality;
    const char* colour = quality ? kQualityColours[(number - 1) % std::size(kQualityColours)] : style.colour;
    const bool sets_axes = piece.kind != Piece::Kind::liquids && piece.kind != Piece::Kind::not_stable;
    ChartLine line{label, colour, style.width, style.dashed, {}, {}, sets_axes};
    for (const CurvePoint& p : piece.points) {
      line.x.push_back(T.from_base(p.T));
      line.y.push_back(P.from_base(p.P));
    }
    chart.lines.push_back(line);
  }
}

void add_mark(const EnvelopeReport& r, const std::string& title, const char* colour, Mark mark, double T,
              double P, Chart& chart) {
  const Unit &of_T = r.units[Quantity::temperature], &of_P = r.units[Quantity::pressure];
  const double x = of_T.from_base(T), y = of_P.from_base(P);
  chart.marks.push_back({fmt::format("{}: {:.1f} {}, {:.5g} {}", title, x, degrees(of_T.name), y, of_P.name),
                         colour, mark, x, y});
}

// The part of the plane that is shown: all of T where a line is below the top pressure.
void choose_range(const EnvelopeReport& r, const std::optional<CurvePlace>& point, double top, Chart& chart) {
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  if (!(top > 0.0)) {
    for (const ChartLine& line : chart.lines)
      for (const double y : line.y) top = std::max(top, line.sets_axes ? P.to_base(y) : 0.0);
    const CurvePlace& bar = r.curves.front().cricondenbar;
    top = bar.found() ? std::min(top, 1.12 * bar.P) : std::min(top, kOpenTop);
    for (const ChartMark& mark : chart.marks) top = std::max(top, 1.05 * P.to_base(mark.y));
    if (point) top = std::max(top, 1.05 * point->P);
  }
  chart.y_high = P.from_base(top);
  chart.y_low = std::min(0.0, P.from_base(0.0));
  double low = 1e300, high = -1e300;
  const auto include = [&](double v) {
    low = std::min(low, v);
    high = std::max(high, v);
  };
  const auto sets = [](const ChartLine& line) { return line.sets_axes; };
  const bool any = std::any_of(chart.lines.begin(), chart.lines.end(), sets);
  for (const ChartLine& line : chart.lines)
    for (std::size_t i = 0; i < line.x.size(); ++i)
      if (line.y[i] <= chart.y_high && (line.sets_axes || !any)) include(line.x[i]);
  for (const ChartMark& mark : chart.marks) include(mark.x);
  if (point) include(T.from_base(point->T));
  const double margin = 0.03 * (high - low);
  chart.x_low = low - margin;
  chart.x_high = high + margin;
}

// "-80,20 C": two numbers in the user's units.
void apply_limits(const std::string& text, Quantity quantity, const UnitSystem& units, double& low,
                  double& high, bool& exact) {
  if (text.empty()) return;
  std::vector<double> numbers;
  const Unit* given = &units[quantity];
  for (const std::string& piece : split(text, ',')) {
    const std::size_t length = number_length(piece);
    const std::string name(trimmed(std::string_view(piece).substr(length)));
    const auto value = parse_number(piece.substr(0, length));
    if (value) numbers.push_back(*value);
    if (!name.empty()) given = &unit(quantity, name);
  }
  if (numbers.size() != 2 || !(numbers[0] < numbers[1]))
    throw InputError(fmt::format("the axis of {} has two ends, the lower one first, not \"{}\"",
                                 quantity_name(quantity), text));
  low = units[quantity].from_base(given->to_base(numbers[0]));
  high = units[quantity].from_base(given->to_base(numbers[1]));
  exact = true;
}

void apply(const PictureOptions& o, const UnitSystem& units, Chart& chart) {
  if (!o.title.empty()) chart.title = o.title;
  if (!o.T_title.empty()) chart.x_title = o.T_title;
  if (!o.P_title.empty()) chart.y_title = o.P_title;
  apply_limits(o.T_limits, Quantity::temperature, units, chart.x_low, chart.x_high, chart.x_exact);
  apply_limits(o.P_limits, Quantity::pressure, units, chart.y_low, chart.y_high, chart.y_exact);
}

}  // namespace

Overlay read_overlay(const std::string& text, const UnitSystem& units) {
  const std::size_t colon = text.rfind(':');
  const bool labelled = colon != std::string::npos && colon > 1;  // not the colon of a drive
  const std::string name = labelled ? text.substr(0, colon) : text;
  const std::size_t slash = name.find_last_of("/\\");
  Overlay line{
      labelled ? text.substr(colon + 1) : name.substr(slash == std::string::npos ? 0 : slash + 1), {}, {}};
  std::ifstream file(name);
  if (!file) throw InputError(fmt::format("cannot read the line to draw from {}", name));
  std::size_t of_T = 0, of_P = 1;
  const Unit *T = &units[Quantity::temperature], *P = &units[Quantity::pressure];
  std::string row;
  for (int number = 1; std::getline(file, row); ++number) {
    const auto fields = split(row, ',');
    if (number == 1) {
      // "temperature_C": a column by name, in the unit behind it.
      const auto find = [&](const std::string& title, Quantity quantity, std::size_t& column, const Unit*& of) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
          const std::string end = fields[i].substr(std::min(title.size(), fields[i].size()));
          if (fields[i].rfind(title, 0) != 0 || !is_unit(quantity, end)) continue;
          column = i;
          of = &unit(quantity, end);
          return;
        }
      };
      find("temperature_", Quantity::temperature, of_T, T);
      find("pressure_", Quantity::pressure, of_P, P);
    }
    if (fields.size() <= std::max(of_T, of_P)) continue;
    const auto t = parse_number(fields[of_T]), p = parse_number(fields[of_P]);
    if (!t || !p) continue;  // titles and gaps
    line.T.push_back(units[Quantity::temperature].from_base(T->to_base(*t)));
    line.P.push_back(units[Quantity::pressure].from_base(P->to_base(*p)));
  }
  if (line.T.size() < 2)
    throw InputError(
        fmt::format("{} has no line: two columns with T and P are wanted, or columns such as temperature_C "
                    "and pressure_bar",
                    name));
  return line;
}

Chart envelope_chart(const EnvelopeReport& r, const std::vector<Overlay>& overlays,
                     const std::optional<CurvePlace>& point, double top, const PictureOptions& options) {
  Chart chart;
  chart.title = r.mixture.title.empty() ? "Phase envelope" : "Phase envelope: " + r.mixture.title;
  chart.x_title = "Temperature, " + degrees(r.units[Quantity::temperature].name);
  chart.y_title = fmt::format("Pressure, {}", r.units[Quantity::pressure].name);
  for (std::size_t k = 0; k < r.curves.size(); ++k) add_pieces(r, r.curves[k], k, chart);
  const Curve& outline = r.curves.front();
  if (r.critical.status == KV_OK)
    add_mark(r, "Critical point", "#222222", Mark::disc, r.critical.T, r.critical.P, chart);
  for (const CurvePlace& place : further_critical(r))
    add_mark(r, "Further critical point", "#777777", Mark::disc, place.T, place.P, chart);
  if (outline.cricondentherm.found())
    add_mark(r, "Cricondentherm", kDewColour, Mark::triangle, outline.cricondentherm.T,
             outline.cricondentherm.P, chart);
  if (outline.cricondenbar.found())
    add_mark(r, "Cricondenbar", kBubbleColour, Mark::square, outline.cricondenbar.T, outline.cricondenbar.P,
             chart);
  choose_range(r, point, top, chart);
  std::size_t colour = 0;
  for (const Overlay& o : overlays) {
    chart.lines.push_back(
        {o.label, kOverlayColours[colour++ % std::size(kOverlayColours)], 2.0, true, o.T, o.P, true});
    const auto [low, high] = std::minmax_element(o.T.begin(), o.T.end());
    chart.x_low = std::min(chart.x_low, *low);
    chart.x_high = std::max(chart.x_high, *high);
  }
  if (point) add_mark(r, "Operating point", "#000000", Mark::cross, point->T, point->P, chart);
  apply(options, r.units, chart);
  return chart;
}

}  // namespace kestrune::host
