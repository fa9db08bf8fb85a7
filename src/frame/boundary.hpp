// The edge between a host and the library: what every export does before and after its calculation.
#ifndef KESTRUNE_FRAME_BOUNDARY_HPP
#define KESTRUNE_FRAME_BOUNDARY_HPP

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <new>

#include "edge/guard.hpp"
#include "kestrune/records.h"
#include "kestrune/status.h"

// An export is KV_ENTRY StatusCode KV_CALL Name(parameters) KV_GUARDS(expression); its whole body is the one
// expression, evaluated behind the guard. There is no place in front of it where an argument could be touched.
// The assertion takes the semicolon.
#define KV_GUARDS(...)                                                                \
  {                                                                                   \
    return ::kestrune::frame::guarded([&]() -> ::StatusCode { return __VA_ARGS__; }); \
  }                                                                                   \
  static_assert(true)
#define KV_GUARDS_VOID(...)                                                    \
  {                                                                            \
    ::kestrune::frame::guarded([&]() -> ::StatusCode { return __VA_ARGS__; }); \
  }                                                                            \
  static_assert(true)

namespace kestrune::frame {

// The body of an export, called by a pointer that no compiler sees through: none of its floating-point operations may
// move out of the guard's life.
template <class Body>
StatusCode run_body(Body& body) {
  return body();
}
template <class Body>
StatusCode run_opaque(Body& body) {
  auto* run = &run_body<Body>;
  __asm__ __volatile__("" : "+r"(run));
  return run(body);
}

/*
 * Runs the body of an export: StatusCode body(). Nothing thrown leaves it: no memory becomes KV_MEMORY, all
 * else KV_INTERNAL. The exception that ends a call whose sibling library is missing is none of C++ and
 * passes through to the host.
 */
template <class Body>
StatusCode guarded(Body&& body) noexcept {
  const edge::FpGuard<true> guard;  // the x87 unit too: a routine of a host may compute there
  try {
    return run_opaque(body);
  } catch (const std::bad_alloc&) {
    return KV_MEMORY;
  } catch (...) {
    return KV_INTERNAL;
  }
}

// Checks of arguments: KV_OK or the status that ends the call before anything is calculated.

template <class... Pointers>
inline StatusCode check_pointers(const Pointers*... pointers) noexcept {
  return ((pointers == nullptr) || ...) ? KV_NULL_ARGUMENT : KV_OK;
}

inline StatusCode check_count(std::int32_t count) noexcept {
  return count < 1 || count > KV_MAX_COMPONENTS ? KV_COMPONENT_COUNT : KV_OK;
}

inline StatusCode check_record(const MixtureRecord* mixture) noexcept {
  if (mixture == nullptr || mixture->table == nullptr) return KV_NULL_ARGUMENT;
  return check_count(mixture->count);
}

inline bool finite_and_positive(double value) noexcept {
  return value > 0.0 && value <= DBL_MAX;
}

inline StatusCode check_temperature(double T) noexcept {
  return finite_and_positive(T) ? KV_OK : KV_TEMPERATURE;
}
inline StatusCode check_pressure(double P) noexcept {
  return finite_and_positive(P) ? KV_OK : KV_PRESSURE;
}

// z[n]: every entry finite and not negative, not all of them zero.
inline StatusCode check_composition(std::int32_t n, const double* z) noexcept {
  if (z == nullptr) return KV_NULL_ARGUMENT;
  double largest = 0.0;
  bool good = true;
  for (std::int32_t i = 0; i < n; ++i) {
    good &= z[i] >= 0.0 && z[i] <= DBL_MAX;
    largest = z[i] > largest ? z[i] : largest;
  }
  return good && largest > 0.0 ? KV_OK : KV_COMPOSITION;
}

// A mixture with a composition of it.
inline StatusCode check_feed(const double* z, const MixtureRecord* mixture) noexcept {
  const StatusCode status = check_record(mixture);
  return status != KV_OK ? status : check_composition(mixture->count, z);
}

// A specified enthalpy, entropy or fraction.
inline StatusCode check_specified(double value) noexcept {
  return std::isfinite(value) ? KV_OK : KV_SPECIFICATION;
}

inline StatusCode first_failure(std::initializer_list<StatusCode> checks) noexcept {
  for (const StatusCode status : checks)
    if (status != KV_OK) return status;
  return KV_OK;
}

}  // namespace kestrune::frame

#endif
