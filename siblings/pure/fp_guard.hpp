// Floating-point state at the boundary: hosts may run with traps unmasked or another rounding or precision.
#ifndef KESTRUNE_SIBLINGS_PURE_FP_GUARD_HPP
#define KESTRUNE_SIBLINGS_PURE_FP_GUARD_HPP

#include <cstdint>

#if !defined(__i386__) && !defined(__x86_64__)
#include <cfenv>
#endif

namespace kestrune::pure {

// Sets all traps masked, rounding to nearest and full precision for its life time, then restores what the
// host had. No exception that was raised inside can trap in the host.
class FpGuard {
 public:
  FpGuard(const FpGuard&) = delete;
  FpGuard& operator=(const FpGuard&) = delete;

#if defined(__i386__) || defined(__x86_64__)
  FpGuard() noexcept {
    __asm__ volatile("stmxcsr %0" : "=m"(mxcsr_));
    if (!is_default()) __asm__ volatile("ldmxcsr %0" : : "m"(sse_default));
#if defined(__i386__)
    // 32-bit code returns doubles on the x87 stack, and its mathematical library computes there.
    __asm__ volatile("fnstcw %0" : "=m"(x87_));
    if (x87_ != x87_default) __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(x87_default));
#endif
  }
  ~FpGuard() {
#if defined(__i386__)
    // Flags left behind would trap in a host that unmasks later.
    __asm__ volatile("fnclex");
    if (x87_ != x87_default) __asm__ volatile("fldcw %0" : : "m"(x87_));
#endif
    // With the default modes the sticky flags stay: in SSE they never trap. Loading the word is slow.
    if (!is_default()) __asm__ volatile("ldmxcsr %0" : : "m"(mxcsr_));
  }

 private:
  static constexpr std::uint32_t sse_default = 0x1f80;
  static constexpr std::uint32_t sse_flags = 0x3f;
  static constexpr std::uint16_t x87_default = 0x037f;

  bool is_default() const noexcept {
    return (mxcsr_ & ~sse_flags) == sse_default;
  }

  std::uint32_t mxcsr_ = 0;
#if defined(__i386__)
  std::uint16_t x87_ = 0;
#endif
#else
  FpGuard() noexcept {
    std::feholdexcept(&environment_);
    std::fesetround(FE_TONEAREST);
  }
  ~FpGuard() {
    std::fesetenv(&environment_);
  }

 private:
  std::fenv_t environment_;
#endif
};

}  // namespace kestrune::pure

#endif
