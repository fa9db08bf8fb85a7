// Trace files of the solvers: output units and the files that are open for them.
//
// The table is the only state of the library. It is process-wide, as the units are, and every access takes its
// lock; a solver writes whole lines.
#ifndef KESTRUNE_SIBLINGS_TOOLS_TRACE_FILES_HPP
#define KESTRUNE_SIBLINGS_TOOLS_TRACE_FILES_HPP

#include <cstdint>

namespace kestrune::tools {

constexpr std::int32_t kNameLength = 260;  // characters of a file name, blank-padded
constexpr std::int32_t kMaxTraceFiles = 64;

// Opens count files for writing and connects them to their units; a unit that has a file already gets the new
// one. Unit 0 means no output and is passed over.
// Returns 0; 1 where a file cannot be opened or the table is full; 2 for a count that is negative or too
// large. On 1 and 2 the table is as before.
std::int32_t open_trace_files(std::int32_t count, const char* names, const std::int32_t* units);

// Closes all files. Returns 0, also without files; 1 where the system reports a failed write.
std::int32_t close_trace_files();

// Writes to the file of a unit as fprintf does; without a file nothing happens.
void trace(std::int32_t unit, const char* format, ...) __attribute__((format(printf, 2, 3)));

// One line: the label and the n values of v.
void trace_vector(std::int32_t unit, const char* label, std::int32_t n, const double* v);

// The label and the n rows of a column-major matrix a[n * n].
void trace_matrix(std::int32_t unit, const char* label, std::int32_t n, const double* a);

}  // namespace kestrune::tools

#endif
