// The edge between a host and each of the three libraries: the stack that an entry finds, and the host's floating-point
// environment around it. The only header that they share.
#ifndef KESTRUNE_EDGE_GUARD_HPP
#define KESTRUNE_EDGE_GUARD_HPP

#include <cfenv>
#include <cstdint>

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
#define KV_ENTRY extern "C" KV_API KV_REALIGN

namespace kestrune::edge {

/*
 * Floating-point environment of the library while it lives: every exception masked, round to nearest, full
 * precision, no flushing to zero. The host's control words and its sticky flags come back exactly as they
 * were, so that a flag raised in here never becomes a trap of a host that runs with exceptions unmasked. x87: whether
 * that unit is looked after.
 */
template <bool x87>
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
    if constexpr (x87) enter_x87();
    mxcsr_ = _mm_getcsr();
    // Loading the word is slow. With its traps masked a flag that is up already does no harm.
    if ((mxcsr_ & ~kSseFlags) != kMxcsr) _mm_setcsr(kMxcsr);
  }

  void leave() noexcept {
    if constexpr (x87) leave_x87();
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

}  // namespace kestrune::edge

#endif
