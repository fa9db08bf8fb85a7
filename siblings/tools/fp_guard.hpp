// Floating-point environment of an entry: all exceptions masked, round to nearest, full x87 precision,
// no flush to zero; the host's own environment is back when the entry returns.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace kestrune::tools {

// Holds the host's control words for the life of one call. The sticky flags of the x87 unit are cleared on
// return, since a flag raised here must not trap in a host that has exceptions unmasked.
class FpGuard {
 public:
  FpGuard() noexcept {
#if defined(__i386__)
    const std::uint16_t x87_default = 0x037F;
    asm volatile("fnstcw %0" : "=m"(x87_control_));
    asm volatile("fldcw %0" : : "m"(x87_default));
#endif
#if defined(__SSE2__)
    mxcsr_ = _mm_getcsr();
    _mm_setcsr(0x1F80);
#endif
  }
  ~FpGuard() {
#if defined(__SSE2__)
    _mm_setcsr(mxcsr_);
#endif
#if defined(__i386__)
    asm volatile("fnclex\n\tfldcw %0" : : "m"(x87_control_));
#endif
  }
  FpGuard(const FpGuard&) = delete;
  FpGuard& operator=(const FpGuard&) = delete;

 private:
#if defined(__i386__)
  std::uint16_t x87_control_ = 0;
#endif
#if defined(__SSE2__)
  unsigned mxcsr_ = 0;
#endif
};

}  // namespace kestrune::tools
