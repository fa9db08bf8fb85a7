// The loop of a batch: chunks go to the workers, results come back and are put into order.
#ifndef KESTRUNE_HOST_BATCH_RUN_HPP
#define KESTRUNE_HOST_BATCH_RUN_HPP

#include <cstdint>
#include <functional>

#include "batch/job.hpp"
#include "batch/progress.hpp"
#include "batch/source.hpp"

namespace kestrune::host::batch {

// Workers in other processes, for the one that leads them.
class Crew {
 public:
  virtual ~Crew() = default;
  virtual std::size_t size() const = 0;  // of the others
  // Hands a chunk to one of them; false when each has enough to do.
  virtual bool send(const Chunk& chunk, std::uint64_t input_hash) = 0;
  // A result of one of them, in any order; false when there is none yet.
  virtual bool receive(Result& result) = 0;
};

struct Totals {
  std::uint64_t rows = 0, failed = 0;
};

// Calculates the rest of the source in threads and by the crew, which may be null, and puts the results in the order of the
// chunks, of which the first has the number first. At most a few chunks for each worker are in memory at once. What a
// worker throws is thrown here. totals: of the chunks before.
void run_chunks(const Job& job, Source& source, std::size_t threads, Crew* crew,
                const std::function<void(const Result&)>& put, Progress& progress, Totals& totals);

}  // namespace kestrune::host::batch

#endif
