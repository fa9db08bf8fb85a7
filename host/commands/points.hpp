// Points of a line or a table of results, printed as text, CSV or JSON.
#ifndef KESTRUNE_HOST_COMMANDS_POINTS_HPP
#define KESTRUNE_HOST_COMMANDS_POINTS_HPP

#include <ostream>
#include <string>
#include <vector>

#include "commands/session.hpp"
#include "kestrune/status.h"
#include "units.hpp"

namespace kestrune::host {

// One column: values in base units, NaN where there is none. A temperature or pressure has a unit and a letter.
struct PointColumn {
  std::string heading;         // of the table; the unit follows where there is one
  std::string csv, json;       // names there, with the base unit
  const Unit* unit = nullptr;  // of the table and of CSV; JSON is in the base unit
  int decimals = -1;           // of the table; below 0: six significant digits
  std::vector<double> values = {};
  Quantity quantity = Quantity::ratio;
};

struct Points {
  std::vector<std::string> notes;  // lines before the table
  std::vector<PointColumn> columns;
  std::vector<StatusCode> statuses;  // one for each point
  bool with_warnings = false;        // one text for each point, empty where all is well
  std::vector<std::string> warnings = {};
  std::vector<std::string> remarks = {};  // after the table
};

// "T C" in the table, "temperature_C" in CSV, "temperature_K" in JSON; "P bar", "pressure_bar", "pressure_Pa". The first two columns of every line, so that
// its CSV can be drawn over another one.
PointColumn temperature_column(const UnitSystem& units);
PointColumn pressure_column(const UnitSystem& units);

// Prints in the format of the options. A status other than 0 makes the exit code of the session.
void print_points(const Points& points, const Mixture& mixture, const OutputOptions& options, Session& session);

}  // namespace kestrune::host

#endif
