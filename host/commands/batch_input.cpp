// kestrune batch: what its options and its tables amount to.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "commands/batch.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using namespace batch;

void check_options(const BatchOptions& o) {
  const int sources = !o.table.empty() + !o.states.empty() + o.on_line();
  if (sources != 1)
    throw InputError(
        fmt::format("{}: states come from --states FILE, from --table FILE with their compositions, or from "
                    "conditions such as -T and -P",
                    sources == 0 ? "no states" : "more than one source of states"));
  const bool one = !(o.mixture.file + o.mixture.inline_text).empty();
  const bool rows = !(o.table + o.compositions).empty();
  if (!o.table.empty() && !o.compositions.empty())
    throw InputError("--table has its compositions in its rows: no --compositions");
  if (one && rows)
    throw InputError("compositions come from the table: no -m and no --z beside --table and --compositions");
  if (!one && !rows)
    throw InputError(
        "no composition: give --compositions FILE, a mixture with -m or --z, or --table FILE with amounts");
  if (rows && !(o.mixture.analysis + o.mixture.column).empty())
    throw InputError("--analysis and --column belong to a mixture file, -m FILE");
  if (o.phases != "2" && o.phases != "3")
    throw InputError(fmt::format("--phases {}: a batch looks for 2 or 3 phases", o.phases));
  if (o.record.free_water && o.phases == "2")
    throw InputError("free water is a liquid of its own: --phases 3, or no --free-water");
  if (o.record.trace) throw InputError("--trace belongs to single states: use kestrune flash");
  if (o.format != "csv" && o.format != "binary")
    throw InputError(fmt::format("--format {}: a batch writes csv or binary", o.format));
  if (o.chunk < 1 || o.chunk > 1000000) throw InputError("--chunk: 1 to 1000000 rows");
  if (o.threads > 4096) throw InputError("--threads: 1 to 4096, or 0 for one per processor");
  if (o.output.empty() && o.format == "binary")
    throw InputError("--format binary writes a file: name it with -o");
  if (o.output.empty() && (o.resume || o.overwrite))
    throw InputError("--resume and --overwrite are for a file: name it with -o");
  if (o.resume && o.overwrite) throw InputError("--resume goes on, --overwrite starts anew: one of the two");
  for (const std::string& input : {o.table, o.states, o.compositions, o.mixture.file}) {
    std::error_code none;
    for (const std::string& written : {o.output, journal_path(o.output)})
      if (!input.empty() && !o.output.empty() && std::filesystem::equivalent(input, written, none))
        throw InputError(fmt::format("{} is read, and -o {} would write to it", input, o.output));
  }
}

// Conditions of the command line as a table of states, in units that read back as the same values.
Lines lines_of_conditions(const BatchOptions& o, const UnitSystem& units, double molar_mass) {
  const Conditions conditions = o.conditions.read(units, molar_mass);
  const auto order = quantities_of(conditions.given);
  for (const Quantity q : order)
    if (units[q].per_mass && !o.compositions.empty())
      throw InputError(
          "-H and -S are per mass of one composition: with --compositions put them into --states FILE");
  constexpr std::pair<Quantity, std::string_view> names[] = {{Quantity::temperature, "T"},
                                                             {Quantity::pressure, "P"},
                                                             {Quantity::enthalpy, "H"},
                                                             {Quantity::entropy, "S"},
                                                             {Quantity::vapour_fraction, "beta"}};
  std::string text;
  for (std::size_t k = 0; k < 2; ++k)
    for (const auto& [quantity, name] : names)
      if (quantity == order[k]) text += fmt::format("{}{}", name, k == 0 ? "," : "\n");
  for (const double first : conditions.values[0])
    for (const double second : conditions.values[1])
      text +=
          exact(first, units[order[0]], molar_mass) + ',' + exact(second, units[order[1]], molar_mass) + '\n';
  return Lines::of_text("the conditions", std::move(text));
}

// The headings of a list, of which those with commas stand in quotes; between commas an empty one.
std::vector<std::string> headings_of(const std::string& list) {
  if (list.empty()) return {};
  std::vector<std::string> headings = cell_texts(list + ",end", ',');
  headings.pop_back();
  return headings;
}

// The columns of a name of --keep or --ignore: of both tables where both have it, or of the one that "states." or
// "compositions." names.
std::vector<KeptColumn> find_columns(const Job& job, const char* option, const std::string& name) {
  std::vector<KeptColumn> found;
  const auto look = [&](const Heading& h, bool of_composition, const std::string& title) {
    for (std::size_t k = 0; k < h.titles.size(); ++k)
      if (h.titles[k] == title) found.push_back({of_composition, k, title});
  };
  constexpr std::string_view tables[] = {"states.", "compositions."};
  for (const bool of_composition : {true, false}) {
    look(of_composition ? job.compositions : job.states, of_composition, name);
    const std::string_view table = tables[of_composition];
    if (name.rfind(table, 0) == 0)
      look(of_composition ? job.compositions : job.states, of_composition, name.substr(table.size()));
  }
  if (found.empty()) throw InputError(fmt::format("{} {}: no column has this heading", option, name));
  const bool both = found.front().of_composition != found.back().of_composition;
  if (both)
    for (KeptColumn& k : found) k.heading = std::string(tables[k.of_composition]) + k.heading;
  return found;
}

