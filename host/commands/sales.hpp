// What kestrune sales finds out about a gas: calorific values, dew points, and the limits they are held against.
#ifndef KESTRUNE_HOST_COMMANDS_SALES_HPP
#define KESTRUNE_HOST_COMMANDS_SALES_HPP

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "commands/session.hpp"
#include "envelope.hpp"
#include "sales_gas.hpp"

namespace kestrune::host {

// A dew temperature at a pressure; status KV_NO_SATURATION: there is none.
struct DewPoint {
  double P, T;  // Pa, K
  StatusCode status;
};

struct DewPoints {
  std::string reason;  // why none were looked for; empty where they were
  StatusCode curve = KV_OK;
  CurvePlace cricondentherm, cricondenbar;
  bool hottest_known = false;  // the curve is whole, or open at high pressure and colder there
  std::vector<DewPoint> hydrocarbon, water;

  // The hottest of several; absent where one of them failed, NaN where no pressure has one.
  static std::optional<double> hottest(const std::vector<DewPoint>& points);
  // A status that is no answer.
  StatusCode first_failure() const;
};

// A quantity between two bounds, NaN where there is none; in base units.
struct Limit {
  std::string name, title;
  double low, high;
  const Unit* unit;  // of the report
  Unit of_content;   // unit of a component's share, which depends on the gas
  bool of_share = false;
  std::vector<std::size_t>
      parts;  // components whose share it is: one, the pieces of a fraction, none of an absent one
  std::optional<double>
      value;  // absent: it could not be found; NaN: there is none, which is within an upper bound

  bool kept() const;
};

struct SalesReport {
  const Mixture& mixture;
  UnitSystem units;
  std::vector<CalorificResult> results;
  DewPoints dew;
  std::vector<Limit> limits;  // at the first reference
  double water;               // mole fraction in the wet gas; NaN: none
  std::vector<std::string> notes;
};

// ---- sales_limits.cpp -----------------------------------------------------------------------------

// "wobbe=46.0..52.0, cricondentherm=..-2 C, CO2=..2.5 %": InputError for what is not understood.
std::vector<Limit> read_limits(const std::vector<std::string>& texts, const UnitSystem& units,
                               const Mixture& mixture);
// Which dew points the limits need.
bool needs_dew(const std::vector<Limit>& limits);
bool needs_dew_pressure(const std::vector<Limit>& limits);
// Puts the values of the report into its limits.
void judge(SalesReport& report);

// ---- sales_report.cpp -----------------------------------------------------------------------------

void print_sales_text(const SalesReport& report, std::ostream& out);
void print_sales_json(const SalesReport& report, std::ostream& out);
// One row for each reference.
void print_sales_csv(const SalesReport& report, std::ostream& out);

}  // namespace kestrune::host

#endif
