// What the user writes down as a mixture: components with amounts, in a file or on the command line.
#ifndef KESTRUNE_HOST_COMPOSITION_HPP
#define KESTRUNE_HOST_COMPOSITION_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "databank.hpp"
#include "definition.hpp"
#include "library.hpp"

namespace kestrune::host {

enum class Basis { mole, mass };

Basis basis_by_name(std::string_view name);

// What is read of a file that holds more than one composition.
struct ReadOptions {
  std::string analysis;        // name or number of the row of a table with one composition a row
  std::string column;          // heading of the column with the amounts
  std::optional<Basis> basis;  // which of a column of moles and one of masses
};

struct Composition {
  std::string title;  // may be empty
  Basis basis = Basis::mole;
  bool basis_given = false;  // the source itself says what the amounts are
  bool percent = false;      // the source names a scale, percent or ppm; the amounts are fractions
  std::vector<Component> components;
  std::vector<double> amounts;                   // >= 0, any sum
  std::vector<Definition> definitions;           // components of the user's own and fractions, used or not
  std::vector<std::string> notes;                // what a reader of the results must know of the file
  std::string library = default_library_path();  // whose tools characterise them

  // Adds a definition; one of this name must not be there yet.
  void define(Definition definition);
  // The definition that a component stands for, -1 for a component of the databank.
  int definition_of(const Component& component) const;
  // The component that goes by this name: one of the definitions, else of the databank (find_component).
  Component named(std::string_view name) const;

  // Adds a component by name; a component that is there already gets the new amount.
  void set(std::string_view name, double amount);
  // The same, but a component that is there already is an error.
  void add(std::string_view name, double amount);
};

// "methane=0.7, ethane=9%, N2=0.1"; a percent sign divides by 100.
void read_inline(std::string_view text, Composition& composition, bool replace);

// One component per line: name, then its amount, separated by a comma, semicolon, tab or blanks. "#" starts a
// comment; a first line without a component and without a number is a heading, which may say that the amounts are masses.
// A table with a heading row is read by its columns (laboratory.hpp). Lines [component NAME] and [fraction NAME] begin the
// description of one, key = value (definition.hpp), and [mixture] ends it.
void read_lines(std::string_view text, Composition& composition, const ReadOptions& options = {});

// {"name": "...", "basis": "mole", "components": {"methane": 0.7, ...}}, where components may also be a
// list of {"name": "methane", "amount": 0.7}; or just {"methane": 0.7, ...}.
void read_json(std::string_view text, Composition& composition);

// The same for the text of a file in either form; JSON when its first character is "{".
void read_text(std::string_view text, Composition& composition, const ReadOptions& options = {});

// The text of a file, "-" reads standard input; without the byte order mark, and in UTF-8 where it is in UTF-16.
std::string text_of_file(const std::string& path);

// Names of the compositions of a table with one a row; none for any other file.
std::vector<std::string> analyses_of_file(const std::string& path);

// Reads a file into a composition, which may hold definitions.
void read_composition_file(const std::string& path, Composition& composition, const ReadOptions& options = {});

}  // namespace kestrune::host

#endif
