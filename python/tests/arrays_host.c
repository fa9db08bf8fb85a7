/*
 * The array loop as a host without Python meets it: the libraries of a wheel in a folder of their own, opened by their path.
 *
 *   arrays_host FOLDER     prints numbers by name; exit code 1 with a message where something is not as it should be
 */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "arrays.h"

#if defined(_WIN32)
#include <windows.h>
#define FILE_OF "%s\\%s.dll"
static void* open_library(const char* path) {
  return (void*)LoadLibraryExA(path, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
}
static void* symbol(void* library, const char* name) {
  return (void*)(size_t)GetProcAddress((HMODULE)library, name);
}
#else
#include <dlfcn.h>
#define FILE_OF "%s/lib%s.so"
static void* open_library(const char* path) {
  return dlopen(path, RTLD_NOW);
}
static void* symbol(void* library, const char* name) {
  return dlsym(library, name);
}
#endif

enum { STATES = 5000, NC = 4 };
static char text[4096];
static double T[STATES], P[STATES], out_T[STATES], out_P[STATES], fraction[3][STATES], x[3][STATES * NC];
static double values[KA_PROPERTY_COUNT * STATES], water[STATES], content[STATES], kept[3][STATES];
static int32_t status[STATES];

static void need(int good, const char* what) {
  if (good) return;
  fprintf(stderr, "arrays_host: %s: %s\n", what, text);
  exit(1);
}

static double sum(const double* of) {
  double total = 0.0;
  int i;
  for (i = 0; i < STATES; ++i) total += of[i];
  return total;
}

int main(int count, char** argument) {
  char path[1024];
  void* library;
  int32_t (*open)(const char*, char*, int32_t);
  KaMixture* (*mixture_of)(const char*, const char*, const char*, int32_t, int32_t, int32_t, const char*,
                           const char*, char*, int32_t);
  int32_t (*flash)(KaMixture*, const KaFlash*, char*, int32_t);
  int32_t (*properties)(KaMixture*, int32_t, int64_t, const double*, const double*, const double*, int32_t,
                        int32_t, double*, int32_t*, char*, int32_t);
  int32_t (*saturation)(KaMixture*, int32_t, int64_t, const double*, const double*, const double*, int32_t,
                        double*, double*, int32_t*, char*, int32_t);
  KaMixture* gas;
  KaFlash job;
  int i, p, threads;

  need(count == 2, "arrays_host FOLDER");
  snprintf(path, sizeof path, FILE_OF, argument[1], "kestrune_arrays");
  library = open_library(path);
  need(library != NULL, path);
  *(void**)&open = symbol(library, "ka_open");
  *(void**)&mixture_of = symbol(library, "ka_mixture");
  *(void**)&flash = symbol(library, "ka_flash");
  *(void**)&properties = symbol(library, "ka_properties");
  *(void**)&saturation = symbol(library, "ka_saturation");
  need(open && mixture_of && flash && properties && saturation, "a function is missing");

  /* What is thrown inside ends as a message. */
  need(open("nowhere", text, sizeof text) == -1 && strstr(text, "nowhere"), "a library that is not there");
  snprintf(path, sizeof path, FILE_OF, argument[1], "KVGasThermo");
  need(open(path, text, sizeof text) == 0, "ka_open");
  need(!mixture_of("methan=1", "", "2022", 0, 0, 0, "", "", text, sizeof text) && strstr(text, "methane"),
       "a misspelt name");
  gas =
      mixture_of("methane=0.8,propane=0.1,nC6=0.05,water=0.05", "", "2022", 0, 0, 0, "", "", text, sizeof text);
  need(gas != NULL, "ka_mixture");

  for (i = 0; i < STATES; ++i) {
    T[i] = 200.0 + 0.03 * i;
    P[i] = 1e5 * (1.0 + i % 97);
  }
  T[17] = -1.0;
  memset(&job, 0, sizeof job);
  job.given = KA_TP, job.phases = 3, job.count = STATES, job.first = T, job.second = P, job.T = out_T,
  job.P = out_P;
  for (p = 0; p < 3; ++p) job.fraction[p] = fraction[p], job.x[p] = x[p];
  job.status = status;
  for (threads = 1; threads <= 3; threads += 2) {
    job.threads = threads;
    need(flash(gas, &job, text, sizeof text) == 0, "ka_flash");
    need(status[17] == 9004 && isnan(fraction[0][17]), "a state below absolute zero");
    for (p = 0; p < 3; ++p) {
      fraction[p][17] = 0.0;
      if (threads > 1) need(memcmp(kept[p], fraction[p], sizeof kept[p]) == 0, "threads change the result");
      memcpy(kept[p], fraction[p], sizeof kept[p]);
    }
  }
  T[17] = 300.0;
  need(properties(gas, 1, STATES, T, P, NULL, 1 << KA_ENTHALPY, 2, values, status, text, sizeof text) == 0,
       "ka_properties");
  need(saturation(gas, 1, STATES, T, P, NULL, 2, water, content, status, text, sizeof text) == 0,
       "ka_saturation");
  for (i = 0; i < STATES; ++i)
    if (isnan(water[i])) water[i] = 0.0;
  printf("vapour %.17g\nliquid %.17g\nliquid2 %.17g\n", sum(fraction[0]), sum(fraction[1]), sum(fraction[2]));
  printf("enthalpy %.17g\nwater %.17g\n", sum(values + (size_t)KA_ENTHALPY * STATES), sum(water));
  return 0;
}
