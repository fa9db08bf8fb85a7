// The tables of data/pure as the tests see them, and the entries as a host calls them.
#ifndef KESTRUNE_TESTS_SIBLINGS_PURE_CSV_ROWS_HPP
#define KESTRUNE_TESTS_SIBLINGS_PURE_CSV_ROWS_HPP

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "kestrune/kvcmpdpurelite.h"

namespace pure_test {

using Fields = std::map<std::string, std::string>;

// All lines of data/pure/<table>.csv by column name. Throws when the file cannot be read.
std::vector<Fields> read_csv(const std::string& table);

struct CsvRow {
  std::string name;
  std::int32_t cas;
  std::int32_t equation;
  std::vector<double> c;  // C1..C7
  double t_min, t_max;    // as printed in the table
};

// Rows of a correlation table.
std::vector<CsvRow> correlation_rows(const std::string& table);

std::int32_t cas_number(const std::string& text);

// Critical temperature inside the equation, K; 0 where it has none.
double equation_tc(const CsvRow& row);

// Upper end of the usable range: the printed one, never above the equation's critical temperature.
double upper_end(const CsvRow& row);

// A property and its table, for tests over everything.
struct Entry {
  const char* name;
  const char* table;  // "" where the databank has no table of the common form
  KvPureProperty evaluate;
  KvPureCheck check;
  const char* unit;
};

const std::vector<Entry>& entries();
const Entry& entry(const std::string& name);

struct Answer {
  std::int32_t status;
  double value;
  std::string unit;
};

// One call as a host makes it; equation 1 = the databank's choice.
Answer call(KvPureProperty f, std::int32_t cas, double t, std::int32_t equation = 1);
// The same for an integral form.
Answer call_integral(KvPureProperty f, std::int32_t cas, double t, double a, double b,
                     std::int32_t equation = 1);

}  // namespace pure_test

#endif
