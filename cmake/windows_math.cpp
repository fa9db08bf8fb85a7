// exp, log, pow, log10, cbrt, fmax and fmin in the registers that all else is computed in. Those of MinGW's C library
// go through the x87 unit, three to ten times as slow. The linker puts these in their place (--wrap, CMakeLists.txt);
// arguments out of the ordinary are handed on to the C library.
//
// A logarithm is a sum of two doubles, good to 2^-65; so are an exponential's table and argument. What is returned is
// rounded once: at most 0.51 ulp away, as the C library of Linux is, and almost always the same double.
//
// P. T. P. Tang, ACM Trans. Math. Softw. 15 (1989) 144-157 and 16 (1990) 378-400: the method with tables.
// T. J. Dekker, Numer. Math. 18 (1971) 224-242: sums and products of two doubles.

#include <cstdint>

extern "C" {
double __real_exp(double x);
double __real_log(double x);
double __real_log10(double x);
double __real_pow(double x, double y);
double __real_cbrt(double x);
}

namespace {

// high + low, and nothing of low overlaps high.
struct Sum {
  double high, low;
};

// Two doubles and their bits: 64 bits that do not leave the wide registers for two narrow ones, and for memory.
typedef double Pair [[gnu::vector_size(16)]];
typedef std::uint64_t Bits [[gnu::vector_size(16)]];
[[gnu::always_inline]] inline Bits bits_of(double x) {
  return __builtin_bit_cast(Bits, Pair{x, x});
}
[[gnu::always_inline]] inline double number(Bits bits) {
  return __builtin_bit_cast(Pair, bits)[0];
}

constexpr double kRound = 6755399441055744.0;  // 1.5 2^52: adding and subtracting it rounds to an integer
// ln 2, its first part with 32 bits, so that products with exponents are exact.
constexpr double kLn2Hi = 6.93147180369123816490e-01, kLn2Lo = 1.90821492927058770002e-10;

// The logarithm of 2^k z, 0.6875 <= z < 1.375: the first seven bits of z choose c near 1/z with eleven bits, and
// ln z = -ln c + ln(1 + (c z - 1)). Where z is near 1, c is 1.
constexpr std::uint64_t kOne = 0x3ff0000000000000, kFirst = 0x3fe6000000000000;
constexpr int kLogs = 128;
struct LogEntry {
  double c, high, low;  // high is a whole number of 2^-42
};
struct LogTable {
  LogEntry of[kLogs];
};

constexpr LogTable make_logs() {
  LogTable t{};
  for (int i = 0; i < kLogs; ++i) {
    const std::uint64_t begin = kFirst + (static_cast<std::uint64_t>(i) << 45);
    const double z = __builtin_bit_cast(double, begin + (std::uint64_t{1} << 44));
    const bool beside_one = begin == kOne || begin + (std::uint64_t{1} << 45) == kOne;
    const double c = beside_one ? 1.0 : static_cast<double>(static_cast<long>(1024.0 / z + 0.5)) / 1024.0;
    const long double l = -__builtin_logl(c);
    const double high = static_cast<double>(static_cast<long long>(l * 4398046511104.0L)) / 4398046511104.0;
    t.of[i] = {c, high, static_cast<double>(l - high)};
  }
  return t;
}
constexpr LogTable kLogTable = make_logs();

// 2^(i/128) in two parts.
constexpr int kPowers = 128;
struct PowerTable {
  Sum of[kPowers];
};
constexpr PowerTable make_powers() {
  PowerTable t{};
  for (int i = 0; i < kPowers; ++i) {
    const long double p = __builtin_exp2l(static_cast<long double>(i) / kPowers);
    const double high = static_cast<double>(p);
    t.of[i] = {high, static_cast<double>(p - high)};
  }
  return t;
}
constexpr PowerTable kPowerTable = make_powers();

bool is_normal_positive(double x) {
  return x >= 2.2250738585072014e-308 && x <= 1.7976931348623157e308;
}

// ln x of a normal positive x.
[[gnu::always_inline]] inline Sum logarithm(double x) {
  const Bits from_first = bits_of(x) - kFirst;
  const auto leading = static_cast<std::uint32_t>((from_first >> 32)[0]);
  const LogEntry& e = kLogTable.of[(leading >> 13) % kLogs];
  const double k = static_cast<std::int32_t>(leading) >> 20;
  const Bits z_bits = (from_first & 0x000fffffffffffffULL) + kFirst;
  const double z = number(z_bits), z_high = number(z_bits & ~0x7ffffffULL);
  // c z - 1: two exact parts, then their sum and what it has lost.
  const double r_high = z_high * e.c - 1.0, r_low = (z - z_high) * e.c;
  const double r = r_high + r_low, lost = (r_high - r) + r_low, r2 = r * r;
  const double tail =
      r2 * ((-0.5 + r * (1.0 / 3.0)) +
            r2 * ((-0.25 + r * 0.2) + r2 * ((-1.0 / 6.0 + r * (1.0 / 7.0)) - r2 * 0.125)));
  const double base = k * kLn2Hi + e.high;
  const double high = base + r, rest = base == 0.0 ? 0.0 : (base - high) + r;
  return {high, rest + ((lost + tail) + (k * kLn2Lo + e.low))};
}

// e^(x.high + x.low), |x.high| < 700.
[[gnu::always_inline]] inline double exponential(const Sum& x) {
  const double shifted = x.high * (kPowers * 1.4426950408889634) + kRound;
  const double n = shifted - kRound;
  const Bits whole = bits_of(shifted);
  const double r = (x.high - n * (kLn2Hi / kPowers)) - n * (kLn2Lo / kPowers) + x.low, r2 = r * r;
  const double p = r + r2 * ((0.5 + r * (1.0 / 6.0)) + r2 * (1.0 / 24.0 + r * (1.0 / 120.0)));
  const Sum& t = kPowerTable.of[static_cast<std::uint32_t>(whole[0]) % kPowers];
  const double e = t.high + (t.low + t.high * p);
  return number(bits_of(e) + ((whole >> 7) << 52));
}

constexpr double kLargestExponent = 700.0;
bool moderate(double exponent) {
  return exponent > -kLargestExponent && exponent < kLargestExponent;
}

// y (x.high + x.low), |y| not so large that its parts overflow.
Sum times(double y, const Sum& x) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  const double yc = y * kSplit, y_high = yc - (yc - y), y_low = y - y_high;
  const double xc = x.high * kSplit, x_high = xc - (xc - x.high), x_low = x.high - x_high;
  const double product = y * x.high;
  const double error = ((y_high * x_high - product) + y_high * x_low + y_low * x_high) + y_low * x_low;
  return {product, error + y * x.low};
}

}  // namespace

