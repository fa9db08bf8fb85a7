// Processes that share one batch: the first leads, reads and writes, the others calculate for it.
#ifndef KESTRUNE_HOST_BATCH_TEAM_HPP
#define KESTRUNE_HOST_BATCH_TEAM_HPP

#include <memory>
#include <string>

#include "batch/run.hpp"

namespace kestrune::host::batch {

class Team {
 public:
  virtual ~Team() = default;
  virtual bool leads() const = 0;
  virtual std::size_t size() const = 0;  // processes, this one among them
  // Every process calls it once with what went wrong while it made its job ready, or nothing, and with what must be the
  // same everywhere. InputError in all of them when one is not ready, or ready for something else.
  virtual void agree(const std::string& failure, const std::string& identity) = 0;
  // Of the first: the others. They are let go when the crew is destroyed.
  virtual std::unique_ptr<Crew> lead() = 0;
  // Of the others: chunk after chunk, until there are no more.
  virtual void serve(const Job& job) = 0;
};

}  // namespace kestrune::host::batch

#endif
