// Plain text tables: columns as wide as their widest entry, two blanks between them.
#ifndef KESTRUNE_HOST_TABLE_HPP
#define KESTRUNE_HOST_TABLE_HPP

#include <ostream>
#include <string>
#include <vector>

namespace kestrune::host {

class Table {
 public:
  // Columns are left-aligned where the letter at their place is 'l', else right-aligned.
  Table(std::vector<std::string> headings, std::string alignment);

  void add(std::vector<std::string> row);
  void print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
  std::string alignment_;
};

// Numbers as the reports show them; "-" for a value that is not finite.
std::string shown_fraction(double value);  // six decimals, with an exponent below 1e-4
std::string shown_fixed(double value, int decimals);
std::string shown_significant(double value);         // six digits, with an exponent below 1e-3 and above 1e7
std::string shown_digits(double value, int digits);  // significant digits

// A field of a CSV file, in quotes where it needs them.
std::string csv_field(const std::string& text);

}  // namespace kestrune::host

#endif
