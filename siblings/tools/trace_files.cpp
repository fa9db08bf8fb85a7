// The table of open trace files behind its lock.

#include "trace_files.hpp"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace kestrune::tools {
namespace {

struct OpenFile {
  std::int32_t unit = 0;
  std::FILE* file = nullptr;
};

struct TraceTable {
  std::mutex lock;
  OpenFile open[kMaxTraceFiles];
  std::int32_t count = 0;

  ~TraceTable() {
    for (std::int32_t i = 0; i < count; ++i) std::fclose(open[i].file);
  }
};

TraceTable table;

// The entry of a unit, null without one; the lock is held by the caller.
OpenFile* find(std::int32_t unit) {
  for (std::int32_t i = 0; i < table.count; ++i) {
    if (table.open[i].unit == unit) return &table.open[i];
  }
  return nullptr;
}

std::FILE* open_padded(const char* name) {
  char text[kNameLength + 1];
  std::memcpy(text, name, kNameLength);
  text[kNameLength] = '\0';
  std::size_t length = std::strlen(text);
  while (length > 0 && text[length - 1] == ' ') --length;
  text[length] = '\0';
  return length > 0 ? std::fopen(text, "w") : nullptr;
}

// Connects one opened file; the caller has made sure of room.
void connect(const OpenFile& opened) {
  if (OpenFile* old = find(opened.unit)) {
    std::fclose(old->file);
    *old = opened;
    return;
  }
  table.open[table.count++] = opened;
}

// Units among opened[n] that have no entry yet, each counted once.
std::int32_t new_units(const OpenFile* opened, std::int32_t n) {
  std::int32_t result = 0;
  for (std::int32_t i = 0; i < n; ++i) {
    bool known = find(opened[i].unit) != nullptr;
    for (std::int32_t j = 0; j < i; ++j) known = known || opened[j].unit == opened[i].unit;
    if (!known) ++result;
  }
  return result;
}

}  // namespace

std::int32_t open_trace_files(std::int32_t count, const char* names, const std::int32_t* units) {
  if (count < 0 || count > kMaxTraceFiles) return 2;
  const std::lock_guard guard(table.lock);
  OpenFile opened[kMaxTraceFiles];
  std::int32_t n = 0;
  bool good = true;
  for (std::int32_t i = 0; i < count && good; ++i) {
    if (units[i] == 0) continue;
    opened[n] = {units[i], open_padded(names + std::ptrdiff_t{kNameLength} * i)};
    good = opened[n].file != nullptr;
    if (good) ++n;
  }
  if (!good || table.count + new_units(opened, n) > kMaxTraceFiles) {
    for (std::int32_t i = 0; i < n; ++i) std::fclose(opened[i].file);
    return 1;
  }
  for (std::int32_t i = 0; i < n; ++i) connect(opened[i]);
  return 0;
}

std::int32_t close_trace_files() {
  const std::lock_guard guard(table.lock);
  bool good = true;
  for (std::int32_t i = 0; i < table.count; ++i) {
    good = std::fclose(table.open[i].file) == 0 && good;
    table.open[i] = {};
  }
  table.count = 0;
  return good ? 0 : 1;
}

void trace(std::int32_t unit, const char* format, ...) {
  if (unit == 0) return;
  const std::lock_guard guard(table.lock);
  const OpenFile* target = find(unit);
  if (target == nullptr) return;
  std::va_list values;
  va_start(values, format);
  std::vfprintf(target->file, format, values);
  va_end(values);
}

void trace_vector(std::int32_t unit, const char* label, std::int32_t n, const double* v) {
  if (unit == 0) return;
  const std::lock_guard guard(table.lock);
  const OpenFile* target = find(unit);
  if (target == nullptr) return;
  std::fputs(label, target->file);
  for (std::int32_t i = 0; i < n; ++i) std::fprintf(target->file, " %.17g", v[i]);
  std::fputc('\n', target->file);
}

void trace_matrix(std::int32_t unit, const char* label, std::int32_t n, const double* a) {
  if (unit == 0) return;
  const std::lock_guard guard(table.lock);
  const OpenFile* target = find(unit);
  if (target == nullptr) return;
  std::fprintf(target->file, "%s\n", label);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = 0; j < n; ++j) std::fprintf(target->file, " %.17g", a[i + std::ptrdiff_t{n} * j]);
    std::fputc('\n', target->file);
  }
}

}  // namespace kestrune::tools
