// Tables of analyses as laboratories write them: title rows, a heading row, further columns, a total row, decimal commas
// beside semicolons or tabs; and tables of many analyses, one composition a row.
#ifndef KESTRUNE_HOST_LABORATORY_HPP
#define KESTRUNE_HOST_LABORATORY_HPP

#include <string>
#include <string_view>
#include <vector>

#include "composition.hpp"
#include "sheet.hpp"

namespace kestrune::host {

// What the first column of a heading is called.
bool is_name_heading(std::string_view cell);

// Whether a name is that of a row that holds the sum of the others.
bool is_total(std::string_view name);

// Reads the text as a table of one or of many analyses when it has the heading of one; false when it has none, and
// nothing was read. Rows below the total that are no components are left out, as are rows above the heading. InputError
// names the line.
bool read_table(std::string_view text, const ReadOptions& options, Composition& composition);

// Reads the row of that name or number when the sheet is a table with one composition a row; false when it is none.
bool read_chosen_analysis(const Sheet& sheet, const std::string& wanted, Composition& composition);

// Names of the analyses of a table with one composition a row, "1", "2" where they have none; empty for any other text.
std::vector<std::string> analyses_in(std::string_view text, const Composition& definitions);

}  // namespace kestrune::host

#endif
