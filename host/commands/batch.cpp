// kestrune batch: millions of states from tables to a table, in all processors, resumable.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <filesystem>
#include <thread>

#include "batch/journal.hpp"
#include "batch/prepare.hpp"
#include "batch/run.hpp"
#include "batch/team.hpp"
#include "commands/conditions.hpp"
#include "commands/session.hpp"
#include "error.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

using namespace batch;

constexpr std::size_t kChunkLines = 4096;  // some ten milliseconds of a worker

struct BatchOptions {
  MixtureOptions mixture;
  ConditionOptions conditions;
  MissingPairOptions missing;
  RecordOptions record;
  std::string table, states, compositions, output, columns, keep, ignore, phases = "3", units = "engineering",
                                                                          energy, format = "csv";
  std::size_t threads = 0, chunk = kChunkLines;
  bool resume = false, overwrite = false;

  bool on_line() const {  // conditions as options
    const ConditionOptions& c = conditions;
    return c.bubble || c.dew ||
           !(c.temperature + c.pressure + c.enthalpy + c.entropy + c.vapour_fraction).empty();
  }
};

// What a batch is made of.
struct Plan {
  Job job;
  std::optional<Lines> states, compositions;
  Identity identity;
};

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
    if (!input.empty() && !o.output.empty() && std::filesystem::equivalent(input, o.output, none))
      throw InputError(fmt::format("{} is read: write to another file", input));
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

KeptColumn find_column(const Job& job, const char* option, const std::string& title) {
  const auto in = [&](const Heading& h) {
    return static_cast<std::size_t>(std::find(h.titles.begin(), h.titles.end(), title) - h.titles.begin());
  };
  const bool of_states = in(job.states) < job.states.titles.size();
  if (!of_states && in(job.compositions) == job.compositions.titles.size())
    throw InputError(fmt::format("{} {}: no column has this heading", option, title));
  return {!of_states, in(of_states ? job.states : job.compositions)};
}

// The mixture and the headings of the tables. Lines are behind their headings then.
void read_input(const BatchOptions& o, Plan& plan) {
  Job& job = plan.job;
  const std::vector<std::string> kept = split(o.keep, ','), ignored = split(o.ignore, ',');
  std::vector<std::string> others = kept;
  others.insert(others.end(), ignored.begin(), ignored.end());
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
    job.compositions = read_heading(plan.compositions->heading(), {o.compositions, false, true, others},
                                    job.units, definitions, basis);
  }
  const bool with_amounts = !o.table.empty();
  const std::string file = with_amounts ? o.table : o.states;
  plan.states = o.on_line() ? lines_of_conditions(o, job.units, single ? job.mixture.molar_mass : 0.0)
                            : Lines::of_file(file);
  job.states = read_heading(plan.states->heading(), {plan.states->name(), true, with_amounts, others},
                            job.units, definitions, basis);
  if (!single) {
    if (job.amount_heading().amounts.empty())
      throw InputError(fmt::format("{}: no column is a component", with_amounts ? o.table : o.compositions));
    job.mixture =
        mixture_of_amounts(job.amount_heading(), definitions, interaction_set(o.mixture.set), job.amounts);
    if (!o.missing.allowed) job.refused = refused_pairs(job.mixture);
  }
  for (const std::string& title : ignored) find_column(job, "--ignore", title);
  if (!kept.empty() && job.binary) throw InputError("--keep copies text: --format csv, or --ignore for --keep");
  for (const std::string& title : kept) job.kept.push_back(find_column(job, "--keep", title));
}

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
  job.columns = columns_by_name(columns, split(o.keep, ','), job.given(), job.phases, job.mixture, job.units);
  for (const Column& c : job.columns)
    if (job.binary && c.is_text())
      throw InputError(fmt::format("--format binary has no place for {}", c.heading));
  plan.identity = identity_of(job, session.exports != nullptr ? "" : session.library_path, o.chunk);
}

// The output as far as it is there: replays what stands in the journal. Nothing for a file that is to be begun.
std::unique_ptr<OutputFile> resumed(const BatchOptions& o, const Plan& plan, Source& source, Totals& totals) {
  const std::string head = output_head(plan.job);
  const Journal journal = read_journal(journal_path(o.output));
  check_identity(journal.identity, plan.identity, o.output);
  const std::size_t count = verified_entries(o.output, head, journal.entries);
  Chunk chunk;
  for (std::size_t k = 0; k < count; ++k) {
    const bool there = source.next(chunk);
    if (!there || hash_of(chunk.text) != journal.entries[k].input_hash)
      throw InputError(
          fmt::format("{} was begun with other rows: chunk {} (behind row {}) of the input is not what it was. "
                      "Put the input back, or start anew with --overwrite",
                      o.output, k + 1, totals.rows));
    totals.rows += journal.entries[k].rows;
    totals.failed += journal.entries[k].failed;
  }
  return std::make_unique<OutputFile>(o.output, head, journal, count);
}

std::unique_ptr<OutputFile> open_output(const BatchOptions& o, const Plan& plan, Source& source,
                                        Totals& totals) {
  const bool file = std::filesystem::is_regular_file(o.output);
  const bool journal = std::filesystem::exists(journal_path(o.output));
  if (o.resume && journal) {
    if (!file)
      throw InputError(fmt::format("{} is missing beside its journal: start anew with --overwrite", o.output));
    return resumed(o, plan, source, totals);
  }
  if (file && !o.overwrite)
    throw InputError(fmt::format("{} exists{}: {}--overwrite replaces it", o.output,
                                 journal    ? " with a journal"
                                 : o.resume ? " without a journal to resume it from"
                                            : "",
                                 journal ? "--resume goes on with it, " : ""));
  return std::make_unique<OutputFile>(o.output, output_head(plan.job), plan.identity);
}

