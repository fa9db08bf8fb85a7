// kestrune table: properties on a grid for simulators that interpolate, with the phase boundaries as rows of their own.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "batch/state.hpp"
#include "branches.hpp"
#include "commands/conditions.hpp"
#include "commands/session.hpp"
#include "error.hpp"
#include "table.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using batch::Column;
using batch::StateSolver;

struct TableOptions {
  MixtureOptions mixture;
  ConditionOptions conditions;
  MissingPairOptions missing;
  RecordOptions record;
  std::string columns = "density,H,S", phases = "3", units = "engineering", energy, output;
  bool overwrite = false;
};

// One row, of the grid or of a boundary.
struct GridRow {
  const char* kind;  // "grid", "bubble", "dew"
  std::string phases;
  std::vector<double> values;  // in the order of the columns, NaN for those without a number
  StatusCode status;
};

// The lines of the grid, each at one pressure; first is temperature or enthalpy, in base units and ascending.
struct Grid {
  Given given;
  std::vector<double> first, pressures;
  std::vector<std::vector<GridRow>> lines;  // [pressure][first]
};

GridRow row_of(StateSolver& solver, const char* kind, const std::vector<Column>& columns) {
  GridRow row{kind, std::string(solver.phases()), {}, solver.status()};
  for (const Column& c : columns) row.values.push_back(solver.value(c));
  return row;
}

// Bubble and dew points at a pressure with their properties: of the first one of each kind those of the point itself, of
// other branches those of the state at the temperature found. A point that was not found has its status, and the
// temperature of the traced line where that has it; where there is none, there is no row.
std::vector<GridRow> boundary(const Exports& library, Mixture& mixture, int phases, double P,
                              const std::vector<Column>& columns) {
  std::vector<GridRow> rows;
  StateSolver solver(library, mixture, Given::TP, phases, columns),
      first(library, mixture, Given::WP, phases, columns);
  constexpr double kSame = 1e-8;  // relative, in T
  for (const double fraction : {0.0, 1.0}) {
    const bool found = has_value(first.solve(fraction, P, mixture.z.data(), mixture.molar_mass));
    for (const Equilibrium& point : points_of_fraction(library, mixture, Given::WP, fraction, P, Branch::all)) {
      if (!point.answered() || !std::isfinite(point.T)) {
        const bool traced = !point.remark.empty();
        if (!traced && point.status == KV_NO_SATURATION) continue;
        solver.leave(traced ? point.last_T : kNone, P, point.status);
        rows.push_back(row_of(solver, fraction == 0.0 ? "bubble" : "dew", columns));
        continue;
      }
      const bool same = found && std::fabs(first.T() - point.T) < kSame * point.T;
      if (!same) solver.solve(point.T, P, mixture.z.data(), mixture.molar_mass);
      rows.push_back(row_of(same ? first : solver, fraction == 0.0 ? "bubble" : "dew", columns));
    }
  }
  return rows;
}

void print_rows(const Grid& grid, const std::vector<std::vector<GridRow>>& boundaries, std::size_t sorted_by,
                const std::vector<Column>& columns, std::ostream& out) {
  out << "kind,phases";
  for (const Column& c : columns) out << ',' << csv_field(c.heading);
  out << ",status\n";
  const auto print = [&](const GridRow& row) {
    out << row.kind << ',' << row.phases;
    for (const double v : row.values) out << (std::isfinite(v) ? fmt::format(",{}", v) : ",");
    out << ',' << row.status << '\n';
  };
  for (std::size_t j = 0; j < grid.lines.size(); ++j) {
    std::vector<const GridRow*> line;
    for (const GridRow& row : grid.lines[j]) line.push_back(&row);
    for (const GridRow& row : boundaries[j])
      if (!std::isnan(row.values[sorted_by])) line.push_back(&row);
    std::stable_sort(line.begin(), line.end(), [sorted_by](const GridRow* a, const GridRow* b) {
      return a->values[sorted_by] < b->values[sorted_by];
    });
    for (const GridRow& row : boundaries[j])
      if (std::isnan(row.values[sorted_by])) line.push_back(&row);  // nobody knows where
    for (const GridRow* row : line) print(*row);
  }
}

// Leaves the points between the ends of a line of the grid, by temperature, and those of which nobody knows where they are.
void clip(const std::vector<GridRow>& line, std::size_t T_column, std::vector<GridRow>& points) {
  const double low = line.front().values[T_column], high = line.back().values[T_column];
  std::erase_if(points,
                [&](const GridRow& p) { return p.values[T_column] < low || p.values[T_column] > high; });
}

// What bilinear interpolation misses at the centres of cells.
struct Error {
  std::size_t cells = 0;
  double sum = 0.0, largest = 0.0, first = kNone, P = kNone;

