// Stand-in for the tools library: records its calls and calculates nothing.
#include <cstdio>
#include <cstring>

#include "fake_record.hpp"
#include "kestrune/kvtoolslite.h"

namespace {
FakeTools record;
}

extern "C" {

KV_API FakeTools* fake_tools() {
  return &record;
}

void KV_CALL BRACUB(const double*, const double*, const double*, const double*, double* Z, int32_t* status,
                    const int32_t*, const double*, const double*, const double*, const double*, const double*) {
  ++record.bracub_calls;
  *Z = 0.5;
  *status = 0;
}

#ifndef KESTRUNE_FAKE_WITHOUT_MRINV
void KV_CALL MRINV(const int32_t*, const int32_t*, double* a, int32_t* status) {
  a[0] = 1.0 / a[0];
  *status = 0;
}
#endif

void KV_CALL SetOutputFiles(const int32_t* count, const char* names, const int32_t* units, int32_t* status) {
  ++record.set_calls;
  record.count = *count;
  for (int i = 0; i < *count; ++i) {
    char* name = record.names[i];
    std::memcpy(name, names + 260 * i, 260);
    int length = 260;
    while (length > 0 && name[length - 1] == ' ') --length;
    name[length] = '\0';
    record.units[i] = units[i];
    std::FILE* file = std::fopen(name, "rb");
    record.existed[i] = file != nullptr;
    if (file != nullptr) std::fclose(file);
    if (record.write_files && (file = std::fopen(name, "wb")) != nullptr) {
      std::fputs("trace\n", file);
      std::fclose(file);
    }
  }
  *status = 0;
}

void KV_CALL CloseOutputFiles(int32_t* status) {
  ++record.close_calls;
  *status = 0;
}

void KV_CALL CNEWTON(const int32_t* n, double* x, double* f, KvResidual residual, void* user, const double*,
                     const int32_t*, const int32_t*, int32_t* iterations, int32_t* status) {
  ++record.solver_calls;
  int32_t flag = 0;
  residual(n, x, f, &flag, user);
  *iterations = 1;
  *status = flag;
}

void KV_CALL GANEW(const int32_t* n, double* x, double* f, KvResidual residual, void* user, const double*,
                   const int32_t*, const int32_t* trace_switch, const int32_t*, int32_t* iterations,
                   int32_t* status) {
  ++record.solver_calls;
  record.trace_switch = *trace_switch;
  int32_t flag = 0;
  residual(n, x, f, &flag, user);
  *iterations = 1;
  *status = flag;
}
}