// Without the name of its table: what the reader of a heading compares.
std::vector<std::string> titles_of(const std::vector<std::string>& names, std::string_view table) {
  std::vector<std::string> titles = names;
  for (const std::string& name : names)
    if (name.rfind(table, 0) == 0) titles.push_back(name.substr(table.size()));
  return titles;
}

// A chunk in memory, and in one message between processes.
void check_chunk(const BatchOptions& o, const Job& job) {
  constexpr std::size_t number = 26, text = 400, most = std::size_t{512} << 20;  // bytes
  std::size_t row = text;
  for (const Column& c : job.columns) row += c.is_text() ? 0 : number;
  if (o.chunk <= most / row) return;
  throw InputError(
      fmt::format("--chunk {}: that many rows of {} columns would be up to {} MB of results at once; at most "
                  "{} rows",
                  o.chunk, job.columns.size(), o.chunk * row >> 20, most / row));
}

// The mixture and the headings of the tables. Lines are behind their headings then.
void read_input(const BatchOptions& o, Plan& plan) {
  Job& job = plan.job;
  const std::vector<std::string> kept = headings_of(o.keep), ignored = headings_of(o.ignore);
  Composition definitions;
  for (const std::string& text : o.mixture.own) definitions.define(parse_definition(text, false));
  for (const std::string& text : o.mixture.fractions) definitions.define(parse_definition(text, true));
  std::optional<Basis> basis;
  if (!o.mixture.basis.empty()) basis = basis_by_name(o.mixture.basis);
  const bool single = (o.table + o.compositions).empty();
  if (single) {
    job.mixture = o.mixture.build();
    o.missing.check(job.mixture);
  }
  if (!o.compositions.empty()) {
    plan.compositions = Lines::of_file(o.compositions);
    job.has_compositions = true;
    const std::string heading = plan.compositions->heading();
    job.compositions = read_heading(
        heading, plan.compositions->separator(),
        {o.compositions, false, true, titles_of(ignored, "compositions."), titles_of(kept, "compositions.")},
        job.units, definitions, basis);
  }
  const bool with_amounts = !o.table.empty();
  const std::string file = with_amounts ? o.table : o.states;
  plan.states = o.on_line() ? lines_of_conditions(o, job.units, single ? job.mixture.molar_mass : 0.0)
                            : Lines::of_file(file);
  const std::string heading = plan.states->heading();
  job.states = read_heading(
      heading, plan.states->separator(),
      {plan.states->name(), true, with_amounts, titles_of(ignored, "states."), titles_of(kept, "states.")},
      job.units, definitions, basis);
  if (!single) {
    if (job.amount_heading().amounts.empty())
      throw InputError(fmt::format("{}: no column is a component", with_amounts ? o.table : o.compositions));
    job.mixture =
        mixture_of_amounts(job.amount_heading(), definitions, interaction_set(o.mixture.set), job.amounts);
    if (!o.missing.allowed) job.refused = refused_pairs(job.mixture);
  }
  for (const std::string& name : ignored) find_columns(job, "--ignore", name);
  if (!kept.empty() && job.binary) throw InputError("--keep copies text: --format csv, or --ignore for --keep");
  for (const std::string& name : kept)
    for (const KeptColumn& k : find_columns(job, "--keep", name)) job.kept.push_back(k);
}

}  // namespace

void prepare(const BatchOptions& o, Session& session, Plan& plan) {
  check_options(o);
  Job& job = plan.job;
  job.units = unit_system(o.units);
  if (!o.energy.empty()) job.units.choose_energy(o.energy);
  job.phases = o.phases == "2" ? 2 : 3;
  job.binary = o.format == "binary";
  read_input(o, plan);
  o.record.apply(job.mixture);
  job.library = session.library();
  const bool usual_binary = job.binary && trimmed(o.columns).empty();
  const std::string columns = usual_binary ? "given,T,P,phases,beta,status" : o.columns;
  std::vector<std::string> kept;
  for (const KeptColumn& k : job.kept) kept.push_back(k.heading);
  job.columns = columns_by_name(columns, kept, job.given(), job.phases, job.mixture, job.units);
  for (const Column& c : job.columns)
    if (job.binary && c.is_text())
      throw InputError(fmt::format("--format binary has no place for {}", c.heading));
  check_chunk(o, job);
  plan.identity = identity_of(job, session.exports != nullptr ? "" : session.library_path, o.chunk);
}

}  // namespace kestrune::host
