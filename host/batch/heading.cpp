#include "batch/heading.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "error.hpp"
#include "sheet.hpp"
#include "text.hpp"

namespace kestrune::host::batch {

namespace {

constexpr struct {
  std::string_view name;
  Quantity quantity;
} kNames[] = {{"vapour_fraction", Quantity::vapour_fraction},
              {"vapour fraction", Quantity::vapour_fraction},
              {"temperature", Quantity::temperature},
              {"enthalpy", Quantity::enthalpy},
              {"pressure", Quantity::pressure},
              {"entropy", Quantity::entropy},
              {"beta", Quantity::vapour_fraction},
              {"t", Quantity::temperature},
              {"p", Quantity::pressure},
              {"h", Quantity::enthalpy},
              {"s", Quantity::entropy}};

struct Condition {
  Quantity quantity;
  const Unit* unit;
};

// "kJ_kg_K" of a heading that the program wrote itself is kJ/(kg K).
std::string unit_of_words(std::string text) {
  const std::size_t first = text.find('_');
  if (first == std::string::npos) return text;
  text[first] = '/';
  text.erase(std::remove(text.begin(), text.end(), '_'), text.end());
  return text;
}

// The condition that a column gives; nothing where its title is none. InputError for a unit that is none.
std::optional<Condition> condition_of(std::string_view title, const UnitSystem& units) {
  const std::string text = lower(trimmed(title));
  for (const auto& known : kNames) {
    if (text.rfind(known.name, 0) != 0) continue;
    std::string_view rest = trimmed(title).substr(known.name.size());
    if (!rest.empty() && std::string_view(" _[(/,").find(rest.front()) == std::string_view::npos) continue;
    const bool words = !rest.empty() && rest.front() == '_';
    while (!rest.empty() && std::string_view(" _[(/,").find(rest.front()) != std::string_view::npos)
      rest.remove_prefix(1);
    while (!rest.empty() && std::string_view(" ])").find(rest.back()) != std::string_view::npos)
      rest.remove_suffix(1);
    if (rest.empty()) return Condition{known.quantity, &units[known.quantity]};
    const std::string name = words ? unit_of_words(std::string(rest)) : std::string(rest);
    if (!is_unit(known.quantity, name) && known.name.size() == 1 && words) return {};
    return Condition{known.quantity, &unit(known.quantity, name)};
  }
  return {};
}

std::string place(const Wanted& wanted, std::size_t column, const std::string& title) {
  return fmt::format("{}: column {}{}", wanted.name, column + 1, title.empty() ? "" : " \"" + title + '"');
}

std::string what_is_right(const Wanted& wanted) {
  constexpr std::string_view conditions = "two of T, P, H, S and beta with their units, such as T[C]";
  constexpr std::string_view amounts = "names of components, such as methane";
  if (!wanted.amounts) return std::string(conditions);
  return wanted.conditions ? fmt::format("{}, and {}", conditions, amounts) : std::string(amounts);
}

struct Read {
  const Wanted& wanted;
  const UnitSystem& units;
  const Composition& definitions;
  std::optional<Basis> basis;
  Heading heading{};
  struct Condition {
    Quantity quantity;
    ConditionColumn column;
    bool kept;
  };
  std::vector<Condition> conditions{};
  std::vector<std::optional<AmountUnit>> amount_units{};
};

void read_amount(Read& r, std::size_t column, const std::string& title) {
  const NameAndUnit named = named_cell(title, r.definitions);
  named.check();
  if (search_key(named.name) == "no" && named.name != "NO")
    throw InputError("may number the rows or be nitric oxide: write NO for the gas");
  const std::string name = r.definitions.named(named.name).name;
  for (const AmountColumn& other : r.heading.amounts)
    if (other.name == name)
      throw InputError(fmt::format("{} has a column already, {}", name, other.column + 1));
  r.heading.amounts.push_back({column, name});
  r.amount_units.push_back(named.unit);
}

void read_column(Read& r, std::size_t column) {
  const std::string& title = r.heading.titles[column];
  const auto is_in = [&](const std::vector<std::string>& titles) {
    return std::find(titles.begin(), titles.end(), title) != titles.end();
  };
  if (is_in(r.wanted.ignored)) return;
  const bool kept = is_in(r.wanted.kept);
  if (title.empty()) throw InputError("has no heading");
  try {
    const auto condition = r.wanted.conditions ? condition_of(title, r.units) : std::nullopt;
    if (condition) {
      r.conditions.push_back({condition->quantity, {column, condition->unit}, kept});
      return;
    }
    if (r.wanted.amounts) return read_amount(r, column, title);
  } catch (const InputError&) {
    if (!kept) throw;
  }
  if (!kept) throw InputError("is not understood");
}

// The flash that the columns are for.
void settle_conditions(Read& r) {
  if (!r.wanted.conditions) return;
  // Of more than two those that are to be copied are no conditions.
  if (r.conditions.size() > 2) std::erase_if(r.conditions, [](const auto& c) { return c.kept; });
  for (const Given given : kAllGiven) {
    const auto order = quantities_of(given);
    if (r.conditions.size() != 2) break;
    for (std::size_t k = 0; k < 2; ++k) {
      if (r.conditions[k].quantity != order[0] || r.conditions[1 - k].quantity != order[1]) continue;
      r.heading.given = given;
      r.heading.conditions = {r.conditions[k].column, r.conditions[1 - k].column};
    }
  }
  if (r.heading.given) return;
  std::vector<std::string> names;
  for (const auto& c : r.conditions) names.emplace_back(quantity_name(c.quantity));
  throw InputError(
      fmt::format("{}: {} no pair of conditions: a state has T and P, H and P, S and P, beta and P or beta and "
                  "T, one column each",
                  r.wanted.name, names.empty() ? "the heading has" : joined(names, ", ") + " are"));
}

// The scale of every amount, and whether they are moles or masses.
void settle_amounts(Read& r) {
  std::optional<AmountUnit> common;
  for (const auto& unit : r.amount_units)
    if (unit && unit->scaled && unit->whole == 100.0) common = unit;
  bool open = false, small = false;
  for (std::size_t k = 0; k < r.amount_units.size(); ++k) {
    const std::optional<AmountUnit> unit = r.amount_units[k] ? r.amount_units[k] : common;
    open = open || !unit || !unit->scaled;
    small = small || (unit && unit->scaled);
    if (unit) r.heading.amounts[k].whole = unit->whole;
    if (!unit || !unit->basis) continue;
    if (r.basis && *r.basis != *unit->basis)
      throw InputError(fmt::format("{}: the amounts are moles and masses: one of the two", r.wanted.name));
    r.basis = unit->basis;
  }
  if (open && small)
    throw InputError(fmt::format(
        "{}: some amounts have a unit such as % or ppm and some have none: name all of them", r.wanted.name));
  r.heading.basis = r.basis.value_or(Basis::mole);
}

// Semicolons or tabs, where there are any outside of quotes; else commas.
char separator_of(std::string_view line) {
  char found = ',';
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    if (!quoted && (c == ';' || (c == '\t' && found == ','))) found = c;
  }
  return found;
}

}  // namespace

