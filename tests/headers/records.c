/*
 * The interface as a C host sees it: every field of MixtureRecord is found where the bytes are, in order and
 * without gaps, and the list of status codes is sound. Built as C99 and, through records.cpp, as C++.
 */
#include <stdio.h>
#include <string.h>

#include "kestrune/kvcmpdpurelite.h"
#include "kestrune/kvgasthermo.h"
#include "kestrune/kvtoolslite.h"

static int failures = 0;

static void expect(int good, const char* what) {
  if (!good) {
    printf("FAILED: %s\n", what);
    ++failures;
  }
}

static void put_double(unsigned char* raw, size_t offset, double value) {
  memcpy(raw + offset, &value, sizeof value);
}

static void put_word(unsigned char* raw, size_t offset, int32_t value) {
  memcpy(raw + offset, &value, sizeof value);
}

/* A record written byte by byte, the way a host in another language lays it out. */
static void check_mixture_record(void) {
  static const double table[KV_TABLE_COLUMNS] = {0};
  const double* address = table;
  unsigned char raw[125];
  MixtureRecord record;
  memset(raw, 0xA5, sizeof raw);
  put_word(raw, 0, 11);
  memcpy(raw + 4, &address, sizeof address);
  raw[16] = FreeWaterFlag;
  put_double(raw, 17, 17.5);
  put_double(raw, 25, 25.5);
  put_double(raw, 61, 61.5);
  put_double(raw, 69, 69.5);
  put_double(raw, 77, 77.5);
  put_word(raw, 85, 85);
  put_word(raw, 89, 89);
  put_word(raw, 93, 93);
  put_word(raw, 97, 97);
  put_double(raw, 101, 101.5);
  put_double(raw, 109, 109.5);
  put_double(raw, 117, 117.5);
  expect(sizeof record == sizeof raw, "MixtureRecord has 125 bytes");
  memcpy(&record, raw, sizeof record);
  expect(record.count == 11, "count at 0");
  expect(record.table == table, "table at 4");
  expect(record.flags == 1, "flags at 16, FreeWaterFlag is bit 0");
  expect(record.solubility_a == 17.5, "solubility_a at 17");
  expect(record.solubility_b == 25.5, "solubility_b at 25");
  expect(record.CRIT == 61.5, "CRIT at 61");
  expect(record.CLIM == 69.5, "CLIM at 69");
  expect(record.EPS == 77.5, "EPS at 77");
  expect(record.ITEMAX == 85, "ITEMAX at 85");
  expect(record.NEW == 89, "NEW at 89");
  expect(record.trace_flag == 93, "trace_flag at 93");
  expect(record.trace_unit == 97, "trace_unit at 97");
  expect(record.relaxation == 101.5, "relaxation at 101");
  expect(record.pure_tolerance == 109.5, "pure_tolerance at 109");
  expect(record.sum_tolerance == 117.5, "sum_tolerance at 117");
}

static void check_model_routines(void) {
  expect(sizeof(ModelRoutines) == 14 * sizeof(void*), "ModelRoutines holds fourteen addresses");
  expect(KV_ROUTINE_LL_FLASH == 1 && KV_ROUTINE_LV_FLASH == 2 && KV_ROUTINE_FUGACITY == 8 &&
             KV_ROUTINE_LIQUID_ORDER == 10 && KV_ROUTINE_GAS_ENTHALPY == 11 && KV_ROUTINE_GAS_ENTROPY == 12 &&
             KV_ROUTINE_LIQUID_ENTHALPY == 13 && KV_ROUTINE_LIQUID_ENTROPY == 14,
         "numbers of the model routines");
}

struct StatusEntry {
  StatusCode code;
  const char* text;
};

static void check_status_list(void) {
#define ENTRY(name, value, text) {name, text},
  static const struct StatusEntry list[] = {KV_STATUS_LIST(ENTRY)};
#undef ENTRY
  const char* unknown = kv_status_text(-12345);
  const size_t count = sizeof list / sizeof list[0];
  size_t i, k;
  for (i = 0; i < count; ++i) {
    printf("status %5ld  %s\n", (long)list[i].code, list[i].text);
    expect(strlen(list[i].text) > 3, "a status has a text");
    expect(strcmp(kv_status_text(list[i].code), list[i].text) == 0, "the text of the list is the text given");
    expect(strcmp(list[i].text, unknown) != 0, "no status has the text of unknown ones");
    for (k = 0; k < i; ++k) {
      expect(list[i].code != list[k].code, "no status code twice");
      expect(strcmp(list[i].text, list[k].text) != 0, "no status text twice");
    }
  }
  expect(list[0].code == 0, "success comes first and is 0");
  expect(unknown != NULL && strlen(unknown) > 3, "an unknown status has a text");
}

int main(void) {
  check_mixture_record();
  check_model_routines();
  check_status_list();
  printf("%d failures\n", failures);
  return failures != 0;
}
