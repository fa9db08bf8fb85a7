// A job from what the user gave: the components of the amounts, what is refused, and what a resumed run must share with it.
#ifndef KESTRUNE_HOST_BATCH_PREPARE_HPP
#define KESTRUNE_HOST_BATCH_PREPARE_HPP

#include <string>

#include "batch/job.hpp"
#include "batch/journal.hpp"

namespace kestrune::host::batch {

// The mixture of all components that the amounts of a heading name, of equal amounts, with definitions for those of the
// user's own and for fractions; amounts are what an amount of each becomes.
Mixture mixture_of_amounts(const Heading& heading, const Composition& definitions, const InteractionSet& set,
                           std::vector<AmountParts>& amounts);

// Pairs of the mixture whose interaction nobody published.
std::vector<RefusedPair> refused_pairs(const Mixture& mixture);

// Everything that the output depends on beside the rows: library is the file's path, empty for one that is given.
Identity identity_of(const Job& job, const std::string& library, std::size_t chunk_lines);

}  // namespace kestrune::host::batch

#endif