std::size_t cut_cells(std::string_view line, char separator, std::string_view* cells, std::size_t capacity) {
  const auto is_blank = [separator](char c) {
    return c == ' ' || c == '\r' || (c == '\t' && separator != '\t');
  };
  std::size_t count = 0, used = 0;
  for (const char *at = line.data(), *const stop = at + line.size();; ++at) {
    const char* begin = at;
    // A quote counts where it is the first character of a cell; a doubled one within stands for itself.
    bool quoted = false, empty = true, opened = false;
    for (; at != stop && (quoted || *at != separator); ++at) {
      if (*at == '"' && (quoted || empty || (opened && at[-1] == '"'))) {
        quoted = !quoted;
        opened = true;
      }
      empty = empty && is_blank(*at);
    }
    const char* end = at;
    while (begin != end && is_blank(*begin)) ++begin;
    while (begin != end && is_blank(end[-1])) --end;
    if (end - begin >= 2 && *begin == '"' && end[-1] == '"') ++begin, --end;
    if (count < capacity) cells[count] = {begin, static_cast<std::size_t>(end - begin)};
    ++count;
    if (begin != end) used = count;
    if (at == stop) return used;
  }
}

std::string cell_text(std::string_view line, std::string_view cell) {
  std::string text(cell);
  if (cell.empty() || cell.data() == line.data() || cell.data()[-1] != '"') return text;
  for (std::size_t at = 0; (at = text.find("\"\"", at)) != std::string::npos; ++at) text.erase(at, 1);
  return text;
}

std::vector<std::string> cell_texts(std::string_view line, char separator) {
  std::vector<std::string_view> cells(line.size() + 1);
  cells.resize(cut_cells(line, separator, cells.data(), cells.size()));
  std::vector<std::string> texts;
  for (const std::string_view cell : cells) texts.push_back(cell_text(line, cell));
  return texts;
}

Heading read_heading(std::string_view line, char separator, const Wanted& wanted, const UnitSystem& units,
                     const Composition& definitions, std::optional<Basis> basis) {
  Read r{wanted, units, definitions, basis};
  r.heading.separator = separator != 0 ? separator : separator_of(line);
  r.heading.titles = cell_texts(line, r.heading.separator);
  for (std::size_t column = 0; column < r.heading.titles.size(); ++column) {
    try {
      read_column(r, column);
    } catch (const InputError& e) {
      throw InputError(fmt::format("{}: {}. The columns are {}; others are named by --keep or --ignore",
                                   place(wanted, column, r.heading.titles[column]), e.what(),
                                   what_is_right(wanted)));
    }
  }
  settle_conditions(r);
  settle_amounts(r);
  return r.heading;
}

}  // namespace kestrune::host::batch
