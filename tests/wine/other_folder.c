/*
 * A host that lies in another folder than the three DLLs, as Excel and plug-ins do: loads the library by its full
 * path and asks for a value that both siblings have a part in.
 *
 *   other_folder PATH_OF_KVGASTHERMO
 */
#include <stdio.h>
#include <windows.h>

#include "kestrune/kvgasthermo.h"

typedef __typeof__(&ConvertPPR78GroupData) GroupData;
typedef __typeof__(&GasMolarEnthalpy_PPR78) Property;

int main(int argc, char** argv) {
  /* Methane, one group. */
  static double table[KV_TABLE_COLUMNS], storage[6][1];
  double* const buffers[6] = {0, storage[1], storage[2], storage[3], storage[4], storage[5]};
  const int32_t counts[1] = {1};
  const double none[1] = {0}, x[1] = {1.0};
  MixtureRecord mixture = {0};
  double H = 0.0;
  StatusCode status;
  HMODULE library = argc > 1 ? LoadLibraryExA(argv[1], NULL, LOAD_WITH_ALTERED_SEARCH_PATH) : NULL;
  if (library == NULL) return 2;
  table[KV_COL_TC - 1] = 190.564;
  table[KV_COL_PC - 1] = 45.388601;
  table[KV_COL_OMEGA - 1] = 0.0115478;
  table[KV_COL_CAS - 1] = 74828;
  mixture.count = 1;
  mixture.table = table;
  ((GroupData)(INT_PTR)GetProcAddress(library, "ConvertPPR78GroupData"))(1, 1, counts, none, none, buffers);
  status = ((Property)(INT_PTR)GetProcAddress(library, "GasMolarEnthalpy_PPR78"))(320.0, 10.0, x, &mixture, &H);
  printf("status %ld, H %.6f cal/mol\n", (long)status, H);
  return !(status == KV_OK && H > 0.0);
}
