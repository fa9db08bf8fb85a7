// The binary form of the results. All numbers are little-endian.
//
//   8 bytes   "KSTRBAT1"
//   8 bytes   length of the description that follows, an unsigned integer; a multiple of 8
//   ...       the description, JSON in UTF-8, blanks at its end: "program", "version", "mixture", and "columns", each with
//             "name", "type" ("f8": float64, "i8": int64, "S8": letters, zeros behind them) and "unit"
//   blocks:   8 bytes with the number of rows n, an unsigned integer, then the columns one after the other, each n times 8
//             bytes; to the end of the file
//
// What does not exist is NaN. A block is a chunk of the batch: an unfinished file holds whole blocks and perhaps a broken
// one at its end.
#ifndef KESTRUNE_HOST_BATCH_BINARY_HPP
#define KESTRUNE_HOST_BATCH_BINARY_HPP

#include <string>

namespace kestrune::host::batch {

struct Job;

// All up to the first block.
std::string binary_head(const Job& job);

}  // namespace kestrune::host::batch

#endif
