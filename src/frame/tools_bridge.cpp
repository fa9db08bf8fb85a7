// Entries of the tools library, and those that need more than to be passed on: trace files of the solvers.

#include "frame/tools_bridge.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "frame/siblings.hpp"

namespace kestrune::frame::tools {

namespace {

constexpr const char* kEntryNames[] = {
#define KV_NAME(name) #name,
    KV_TOOLS_ENTRIES(KV_NAME)
#undef KV_NAME
};

// A trace file: its name where there is no folder for temporary files, else the prefix of its name.
struct TraceFile {
  const char* fixed_name;
  const char* prefix;
};
constexpr std::size_t kNewtonUnits = 7;
constexpr TraceFile kNewtonFiles[kNewtonUnits] = {
    {"KVTools.CNEWTON.IOERR.log", "ERR"}, {"KVTools.CNEWTON.IODIAG.log", "DIA"},
    {"KVTools.CNEWTON.IOUT1.log", "OUT"}, {"KVTools.CNEWTON.IOFUNC.log", "FI"},
    {"KVTools.CNEWTON.IOJAC.log", "JAC"}, {"KVTools.CNEWTON.IOSOL.log", "SOL"},
    {"KVTools.CNEWTON.IOX.log", "XI"}};
constexpr TraceFile kGanewFile = {"KVTools.GANEW.IMP.log", "IMP"};

// The trace files of one call: pushed on the stack of the state, and popped with deletion at the end.
class Traces {
 public:
  Traces() noexcept : first_(state().traces.counter) {
    const std::size_t length = platform::temp_path(folder_, sizeof folder_);
    has_folder_ = length > 0 && length < sizeof folder_;
  }
  ~Traces() {
    TraceStack& stack = state().traces;
    while (stack.counter > first_) remove(stack.names[--stack.counter]);
  }
  Traces(const Traces&) = delete;
  Traces& operator=(const Traces&) = delete;

  // A full stack (calls nested in user routines) leaves the unit without a file.
  void push(const TraceFile& file, std::int32_t unit) noexcept {
    TraceStack& stack = state().traces;
    if (stack.counter >= kTraceStackDepth) return;
    char* name = stack.names[stack.counter];
    if (!has_folder_ || !platform::temp_file_name(folder_, file.prefix, name))
      std::snprintf(name, platform::kTraceNameCapacity, "%s", file.fixed_name);
    const std::size_t length = std::strlen(name);
    std::fill(name + length, name + platform::kTraceNameCapacity, ' ');
    stack.units[stack.counter++] = unit;
  }

  void open() noexcept {
    const TraceStack& stack = state().traces;
    const std::int32_t count = stack.counter - first_;
    const char* names = stack.names[0] + static_cast<std::size_t>(first_) * platform::kTraceNameCapacity;
    std::int32_t status = 0;
    entry<decltype(&::SetOutputFiles)>(ToolsEntry::SetOutputFiles)(&count, names, stack.units + first_,
                                                                   &status);
  }

  void close() noexcept {
    std::int32_t status = 0;
    entry<decltype(&::CloseOutputFiles)>(ToolsEntry::CloseOutputFiles)(&status);
  }

 private:
  // Opens the file for reading, as its last reader, and deletes it.
  static void remove(const char padded[platform::kTraceNameCapacity]) noexcept {
    char name[platform::kTraceNameCapacity + 1];
    std::size_t length = platform::kTraceNameCapacity;
    while (length > 0 && padded[length - 1] == ' ') --length;
    *std::copy_n(padded, length, name) = '\0';
    if (std::FILE* file = std::fopen(name, "rb")) {
      std::fclose(file);
      std::remove(name);
    }
  }

  std::int32_t first_;
  bool has_folder_;
  char folder_[platform::kTraceNameCapacity];
};

}  // namespace

void* bind(ToolsEntry name) noexcept {
  const auto index = static_cast<std::size_t>(name);
  State& s = state();
  return BindProviderEntry(platform::kToolsLibrary, kEntryNames[index], s.tools_library,
                           s.tools_entries[index]);
}

void CNEWTON(const std::int32_t* n, double* x, double* f, KvResidual residual, void* user,
             const double* tolerance, const std::int32_t* itemax, const std::int32_t* units,
             std::int32_t* iterations, std::int32_t* status) noexcept {
  const auto solver = entry<decltype(&::CNEWTON)>(ToolsEntry::CNEWTON);
  Traces traces;
  for (std::size_t k = 0; k < kNewtonUnits; ++k)
    if (units[k] != 0) traces.push(kNewtonFiles[k], units[k]);
  traces.open();
  solver(n, x, f, residual, user, tolerance, itemax, units, iterations, status);
  traces.close();
}

void GANEW(const std::int32_t* n, double* x, double* f, KvResidual residual, void* user,
           const double* tolerance, const std::int32_t* itemax, std::int32_t* trace_switch,
           const std::int32_t* unit, std::int32_t* iterations, std::int32_t* status) noexcept {
  const auto solver = entry<decltype(&::GANEW)>(ToolsEntry::GANEW);
  if (*trace_switch == 0 || *unit == 0) {
    *trace_switch = 0;
    solver(n, x, f, residual, user, tolerance, itemax, trace_switch, unit, iterations, status);
    return;
  }
  Traces traces;
  traces.push(kGanewFile, *unit);
  traces.open();
  solver(n, x, f, residual, user, tolerance, itemax, trace_switch, unit, iterations, status);
  traces.close();
}

}  // namespace kestrune::frame::tools
