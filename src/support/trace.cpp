// Lines of a trace and the file behind their unit.

#include "support/trace.hpp"

namespace kestrune::support {

TraceWriter::~TraceWriter() {
  if (file_ != nullptr && file_ != stdout && file_ != stderr) std::fclose(file_);
}

void TraceWriter::end_record(std::FILE* f) {
  std::fputc('\n', f);
  std::fflush(f);
}

std::FILE* TraceWriter::stream() {
  if (!on_ || file_ != nullptr) return file_;
  if (unit_ == 6) {
    file_ = stdout;
  } else if (unit_ == 0) {
    file_ = stderr;
  } else if (unit_ > 0) {
    char name[32];
    std::snprintf(name, sizeof name, "fort.%d", unit_);
    file_ = std::fopen(name, "a");
  }
  if (file_ == nullptr) on_ = false;
  return file_;
}

void TraceWriter::text(const char* line) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %s", line);
  end_record(f);
}

void TraceWriter::integer(const char* label, int value) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %s %10d", label, value);
  end_record(f);
}

void TraceWriter::real(const char* label, double value) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %s %18.10E", label, value);
  end_record(f);
}

void TraceWriter::heads(const char* const* names, int columns) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %5s", names[0]);
  for (int k = 1; k < columns; ++k) std::fprintf(f, " %18s", names[k]);
  end_record(f);
}

void TraceWriter::row(int number, const double* values, int columns) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %5d", number);
  for (int k = 0; k < columns; ++k) std::fprintf(f, " %18.10E", values[k]);
  end_record(f);
}

}  // namespace kestrune::support