  void add(double error, double at_first, double at_P) {
    ++cells;
    sum += error;
    if (error < largest) return;
    largest = error;
    first = at_first;
    P = at_P;
  }
};

struct Errors {
  Error one, crossed;  // cells of one set of phases, and others
  double low = HUGE_VAL, high = -HUGE_VAL;
};

std::vector<Errors> measure(const Grid& grid, StateSolver& solver, const Mixture& mixture,
                            const std::vector<Column>& columns) {
  std::vector<Errors> errors(columns.size());
  for (const auto& line : grid.lines)
    for (const GridRow& row : line)
      for (std::size_t c = 0; c < columns.size(); ++c)
        if (std::isfinite(row.values[c])) {
          errors[c].low = std::min(errors[c].low, row.values[c]);
          errors[c].high = std::max(errors[c].high, row.values[c]);
        }
  for (std::size_t j = 0; j + 1 < grid.lines.size(); ++j) {
    for (std::size_t i = 0; i + 1 < grid.first.size(); ++i) {
      const double first = 0.5 * (grid.first[i] + grid.first[i + 1]);
      const double P = 0.5 * (grid.pressures[j] + grid.pressures[j + 1]);
      solver.solve(first, P, mixture.z.data(), mixture.molar_mass);
      const GridRow centre = row_of(solver, "grid", columns);
      const GridRow* corners[] = {&grid.lines[j][i], &grid.lines[j][i + 1], &grid.lines[j + 1][i],
                                  &grid.lines[j + 1][i + 1]};
      const bool same = std::all_of(std::begin(corners), std::end(corners),
                                    [&](const GridRow* corner) { return corner->phases == centre.phases; });
      for (std::size_t c = 0; c < columns.size(); ++c) {
        double sum = 0.0;
        for (const GridRow* corner : corners) sum += corner->values[c];
        const double error = std::fabs(0.25 * sum - centre.values[c]);
        if (std::isfinite(error)) (same ? errors[c].one : errors[c].crossed).add(error, first, P);
      }
    }
  }
  return errors;
}

void print_errors(const Grid& grid, const std::vector<Errors>& errors, const std::vector<Column>& columns,
                  std::size_t conditions, const UnitSystem& units, const Mixture& mixture, std::ostream& out) {
  const Quantity first = quantities_of(grid.given)[0];
  Table table({"bilinear interpolation at cell centres", "cells", "mean error", "largest", "% of range",
               fmt::format("at {} {}", first == Quantity::temperature ? "T" : "H", units[first].name),
               fmt::format("P {}", units[Quantity::pressure].name)},
              "lrrrrrr");
  for (std::size_t c = conditions; c < columns.size(); ++c) {
    for (const bool crossed : {false, true}) {
      const Error& e = crossed ? errors[c].crossed : errors[c].one;
      const double range = errors[c].high - errors[c].low;
      table.add({columns[c].heading + (crossed ? ", across a boundary" : ", same phases"),
                 std::to_string(e.cells),
                 shown_significant(e.cells > 0 ? e.sum / static_cast<double>(e.cells) : kNone),
                 shown_significant(e.cells > 0 ? e.largest : kNone),
                 shown_digits(e.cells > 0 && range > 0.0 ? 100.0 * e.largest / range : kNone, 3),
                 shown_fixed(units[first].from_base(e.first, mixture.molar_mass), 3),
                 shown_fixed(units[Quantity::pressure].from_base(e.P), 4)});
    }
  }
  table.print(out);
}

// The axes first; enthalpy, which is one of them or a property, stands once.
std::vector<Column> table_columns(const TableOptions& o, Given given, int phases, const Mixture& mixture,
                                  const UnitSystem& units) {
  std::string names = given == Given::HP ? "H,T,P" : "T,P";
  for (const std::string& name : split(o.columns, ',')) {
    const std::string wanted = lower(name);
    if (given != Given::HP || (wanted != "h" && wanted != "enthalpy")) names += ',' + name;
  }
  std::vector<Column> columns = batch::columns_by_name(names, {}, given, phases, mixture, units);
  for (const Column& c : columns)
    if (c.is_text() || c.kind == Column::Kind::phases || c.kind == Column::Kind::status)
      throw InputError(fmt::format("--columns: a table has {} already, or no place for it", c.heading));
  return columns;
}

