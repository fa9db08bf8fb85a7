// What kestrune batch is asked for, and what it makes of it before the first row.
#ifndef KESTRUNE_HOST_COMMANDS_BATCH_HPP
#define KESTRUNE_HOST_COMMANDS_BATCH_HPP

#include <optional>
#include <string>

#include "batch/lines.hpp"
#include "batch/prepare.hpp"
#include "commands/conditions.hpp"
#include "commands/session.hpp"

namespace kestrune::host {

inline constexpr std::size_t kChunkLines = 4096;  // some ten milliseconds of a worker

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
  batch::Job job;
  std::optional<batch::Lines> states, compositions;
  batch::Identity identity;
};

// Reads the options, the headings and the mixture, and writes nothing. InputError for what cannot be worked with. Lines are
// behind their headings then.
void prepare(const BatchOptions& options, Session& session, Plan& plan);

}  // namespace kestrune::host

#endif
