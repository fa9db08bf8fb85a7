// exp(-x) and ln(p/q) for the heat-capacity integrals: inline, without branches, the same digits on every
// target (the mathematical library of a 32-bit Windows build is several times slower than this). Written once
// for a double and for a pair of doubles, which SSE2 handles at the price of one.
// Errors measured against extended precision: below 2 ulp.
#ifndef KESTRUNE_SIBLINGS_PURE_ELEMENTARY_HPP
#define KESTRUNE_SIBLINGS_PURE_ELEMENTARY_HPP

#include <cstdint>

namespace kestrune::pure {

using Pair = double __attribute__((vector_size(16)));
using PairBits = std::uint64_t __attribute__((vector_size(16)));

// Integer type with the bits of V.
template <class V>
struct BitsOf;
template <>
struct BitsOf<double> {
  using type = std::uint64_t;
};
template <>
struct BitsOf<Pair> {
  using type = PairBits;
};

inline constexpr double log2_e = 1.4426950408889634074;
inline constexpr double ln2_hi = 0x1.62e42feep-1;  // 32 bits: exact when multiplied by an exponent
inline constexpr double ln2_lo = 0x1.a39ef35793c76p-33;
// Adding 1.5 * 2^52 rounds to an integer, which then stands in the low bits.
inline constexpr double round_shift = 6755399441055744.0;
inline constexpr std::uint64_t round_bits = __builtin_bit_cast(std::uint64_t, round_shift);

// exp(r) - 1 for |r| <= ln(2)/2: Taylor series to r^13, remainder below 4e-18.
template <class V>
inline V expm1_reduced(V r) noexcept {
  const V r2 = r * r;
  const V r4 = r2 * r2;
  const V p01 = 1.0 / 2 + r * (1.0 / 6);
  const V p23 = 1.0 / 24 + r * (1.0 / 120);
  const V p45 = 1.0 / 720 + r * (1.0 / 5040);
  const V p67 = 1.0 / 40320 + r * (1.0 / 362880);
  const V p89 = 1.0 / 3628800 + r * (1.0 / 39916800);
  const V pab = 1.0 / 479001600 + r * (1.0 / 6227020800);
  const V low = p01 + r2 * p23;
  const V mid = p45 + r2 * p67;
  const V high = p89 + r2 * pab;
  return r + r2 * (low + r4 * (mid + r4 * high));
}

template <class V>
struct Decay {
  V e;          // exp(-x)
  V one_minus;  // 1 - exp(-x), without cancellation at small x
};

// Both of exp(-x) and 1 - exp(-x) for x >= 0; above 700 as at 700 (1e-304).
template <class V>
inline Decay<V> decay(V x) noexcept {
  using Bits = typename BitsOf<V>::type;
  const V limit = V{} + 700.0;
  const V y = x < limit ? x : limit;
  const V shifted = y * log2_e + round_shift;
  const V k = shifted - round_shift;
  const V q = expm1_reduced<V>((k * ln2_hi - y) + k * ln2_lo);
  const V scale = __builtin_bit_cast(V, ((1023 + round_bits) - __builtin_bit_cast(Bits, shifted)) << 52);
  return {scale + scale * q, (1.0 - scale) - scale * q};
}

// ln(p/q) for normal p, q > 0, given step = p - q as exactly as the caller knows it, so that close p and q
// lose no digits. With 2^k near p/q: ln = k ln 2 + 2 artanh((p - 2^k q)/(p + 2^k q)), argument below 0.2,
// remainder of the series below 2e-17.
template <class V>
inline V log_ratio(V p, V q, V step) noexcept {
  using Bits = typename BitsOf<V>::type;
  constexpr std::uint64_t one = std::uint64_t{1} << 52;
  constexpr std::uint64_t bias = std::uint64_t{1} << 61;  // keeps the difference positive: masking is a floor
  constexpr std::uint64_t exponent_mask = ~(one - 1);
  const Bits difference = __builtin_bit_cast(Bits, p) - __builtin_bit_cast(Bits, q) + (bias + one / 2);
  const Bits floor = difference & exponent_mask;  // k 2^52 + bias
  // k as a double: the integer, moved into the low bits of round_shift.
  const V k = __builtin_bit_cast(V, (floor >> 52) + (round_bits - (bias >> 52))) - round_shift;
  const V scaled = __builtin_bit_cast(V, __builtin_bit_cast(Bits, q) + (floor - bias));
  const V s = (k == 0.0 ? step : p - scaled) / (p + scaled);
  const V z = s * s;
  const V z2 = z * z;
  const V z4 = z2 * z2;
  const V p01 = 2.0 / 3 + z * (2.0 / 5);
  const V p23 = 2.0 / 7 + z * (2.0 / 9);
  const V p45 = 2.0 / 11 + z * (2.0 / 13);
  const V p67 = 2.0 / 15 + z * (2.0 / 17);
  const V p8a = 2.0 / 19 + z * (2.0 / 21) + z2 * (2.0 / 23);
  const V tail = z * ((p01 + z2 * p23) + z4 * ((p45 + z2 * p67) + z4 * p8a));
  return k * ln2_hi + (2.0 * s + (s * tail + k * ln2_lo));
}

}  // namespace kestrune::pure

#endif