void lead(const BatchOptions& o, Session& session, Plan& plan) {
  const std::unique_ptr<Crew> crew = session.team != nullptr ? session.team->lead() : nullptr;
  Source source(std::move(*plan.states), std::move(plan.compositions), o.chunk);
  Totals totals;
  std::unique_ptr<OutputFile> output;
  if (!o.output.empty()) output = open_output(o, plan, source, totals);
  const std::uint64_t before = totals.rows;
  if (before > 0) tell(session, {fmt::format("{} rows stand in {}, going on", before, o.output)});
  tell(session, plan.job.mixture.notes);
  Progress progress(session.err, output != nullptr);
  progress.start(source.share_read(), before);
  std::function<void(const Result&)> put = [&](const Result& r) { output->put(r); };
  if (!output) {
    session.out << output_head(plan.job);
    put = [&](const Result& r) {
      session.out << r.bytes;
      if (!session.out) throw InputError("the output could not be written");
    };
  }
  const auto started = std::chrono::steady_clock::now();
  std::size_t threads = o.threads;
  if (threads == 0) threads = session.team != nullptr ? 1 : std::max(std::thread::hardware_concurrency(), 1u);
  run_chunks(plan.job, source, threads, crew.get(), put, progress, totals);
  if (output) output->finish();
  progress.clear();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  tell(session, {fmt::format("{} rows, {} of them without an answer, in {} ({:.0f} rows/s)", totals.rows,
                             totals.failed, time_in_words(seconds),
                             static_cast<double>(totals.rows - before) / std::max(seconds, 1e-6))});
  if (totals.failed > 0) session.exit_code = exit_status;
}

void run_batch(const BatchOptions& o, Session& session) {
  Plan plan;
  std::string failure;
  try {
    prepare(o, session, plan);
  } catch (const InputError& e) {
    if (session.team == nullptr) throw;
    failure = e.what();
  }
  if (session.team != nullptr) {
    std::string identity;
    for (const auto& [name, value] : plan.identity) identity += name + ' ' + value + '\n';
    session.team->agree(failure, identity);
  }
  plan.job.mixture.hand_over(plan.job.library);
  if (session.team != nullptr && !session.team->leads()) return session.team->serve(plan.job);
  lead(o, session, plan);
}

}  // namespace

void add_batch_command(CLI::App& app, Session& session) {
  auto* command = app.add_subcommand(
      "batch",
      "Flashes and properties of millions of states: tables of states and compositions to a table of results");
  const auto options = std::make_shared<BatchOptions>();
  command->add_option("--table", options->table, "Table with conditions and amounts in every row");
  command->add_option("--states", options->states,
                      "Table of states: two of T, P, H, S and beta with units, T[C],P[bar]");
  command->add_option("--compositions", options->compositions,
                      "Table of compositions, one a row; each meets all states, one after the other");
  options->mixture.add_to(*command);
  options->conditions.add_TP_to(*command, false);
  options->conditions.add_energy_and_fraction_to(*command);
  command->add_option("-o,--output", options->output, "File for the results (default: standard output)");
  command->add_option(
      "--columns", options->columns,
      "Columns of the results by commas (T,P,phases,beta,status,text): given, z, M, H, S, G, density, "
      "molar_volume; vapour., liquid. or liquid2. and fraction, x, M or a property");
  command->add_option("--keep", options->keep, "Headings of columns of the input to be copied, by commas");
  command->add_option("--ignore", options->ignore,
                      "Headings of columns of the input to be left alone, by commas");
  command->add_option("--format", options->format, "csv (default) or binary (docs/batch.md)");
  command->add_option(
      "--phases", options->phases,
      "3 (default): up to two liquids and a vapour; 2: liquid and vapour, for feeds without a second "
      "liquid, in a half of the time or less");
  command->add_option(
      "--units", options->units,
      "Of numbers without a unit and of the results: engineering (C, bar, kJ/kg; default), si, field or a "
      "pair such as K,atm");
  command->add_option("--energy", options->energy,
                      "Unit of enthalpies, entropies follow: kJ/kg, J/mol, Btu/lb ...");
  command->add_flag("--resume", options->resume,
                    "Go on with an output whose run was ended; begin it where there is none");
  command->add_flag("--overwrite", options->overwrite, "Replace an output that is there");
  command->add_option("--threads", options->threads, "Threads (default: one per processor)");
  command->add_option("--chunk", options->chunk, "Rows that a thread takes at once (4096)");
  options->missing.add_to(*command);
  options->record.add_to(*command);
  command->footer(
      "Examples:\n"
      "  kestrune batch --z methane=0.9,nC5=0.1 -T -80:40:40 -P 10,40 --columns T,P,phases,beta,density,H\n"
      "  kestrune batch --states states.csv --compositions gases.csv -o results.csv --resume\n"
      "  kestrune batch --table rows.csv --keep well -o wells.csv --columns "
      "beta,vapour.density,liquid.density");
  command->callback([options, &session] { run_batch(*options, session); });
}

}  // namespace kestrune::host