void run_table(const TableOptions& o, Session& session) {
  UnitSystem units = unit_system(o.units);
  if (!o.energy.empty()) units.choose_energy(o.energy);
  if (o.phases != "2" && o.phases != "3")
    throw InputError(fmt::format("--phases {}: a table has states of 2 or 3 phases", o.phases));
  if (o.record.free_water && o.phases == "2")
    throw InputError("free water is a liquid of its own: --phases 3, or no --free-water");
  if (o.record.trace) throw InputError("--trace belongs to single states: use kestrune flash");
  const int phases = o.phases == "2" ? 2 : 3;
  Mixture mixture = o.mixture.build();
  o.missing.check(mixture);
  Conditions conditions = o.conditions.read(units, mixture.molar_mass);
  if (conditions.given != Given::TP && conditions.given != Given::HP)
    throw InputError("a table is over temperature and pressure, or over enthalpy and pressure");
  Grid grid{conditions.given, conditions.values[0], conditions.values[1], {}};
  for (std::vector<double>* axis : {&grid.first, &grid.pressures}) {
    std::sort(axis->begin(), axis->end());
    if (axis->size() < 2 || std::adjacent_find(axis->begin(), axis->end()) != axis->end())
      throw InputError(
          "each axis of a table has two values or more, each once: -T 150:350:10 K -P 1:101:10 bar");
  }
  o.record.apply(mixture);
  const bool by_enthalpy = grid.given == Given::HP;
  const std::vector<Column> columns = table_columns(o, grid.given, phases, mixture, units);
  std::error_code none;
  if (!o.output.empty() && !o.mixture.file.empty() &&
      std::filesystem::equivalent(o.mixture.file, o.output, none))
    throw InputError(fmt::format("{} is read: write to another file", o.output));
  if (!o.output.empty() && std::filesystem::exists(o.output, none) && !o.overwrite)
    throw InputError(fmt::format("{} exists: --overwrite replaces it", o.output));
  const Exports library = session.library();
  mixture.hand_over(library);

  StateSolver solver(library, mixture, grid.given, phases, columns);
  std::vector<std::vector<GridRow>> boundaries;
  for (const double P : grid.pressures) {
    grid.lines.emplace_back();
    for (const double first : grid.first) {
      const StatusCode status = solver.solve(first, P, mixture.z.data(), mixture.molar_mass);
      if (!has_value(status)) session.exit_code = exit_status;
      grid.lines.back().push_back(row_of(solver, "grid", columns));
      if (by_enthalpy)
        grid.lines.back().back().values[0] = units[Quantity::enthalpy].from_base(first, mixture.molar_mass);
    }
    boundaries.push_back(boundary(library, mixture, phases, P, columns));
    clip(grid.lines.back(), by_enthalpy ? 1 : 0, boundaries.back());
    for (const GridRow& row : boundaries.back())
      if (!has_value(row.status)) session.exit_code = exit_status;
  }
  const std::vector<Errors> errors = measure(grid, solver, mixture, columns);
  if (o.output.empty()) {
    print_rows(grid, boundaries, 0, columns, session.out);
  } else {
    std::ofstream file(o.output, std::ios::binary);
    print_rows(grid, boundaries, 0, columns, file);
    file.close();
    if (!file) throw InputError(fmt::format("{} could not be written", o.output));
  }
  print_errors(grid, errors, columns, by_enthalpy ? 3 : 2, units, mixture,
               o.output.empty() ? session.err : session.out);
  tell(session, remarks(mixture));
}

}  // namespace

void add_table_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand("table",
                                     "Properties on a grid of temperature or enthalpy and pressure, with the "
                                     "phase boundaries, as CSV for simulators");
  const auto options = std::make_shared<TableOptions>();
  options->mixture.add_to(*command);
  options->conditions.add_TP_to(*command, false);
  command->add_option("-H,--enthalpy", options->conditions.enthalpy, "List or range instead of -T");
  command->add_option("--columns", options->columns,
                      "Columns by commas, as those of kestrune batch (density,H,S)");
  command->add_option("-o,--output", options->output, "File for the table (default: standard output)");
  command->add_flag("--overwrite", options->overwrite, "Replace a file that is there");
  command->add_option("--phases", options->phases,
                      "3 (default): up to two liquids and a vapour; 2: liquid and vapour");
  command->add_option("--units", options->units,
                      "engineering (C, bar, kJ/kg; default), si, field or a pair such as K,atm");
  command->add_option("--energy", options->energy,
                      "Unit of enthalpies, entropies follow: kJ/kg, J/mol, Btu/lb ...");
  options->missing.add_to(*command);
  options->record.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune table --z methane=0.9,nC5=0.1 -T -80:40:20 C -P 10:90:20 bar -o table.csv --overwrite\n"
      "  kestrune table --z methane=0.9,nC5=0.1 -H -500:0:100 kJ/kg -P 10:50:20 bar --columns "
      "density,S,vapour.Cp");
  command->callback([options, &session] { run_table(*options, session); });
}

}  // namespace kestrune::host
