// Exponential and logarithm for the hot loops: branch-free, so that the compiler can run them two or four at a
// time, and with the same digits on every target (the 32-bit C library of MinGW goes through the x87 unit).
// Largest error 1.1 ulp for exp, 1.5 ulp for log, 2.3 ulp for that of a ratio, over the stated ranges; tests/support
// checks it.
#ifndef KESTRUNE_SUPPORT_MATHKERNELS_HPP
#define KESTRUNE_SUPPORT_MATHKERNELS_HPP

#include <cstdint>

namespace kestrune::support {

// Polynomials fitted at the Chebyshev points of their intervals with 40 digits; error below 2e-17.
namespace kernel {
inline constexpr double kLog2e = 1.4426950408889634;
// ln 2 in two parts: 32 and 53 bits.
inline constexpr double kLn2Hi = 6.93147180369123816490e-01;
inline constexpr double kLn2Lo = 1.90821492927058770002e-10;
// Adding and subtracting 1.5 * 2^52 rounds to the nearest integer.
inline constexpr double kRound = 6755399441055744.0;
// The integers that hold the bits of a double, or of a vector of them.
template <class Real>
struct BitsOf {
  typedef std::uint64_t Type;
};
}  // namespace kernel

// As fast_exp. Real: double, or a vector of doubles that has its BitsOf.
template <class Real>
[[gnu::always_inline]] inline Real exponential(Real x) {
  using Bits = typename kernel::BitsOf<Real>::Type;
  constexpr Real zero{};
  x = x > zero - 708.0 ? x : zero - 708.0;
  x = x < zero + 709.0 ? x : zero + 709.0;
  const Real shifted = x * kernel::kLog2e + kernel::kRound;
  const Real n = shifted - kernel::kRound;
  const Real r = (x - n * kernel::kLn2Hi) - n * kernel::kLn2Lo;
  const Real r2 = r * r;
  // (e^r - 1 - r)/r^2, |r| <= ln(2)/2, in Estrin's order.
  const Real p01 = 0.50000000000000010211 + r * 0.16666666666666667452;
  const Real p23 = 0.041666666666624161903 + r * 0.0083333333333300644495;
  const Real p45 = 0.0013888888917196719077 + r * 0.00019841269863040545271;
  const Real p67 = 0.000024801521322368693266 + r * 2.7557268480310025526e-6;
  const Real p89 = 2.7620075879983366586e-7 + r * 2.5100375832561233664e-8;
  const Real r4 = r2 * r2;
  const Real p = (p01 + r2 * p23) + r4 * ((p45 + r2 * p67) + r4 * p89);
  const Real e = 1.0 + (r + r2 * p);
  // The integer n stands in the low bits of shifted; two halves keep 2^n a normal number.
  const Bits power = __builtin_bit_cast(Bits, shifted) << 52;
  return __builtin_bit_cast(Real, __builtin_bit_cast(Bits, e) + power);
}

// e^x for -708 <= x <= 709; clamped to that range outside. NaN gives an unspecified number.
[[gnu::always_inline]] inline double fast_exp(double x) {
  return exponential(x);
}

// ln x for normal positive x (at least 2.3e-308). Zero and subnormal numbers give about -708.
[[gnu::always_inline]] inline double fast_log(double x) {
  x = x > 2.2250738585072014e-308 ? x : 2.2250738585072014e-308;
  // x = 2^k m with m in [sqrt(1/2), sqrt(2)).
  const std::uint64_t bits = __builtin_bit_cast(std::uint64_t, x);
  const std::uint64_t offset = bits + (0x3ff0000000000000ULL - 0x3fe6a09e667f3bcdULL);
  const std::uint64_t exponent = offset >> 52;  // k + 1023
  const double m = __builtin_bit_cast(double, (offset & 0x000fffffffffffffULL) + 0x3fe6a09e667f3bcdULL);
  const double k = __builtin_bit_cast(double, exponent | 0x4330000000000000ULL) - (4503599627370496.0 + 1023.0);
  const double f = m - 1.0;
  const double s = f / (2.0 + f);
  const double t = s * s;
  // (2 atanh(s)/s - 2)/s^2, |s| <= 0.1716
  const double t2 = t * t;
  const double q01 = 0.66666666666666696862 + t * 0.3999999999989950449;
  const double q23 = 0.28571428625975484921 + t * 0.22222211134795079855;
  const double q45 = 0.1818288912526172208 + t * 0.15331721600556041269;
  const double q = t * ((q01 + t2 * q23) + t2 * t2 * (q45 + t2 * 0.1461644968504340586));
  // ln m = f - s (f - q'): the leading term is exact, what is added is small.
  const double h = f - s * (f - q);
  return k * kernel::kLn2Hi + (h + k * kernel::kLn2Lo);
}

// ln x as fast_log has it, and ln(1 + part/whole) for 0 <= part < 10 whole, to full relative precision also of a
// small part: both series side by side, and no branch.
struct TwoLogs {
  double of_x, of_ratio;
};
[[gnu::always_inline]] inline TwoLogs two_logs(double x, double part, double whole) {
  typedef double Pair [[gnu::vector_size(16)]];
  typedef std::uint64_t PairBits [[gnu::vector_size(16)]];
  x = x > 2.2250738585072014e-308 ? x : 2.2250738585072014e-308;
  const PairBits offset =
      __builtin_bit_cast(PairBits, Pair{x, x}) + (0x3ff0000000000000ULL - 0x3fe6a09e667f3bcdULL);
  const Pair m = __builtin_bit_cast(Pair, (offset & 0x000fffffffffffffULL) + 0x3fe6a09e667f3bcdULL);
  const Pair k =
      __builtin_bit_cast(Pair, (offset >> 52) | 0x4330000000000000ULL) - (4503599627370496.0 + 1023.0);
  // The ratio is 2^steps times a number within sqrt(1/2) .. sqrt(2); more: 2^steps - 1.
  const Pair ratio{part, part}, unit{whole, whole};
  Pair chosen = ratio > 0.41421356237309505 * unit ? Pair{1.0, 1.0} : Pair{};
  chosen = ratio > 1.8284271247461901 * unit ? Pair{3.0, 2.0} : chosen;
  chosen = ratio > 4.6568542494923806 * unit ? Pair{7.0, 3.0} : chosen;
  const double more = chosen[0], steps = chosen[1];
  const double f = m[0] - 1.0;
  const Pair s = Pair{f, part - more * whole} / Pair{2.0 + f, (2.0 * whole + part) + more * whole};
  const Pair t = s * s, t2 = t * t;
  const Pair q01 = 0.66666666666666696862 + t * 0.3999999999989950449;
  const Pair q23 = 0.28571428625975484921 + t * 0.22222211134795079855;
  const Pair q45 = 0.1818288912526172208 + t * 0.15331721600556041269;
  const Pair q = t * ((q01 + t2 * q23) + t2 * t2 * (q45 + t2 * 0.1461644968504340586));
  const double of_m = f - s[0] * (f - q[0]);
  const double of_rest = 2.0 * s[1] + s[1] * q[1];
  return {k[0] * kernel::kLn2Hi + (of_m + k[0] * kernel::kLn2Lo),
          steps * kernel::kLn2Hi + (of_rest + steps * kernel::kLn2Lo)};
}

// atanh x for |x| <= 0.1716, to full relative precision.
[[gnu::always_inline]] inline double small_atanh(double x) {
  const double t = x * x, t2 = t * t;
  const double q01 = 0.66666666666666696862 + t * 0.3999999999989950449;
  const double q23 = 0.28571428625975484921 + t * 0.22222211134795079855;
  const double q45 = 0.1818288912526172208 + t * 0.15331721600556041269;
  return x + 0.5 * x * t * ((q01 + t2 * q23) + t2 * t2 * (q45 + t2 * 0.1461644968504340586));
}

}  // namespace kestrune::support

#endif
