// kestrune batch: millions of states from tables to a table, in all processors, resumable.
#include "commands/batch.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <thread>

#include "batch/journal.hpp"
#include "batch/platform.hpp"
#include "batch/run.hpp"
#include "batch/team.hpp"
#include "error.hpp"

namespace kestrune::host {

namespace {

using namespace batch;

Existing existing(const BatchOptions& o) {
  return o.resume ? Existing::resume : o.overwrite ? Existing::replace : Existing::refuse;
}

// Whether a chunk is what it was with rows behind it: its last one was not full.
bool has_grown(const Chunk& chunk, const JournalEntry& entry) {
  return chunk.text.size() > entry.input_size &&
         hash_of(std::string_view(chunk.text).substr(0, entry.input_size)) == entry.input_hash;
}

// Reads the rows of the chunks that stand in the output already. The last one is calculated again where rows were added.
void replay(const BatchOptions& o, OutputFile& output, Source& source, Totals& totals) {
  const std::vector<JournalEntry>& entries = output.entries();
  Chunk chunk;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const bool there = source.next(chunk);
    if (there && k + 1 == entries.size() && has_grown(chunk, entries[k])) {
      source.put_back(std::move(chunk));
      return output.keep(k);
    }
    if (!there || hash_of(chunk.text) != entries[k].input_hash)
      throw InputError(fmt::format(
          "{} was begun with other rows: {} (chunk {}, behind row {}). Rows may only be added at the end, "
          "and with --compositions only compositions. Put the input back, or start anew with --overwrite",
          o.output, there ? "some of the input are not what they were" : "the input has fewer now", k + 1,
          totals.rows));
    totals.rows += entries[k].rows;
    totals.failed += entries[k].failed;
  }
}

std::unique_ptr<OutputFile> open_output(const BatchOptions& o, Session& session, const Plan& plan,
                                        Source& source, Totals& totals) {
  auto output = std::make_unique<OutputFile>(o.output, existing(o), output_head(plan.job), plan.identity);
  if (output->is_unlocked())
    tell(session,
         {fmt::format("{} cannot be locked on this file system: see to it that no other run writes to it",
                      o.output)});
  replay(o, *output, source, totals);
  if (totals.rows > 0) tell(session, {fmt::format("{} rows stand in {}, going on", totals.rows, o.output)});
  return output;
}

// The bar does not go where the results go.
bool shows_progress(const BatchOptions& o, const Session& session) {
  const bool streams = &session.out == &std::cout && &session.err == &std::cerr;
  return streams && !(o.output.empty() && is_same_terminal(stdout, stderr));
}

// threads: 0 for one per processor; of several processes each has one.
std::size_t thread_count(const BatchOptions& o, const Session& session) {
  if (o.threads > 0) return o.threads;
  return session.team != nullptr ? 1 : std::max(std::thread::hardware_concurrency(), 1u);
}

void lead(const BatchOptions& o, Session& session, Plan& plan, Crew* crew) {
  Source source(std::move(*plan.states), std::move(plan.compositions), o.chunk);
  Totals totals;
  std::unique_ptr<OutputFile> output;
  if (!o.output.empty()) output = open_output(o, session, plan, source, totals);
  const std::uint64_t before = totals.rows;
  tell(session, plan.job.mixture.notes);
  Progress progress(session.err, shows_progress(o, session));
  progress.start(source.share_read(), before);
  std::function<void(const Result&)> put = [&](const Result& r) { output->put(r); };
  if (!output) {
    if (&session.out == &std::cout) keep_line_ends(stdout);
    session.out << output_head(plan.job);
    put = [&](const Result& r) {
      session.out << r.bytes;
      if (!session.out) throw InputError("the output could not be written");
    };
  }
  const auto started = std::chrono::steady_clock::now();
  run_chunks(plan.job, source, thread_count(o, session), crew, put, progress, totals);
  if (output) output->finish();
  progress.clear();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  tell(session, {fmt::format("{} rows, {} of them without an answer, in {} ({:.0f} rows/s)", totals.rows,
                             totals.failed, time_in_words(seconds),
                             static_cast<double>(totals.rows - before) / std::max(seconds, 1e-6))});
  if (const std::string file = source.changed_file(); !file.empty())
    tell(session,
         {fmt::format("{} was changed while it was read: the results may be of both forms of it", file)});
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
  std::unique_ptr<Crew> crew;
  if (session.team != nullptr) {
    std::string identity;
    for (const auto& [name, value] : plan.identity) identity += fmt::format("{} {}\n", name, value);
    session.team->agree(failure, identity);
    if (session.team->leads()) crew = session.team->lead();
  }
  plan.job.mixture.hand_over(plan.job.library);
  if (session.team != nullptr && !session.team->leads()) return session.team->serve(plan.job);
  lead(o, session, plan, crew.get());
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
      "molar_volume; vapour., dense., liquid., liquid2. or aqueous. and fraction, x, M or a property");
  command->add_option(
      "--keep", options->keep,
      "Headings of columns of the input to be copied, by commas (in double quotes those with commas)");
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
