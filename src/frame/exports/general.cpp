// Exports: group data, which every other call works with, and molar mass.

#include <cmath>

#include "eos/group_data.hpp"
#include "frame/boundary.hpp"
#include "frame/exports/context.hpp"
#include "kestrune/kvgasthermo.h"

namespace kestrune::exports {
namespace {

// Of the process, and beside what the frame remembers all that outlives a call. To be converted by one thread, while
// no other one calculates.
constinit eos::GroupData the_group_data;

}  // namespace

eos::Context context_of(MixtureRecord* record) noexcept {
  return {record, &the_group_data, &kTools, record != nullptr ? record->trace_flag : 0};
}

}  // namespace kestrune::exports

namespace {

using namespace kestrune;

StatusCode convert(int nC, int nG, const int32_t* counts, const double* A, const double* B,
                   double* const* storage) {
  eos::GroupData& data = exports::the_group_data;
  data = {};
  // Nothing that could be worked with: later calls answer that there are no group data.
  if (storage == nullptr || counts == nullptr || A == nullptr || B == nullptr) return KV_NULL_ARGUMENT;
  if (nC > KV_MAX_COMPONENTS || nG > KV_MAX_COMPONENTS) return KV_COMPONENT_COUNT;
  for (int slot = 1; slot <= 5; ++slot)
    if (storage[slot] == nullptr) return KV_NULL_ARGUMENT;
  data = {nC, nG, storage[1], storage[2], storage[3], storage[4], storage[5]};
  eos::convert_group_data(nC, nG, counts, A, B, data);
  return KV_OK;
}

// There is no status but 0: what cannot be read, and a sum that is no number, counts as nothing.
StatusCode molecular_weight(int n, const double* x, const double* M, double* out) {
  if (out == nullptr) return KV_OK;
  double sum = 0.0;
  if (x != nullptr && M != nullptr)
    for (int i = 0; i < n; ++i) sum += x[i] * M[i];
  *out = std::isfinite(sum) ? sum : 0.0;
  return KV_OK;
}

}  // namespace

KV_ENTRY void KV_CALL ConvertPPR78GroupData(int32_t nC, int32_t nG, const int32_t* counts, const double* A,
                                            const double* B, double* const* storage)
    KV_GUARDS_VOID(convert(nC, nG, counts, A, B, storage));

KV_ENTRY StatusCode KV_CALL MolecularWeight(int32_t nc, const double* x, const double* M, double* out)
    KV_GUARDS(molecular_weight(nc, x, M, out));
