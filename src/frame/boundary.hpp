// The edge between a host and the library: what every export does before and after its calculation.
#ifndef KESTRUNE_FRAME_BOUNDARY_HPP
#define KESTRUNE_FRAME_BOUNDARY_HPP

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <new>

#include "kestrune/records.h"
#include "kestrune/status.h"

#if defined(__i386__) || defined(__x86_64__)
#include <xmmintrin.h>
#define KV_X86_FLOATING_POINT 1
#endif

// A 32-bit Windows host keeps the stack aligned to 4 bytes only; SSE code needs 16.
#if defined(__i386__)
#define KV_REALIGN __attribute__((force_align_arg_pointer))
#else
#define KV_REALIGN
#endif
// An export is KV_ENTRY StatusCode KV_CALL Name(parameters) KV_GUARDS(expression); its whole body is the one
// expression, evaluated behind the guard. There is no place in front of it where an argument could be touched.
// The assertion takes the semicolon.
#define KV_ENTRY extern "C" KV_API KV_REALIGN
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

// Whether the x87 unit is looked after: what runs in here may compute there, be it a routine of a host.
inline constexpr bool kGuardX87 = true;

/*
 * Floating-point environment of the library while it lives: every exception masked, round to nearest, full
 * precision, no flushing to zero. The host's control words and its sticky flags come back exactly as they
 * were, so that a flag raised in here never becomes a trap of a host that runs with exceptions unmasked.
 */
class FpGuard {
 public:
  FpGuard() noexcept { enter(); }
  ~FpGuard() { leave(); }
  FpGuard(const FpGuard&) = delete;
  FpGuard& operator=(const FpGuard&) = delete;

 private:
#if defined(KV_X86_FLOATING_POINT)
  static constexpr std::uint16_t kControl = 0x037F;
  static constexpr std::uint32_t kMxcsr = 0x1F80, kSseFlags = 0x003F;
  // Status word: six exception flags, stack fault, error summary; bit 15 repeats the summary.
  static constexpr std::uint16_t kFlags = 0x00FF;
  static constexpr std::uint16_t kPending = 0x0080;
  static constexpr std::uint16_t kFlagsAndBusy = 0x80FF;

  struct Environment {  // as fnstenv stores it in protected mode
    std::uint16_t control, reserved0, status, reserved1;
    std::uint32_t rest[5];
  };

  static std::uint16_t x87_status() noexcept {
    std::uint16_t word;
    __asm__ __volatile__("fnstsw %0" : "=a"(word));
    return word;
  }

  void enter() noexcept {
    if constexpr (kGuardX87) enter_x87();
    mxcsr_ = _mm_getcsr();
    // Loading the word is slow. With its traps masked a flag that is up already does no harm.
    if ((mxcsr_ & ~kSseFlags) != kMxcsr) _mm_setcsr(kMxcsr);
  }

  void leave() noexcept {
    if constexpr (kGuardX87) leave_x87();
    if (_mm_getcsr() != mxcsr_) _mm_setcsr(mxcsr_);
  }

  void enter_x87() noexcept {
    __asm__ __volatile__("fnstcw %0" : "=m"(control_));
    status_ = x87_status();
    // A trap of the host's own that is still waiting is put aside; it comes back with the flags.
    if (status_ & kPending) __asm__ __volatile__("fnclex");
    if (control_ != kControl) load_control(kControl);
  }

  void leave_x87() noexcept {
    const std::uint16_t now = x87_status();
    const bool same_flags = ((now ^ status_) & kFlags) == 0;
    if (same_flags) {
      if (control_ != kControl) load_control(control_);
    } else if ((status_ & kFlags) == 0) {
      __asm__ __volatile__("fnclex");
      if (control_ != kControl) load_control(control_);
    } else {
      restore_flags();
    }
  }

  static void load_control(std::uint16_t word) noexcept {
    __asm__ __volatile__("fldcw %0" : : "m"(word));
  }

  // The host came with sticky flags and they changed: put back both words, keep the register stack.
  void restore_flags() const noexcept {
    Environment environment;
    __asm__ __volatile__("fnstenv %0" : "=m"(environment));
    environment.control = control_;
    environment.status =
        static_cast<std::uint16_t>((environment.status & ~kFlagsAndBusy) | (status_ & kFlagsAndBusy));
    __asm__ __volatile__("fldenv %0" : : "m"(environment));
  }

  std::uint16_t control_ = 0;
  std::uint16_t status_ = 0;
  std::uint32_t mxcsr_ = 0;
#else
  void enter() noexcept {
    std::feholdexcept(&environment_);
    std::fesetround(FE_TONEAREST);
  }
  void leave() noexcept {
    std::fesetenv(&environment_);
  }
  std::fenv_t environment_;
#endif
};

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
  const FpGuard guard;
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