extern "C" {

double __wrap_exp(double x) {
  return moderate(x) ? exponential({x, 0.0}) : __real_exp(x);
}

double __wrap_log(double x) {
  if (!is_normal_positive(x)) return __real_log(x);
  const Sum l = logarithm(x);
  return l.high + l.low;
}

double __wrap_log10(double x) {
  if (!is_normal_positive(x)) return __real_log10(x);
  const Sum l = logarithm(x), product = times(0.43429448190325182, l);
  return product.high + (product.low + 1.0983196502167651e-17 * l.high);
}

double __wrap_pow(double x, double y) {
  if (is_normal_positive(x) && y > -1e6 && y < 1e6) {
    const Sum exponent = times(y, logarithm(x));
    if (moderate(exponent.high)) return exponential(exponent);
  }
  return __real_pow(x, y);
}

double __wrap_cbrt(double x) {
  const double size = x < 0.0 ? -x : x;
  if (!is_normal_positive(size)) return __real_cbrt(x);
  const Sum l = logarithm(size);
  Sum third = times(1.0 / 3.0, l);
  third.low += 1.8503717077085943e-17 * l.high;  // 1/3 has no end
  const double root = exponential(third);
  return x < 0.0 ? -root : root;
}

double __wrap_fmax(double x, double y) {
  return x > y || y != y ? x : y;
}

double __wrap_fmin(double x, double y) {
  return x < y || y != y ? x : y;
}
}
