// Look-up by bisection over sorted CAS numbers, choice of the row, and the status that goes with it.

#include "pure/databank.hpp"

#include <algorithm>

#include "pure/equations.hpp"
#include "pure/extrapolation.hpp"

namespace kestrune::pure {
namespace {

// First index with cas[index] >= wanted, n where there is none; the loop has no branch to mispredict.
std::int32_t lower_bound(const std::int32_t* cas, std::int32_t n, std::int32_t wanted) noexcept {
  const std::int32_t* base = cas;
  for (std::int32_t length = n; length > 0;) {
    const std::int32_t half = length - length / 2;
    base += base[half - 1] < wanted ? half : 0;
    length -= half;
  }
  return static_cast<std::int32_t>(base - cas);
}

bool outside(const Row& row, double t) noexcept {
  return t < row.t_min || t > row.t_max;
}

// Melting curves: of the branches whose range holds t the first, which has the lowest pressure; outside all
// of them the value at the nearest end.
Result evaluate_melting(const Rows& rows, double t, std::int32_t equation) noexcept {
  const Row* lowest = nullptr;
  const Row* highest = nullptr;
  for (std::int32_t i = 0; i < rows.n; ++i) {
    const Row& row = rows.row[i];
    if (equation != own_choice && equation != row.equation) continue;
    if (!outside(row, t)) return {status_good, melting_pressure(row, t)};
    if (lowest == nullptr || row.t_min < lowest->t_min) lowest = &row;
    if (highest == nullptr || row.t_max > highest->t_max) highest = &row;
  }
  if (lowest == nullptr) return {status_no_correlation, 0.0};
  return {status_range, t < lowest->t_min ? melting_pressure(*lowest, lowest->t_min)
                                          : melting_pressure(*highest, highest->t_max)};
}

}  // namespace

Rows find_rows(Property property, std::int32_t cas) noexcept {
  const Table& table = property_tables[static_cast<int>(property)];
  std::int32_t first = lower_bound(table.cas, table.n, cas);
  std::int32_t n = 0;
  while (first + n < table.n && table.cas[first + n] == cas) ++n;
  return {table.rows + first, n};
}

const Row* choose_row(const Rows& rows, std::int32_t equation) noexcept {
  for (std::int32_t i = 0; i < rows.n; ++i) {
    if (equation == own_choice || rows.row[i].equation == equation) return rows.row + i;
  }
  return nullptr;
}

std::int32_t missing_status(std::int32_t cas) noexcept {
  const std::int32_t i = lower_bound(component_cas, n_components, cas);
  return i < n_components && component_cas[i] == cas ? status_no_correlation : status_unknown;
}

Result evaluate(Property property, std::int32_t cas, double t, std::int32_t equation) noexcept {
  const Rows rows = find_rows(property, cas);
  if (rows.n == 0) return {missing_status(cas), 0.0};
  if (property == Property::MeltingPressure) return evaluate_melting(rows, t, equation);
  const Row* row = choose_row(rows, equation);
  if (row == nullptr) return {status_no_correlation, 0.0};
  const double y = continued_value(property, *row, t);
  const bool inverse = property == Property::LiquidMolarVolume || property == Property::SolidMolarVolume;
  return {outside(*row, t) ? status_range : status_good, inverse ? 1.0 / y : y};
}

Result integrate(Over over, Property property, std::int32_t cas, double t, double a, double b,
                 std::int32_t equation) noexcept {
  const Rows rows = find_rows(property, cas);
  const Row* row = choose_row(rows, equation);
  if (row == nullptr) return {rows.n == 0 ? missing_status(cas) : status_no_correlation, 0.0};
  const double from = std::clamp(a, t_lowest, t_highest);
  const double to = std::clamp(t, t_lowest, t_highest);
  return {outside(*row, t) ? status_range : status_good, b + heat_capacity_integral(over, *row, from, to)};
}

Result chemical_exergy(Phase phase, std::int32_t cas, std::int32_t equation) noexcept {
  if (missing_status(cas) == status_unknown) return {status_unknown, 0.0};
  const ExergyTable& table = exergy_tables[static_cast<int>(phase)];
  const Exergy* end = table.rows + table.n;
  const Exergy* row =
      std::lower_bound(table.rows, end, cas, [](const Exergy& e, std::int32_t key) { return e.cas < key; });
  if (row == end || row->cas != cas || equation != own_choice) return {status_no_correlation, 0.0};
  return {status_good, row->value};
}

}  // namespace kestrune::pure
