// Writer of the trace records: formatted lines to a numbered output unit.
#ifndef KESTRUNE_SUPPORT_TRACE_HPP
#define KESTRUNE_SUPPORT_TRACE_HPP

#include <cstdio>

namespace kestrune::support {

/*
 * One call's trace. Unit 6 is standard output, 0 standard error, any other positive number n the file "fort.n"
 * in the current folder, opened on the first record for appending and closed with the writer. Every record is
 * on the unit before the next one begins, so that what a routine of the host writes there on the way, by a
 * flash of its own, stands between whole records and in order. A unit that cannot be opened is silent.
 */
class TraceWriter {
 public:
  TraceWriter(bool on, int unit) : on_(on), unit_(unit) {}
  ~TraceWriter();
  TraceWriter(const TraceWriter&) = delete;
  TraceWriter& operator=(const TraceWriter&) = delete;

  explicit operator bool() const { return on_; }

  void text(const char* line);                 // " line"
  void integer(const char* label, int value);  // " label       12"
  void real(const char* label, double value);  // " label   1.234567E-08"
  // Heads of a table, then its rows: a number and up to four columns.
  void heads(const char* const* names, int columns);
  void row(int number, const double* values, int columns);

 private:
  std::FILE* stream();
  static void end_record(std::FILE* f);

  bool on_;
  int unit_;
  std::FILE* file_ = nullptr;
};

}  // namespace kestrune::support

#endif
