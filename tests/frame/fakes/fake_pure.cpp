// Stand-in for the pure-component library: every entry notes its name and arguments and gives back what
// the test laid down.
#include <cstring>

#include "fake_record.hpp"
#include "kestrune/kvcmpdpurelite.h"

namespace {
FakePure record;
}

extern "C" {

KV_API FakePure* fake_pure() {
  return &record;
}

#define FAKE_PROPERTY(name)                                                                        \
  int32_t KV_CALL name##_EX(const int32_t* cas, const double* T, const double* a, const double* b, \
                            const int32_t* table, int32_t* status, double* result, char* unit) {   \
    record.entry = #name "_EX";                                                                    \
    record.cas = *cas;                                                                             \
    record.option = *table;                                                                        \
    const void* const seen[8] = {cas, T, a, b, table, status, result, unit};                       \
    std::memcpy(record.arguments, seen, sizeof seen);                                              \
    *result = record.result;                                                                       \
    std::memcpy(unit, record.unit, 15);                                                            \
    return *status = record.status;                                                                \
  }
#define FAKE_CHECK(name)                                                          \
  int32_t KV_CALL Check##name##_EX(const int32_t* cas, const int32_t* equation) { \
    record.entry = "Check" #name "_EX";                                           \
    record.cas = *cas;                                                            \
    record.option = *equation;                                                    \
    return record.status;                                                         \
  }
KV_PURE_PROPERTIES(FAKE_PROPERTY)
KV_PURE_INTEGRALS(FAKE_PROPERTY)
KV_PURE_PROPERTIES(FAKE_CHECK)

int32_t KV_CALL AvailableCorrelations(const int32_t*, const int32_t*, int32_t*) {
  return record.status;
}
int32_t KV_CALL CorrelationInfo(const int32_t*, const int32_t*, const int32_t*, double*, double*, char*,
                                char*) {
  return record.status;
}
int32_t KV_CALL SetTempFolder(const char*, const int32_t*) {
  return record.status;
}
int32_t KV_CALL SetThermoCodes(const int32_t*, const int32_t*) {
  return record.status;
}
int32_t KV_CALL KVCmpdPure_Free(void) {
  return record.status;
}
}
