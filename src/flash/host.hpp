// The routines of a host during one call of an export, and how one of them ended it. A routine's status travels
// here, apart from the solvers' own: what a host returns as 95 or 112 is never taken for one of theirs.
#ifndef KESTRUNE_FLASH_HOST_HPP
#define KESTRUNE_FLASH_HOST_HPP

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kestrune/records.h"
#include "kestrune/status.h"
#include "support/status.hpp"

namespace kestrune {

// Statuses by which the solvers tell one another which phases they ended with. They reach a host as 0.
inline constexpr StatusCode KV_SINGLE_PHASE = 95;  // one phase only
inline constexpr StatusCode KV_LV_ANSWER = 130;    // one liquid and a vapour remain
inline constexpr StatusCode KV_LL_ANSWER = 131;    // no vapour remains

}  // namespace kestrune

namespace kestrune::flash {

/*
 * Work that one call may take with this many components, in evaluations of ln phi. An evaluation grows with the
 * square of the components, so that the longest call grows little with them up to 40 (docs/validation.md). Flashes that
 * find what they look for take a hundredth of it, as a rule.
 */
inline constexpr double kWorkOfSquares = 4e7;
inline constexpr std::int64_t kMostWork = 100'000, kLeastWork = 4'000;
inline std::int64_t allowed_work(std::int32_t count) noexcept {
  const double n = count + 8.0;
  return std::clamp(static_cast<std::int64_t>(kWorkOfSquares / (n * n)), kLeastWork, kMostWork);
}

// What a solver returns when a routine of the host ended the flash. In no list of statuses, never seen by a
// host, and of the block that no solver tries to mend.
inline constexpr StatusCode kHostStatus = 0x7ffffff0;

struct HostRoutines {
  const ModelRoutines* record = nullptr;  // as the host gave it: its own flashes are called with it
  void* entry[KV_ROUTINE_COUNT] = {};     // null: the library's own stands in its place
  StatusCode status = KV_OK;              // of the routine that ended the flash; from then on none is called
  bool final = true;                      // false: a trace, which goes around the states that a routine refuses
  std::int64_t spent = 0;                 // work of this call so far, in evaluations of ln phi
  std::int64_t allowed = INT64_MAX;       // work after which it ends

  HostRoutines() = default;
  explicit HostRoutines(const ModelRoutines* given) : record(given) {
    if (given != nullptr) std::copy_n(given->entry, KV_ROUTINE_COUNT, entry);
  }
};

/* The routine of an entry (from 1), null without one. */
template <class Routine>
Routine host_routine(const HostRoutines* host, int number) noexcept {
  return host != nullptr ? reinterpret_cast<Routine>(host->entry[number - 1]) : nullptr;
}

/* Ends the flash with a status that the host is to see. */
inline StatusCode end_flash(HostRoutines& host, StatusCode status) noexcept {
  host.status = status;
  return kHostStatus;
}

/*
 * Counts work of a call. One that has spent all that it is allowed ends as not converged, by the way of a
 * routine's status, which no solver tries to mend.
 */
inline StatusCode spend(HostRoutines* host, int work) noexcept {
  if (host == nullptr || (host->spent += work) <= host->allowed) return KV_OK;
  return host->status == KV_OK ? end_flash(*host, KV_NOT_CONVERGED) : kHostStatus;
}

/*
 * Whether a routine of a host may be asked at all: where a solver has run out of the numbers, the state is no
 * fault of the routine's.
 */
inline bool usable_state(double T, double P, int n, const double* x) noexcept {
  return std::isfinite(T) && T > 0.0 && std::isfinite(P) && P > 0.0 &&
         std::all_of(x, x + n, [](double v) { return v >= 0.0 && std::isfinite(v); }) &&
         std::any_of(x, x + n, [](double v) { return v > 0.0; });
}

/* Calls a routine: KV_OK, or kHostStatus when it ends the flash or one before it did. */
template <class Call>
StatusCode call_host(HostRoutines& host, Call&& call) {
  if (host.final && host.status != KV_OK) return kHostStatus;
  const StatusCode status = call();
  return support::has_values(status) ? StatusCode{KV_OK} : end_flash(host, status);
}

inline bool all_finite(int n, const double* values) noexcept {
  return std::all_of(values, values + n, [](double v) { return std::isfinite(v); });
}

}  // namespace kestrune::flash

#endif
