#include "support/trace.hpp"

namespace kestrune::support {

TraceWriter::~TraceWriter() {
  if (file_ == nullptr) return;
  if (file_ == stdout || file_ == stderr) {
    std::fflush(file_);
  } else {
    std::fclose(file_);
  }
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
  if (std::FILE* f = stream()) std::fprintf(f, " %s\n", line);
}

void TraceWriter::integer(const char* label, int value) {
  if (std::FILE* f = stream()) std::fprintf(f, " %s %10d\n", label, value);
}

void TraceWriter::real(const char* label, double value) {
  if (std::FILE* f = stream()) std::fprintf(f, " %s %18.10E\n", label, value);
}

void TraceWriter::heads(const char* const* names, int columns) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %5s", names[0]);
  for (int k = 1; k < columns; ++k) std::fprintf(f, " %18s", names[k]);
  std::fputc('\n', f);
}

void TraceWriter::row(int number, const double* values, int columns) {
  std::FILE* f = stream();
  if (f == nullptr) return;
  std::fprintf(f, " %5d", number);
  for (int k = 0; k < columns; ++k) std::fprintf(f, " %18.10E", values[k]);
  std::fputc('\n', f);
}

}  // namespace kestrune::support
