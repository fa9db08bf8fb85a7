// What a status says beside its text, by its range or its place in the list of include/kestrune/status.h.
#ifndef KESTRUNE_SUPPORT_STATUS_HPP
#define KESTRUNE_SUPPORT_STATUS_HPP

#include "kestrune/status.h"

namespace kestrune::support {

// Statuses of the root solver that name no failure: of 1 the only root belongs to the other phase, and serves.
inline constexpr StatusCode kOnlyOtherRoot = 1;
inline constexpr StatusCode kLastWarning = 50;

/* Whether a status of the root solver comes with a root: the warnings, and 201 and 202 with them. */
inline constexpr bool has_root(StatusCode status) noexcept {
  return status <= kLastWarning || status == 201 || status == 202;
}

/* Whether a property comes with this status, a heat capacity continued beyond its range among them. */
inline constexpr bool has_values(StatusCode status) noexcept {
  return has_root(status) || status == KV_PURE_RANGE;
}

/* Whether a value of the pure-component library does: within the range of its correlation, or continued. */
inline constexpr bool has_pure_value(StatusCode status) noexcept {
  return status == KV_OK || status == KV_PURE_RANGE;
}

// Error n of the pure-component library is 1000 + n.
inline constexpr StatusCode kPureBlock = 1000;
inline constexpr StatusCode of_pure_library(int error) noexcept {
  return error == 0 ? StatusCode{KV_OK} : error + kPureBlock;
}

/*
 * Whether a status is of the call or of the pure-component library, and not of an iteration: another temperature does
 * not mend it. A value that is not finite may be one elsewhere.
 */
inline constexpr bool of_model(StatusCode status) noexcept {
  return status > kPureBlock && status != KV_NOT_FINITE;
}

/* Whether a status says that an argument was refused. */
inline constexpr bool of_arguments(StatusCode status) noexcept {
  return status > KV_STATUS_CALL_BLOCK && status <= KV_SPECIFICATION;
}

}  // namespace kestrune::support

#endif
