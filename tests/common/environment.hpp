// The floating-point words of a host, read and set around calls.
#ifndef KESTRUNE_TESTS_ENVIRONMENT_HPP
#define KESTRUNE_TESTS_ENVIRONMENT_HPP

#include <cstdint>

#if defined(__i386__) || defined(__x86_64__)
#include <xmmintrin.h>
#define KV_TESTS_X86 1
#endif

namespace kestrune::tests {

struct Words {
  std::uint16_t control = 0, status = 0;
  std::uint32_t mxcsr = 0;
  bool operator==(const Words&) const = default;
};

struct HostWords {
  const char* what;
  std::uint16_t control;
  std::uint32_t mxcsr;
};
inline constexpr HostWords kDefaultWords{"default", 0x037F, 0x1F80};
inline constexpr HostWords kHosts[] = {{"traps unmasked", 0x0360, 0x0000},
                                       {"24 bits", 0x007F, 0x1F80},
                                       {"53 bits, traps", 0x0262, 0x0100},
                                       {"rounding up, flush to zero", 0x0B7F, 0xDFC0},
                                       {"rounding to zero, sticky", 0x0F7F, 0x7FBF}};

#if defined(KV_TESTS_X86)
inline Words read_words() {
  Words w;
  __asm__ __volatile__("fnstcw %0" : "=m"(w.control));
  __asm__ __volatile__("fnstsw %0" : "=m"(w.status));
  w.status &= 0xB8FF;  // the four condition bits are anyone's
  w.mxcsr = _mm_getcsr();
  return w;
}
inline void set_words(std::uint16_t control, std::uint32_t mxcsr) {
  __asm__ __volatile__("fldcw %0" : : "m"(control));
  _mm_setcsr(mxcsr);
}
inline void default_words() {
  __asm__ __volatile__("fninit");
  _mm_setcsr(kDefaultWords.mxcsr);
}
#else
inline Words read_words() {
  return {};
}
inline void set_words(std::uint16_t, std::uint32_t) {}
inline void default_words() {}
#endif

}  // namespace kestrune::tests

#endif
