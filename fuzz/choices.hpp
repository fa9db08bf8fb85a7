// A stream of bytes read as choices. When the bytes run out every choice is the first one, the plain one.
#ifndef KESTRUNE_FUZZ_CHOICES_HPP
#define KESTRUNE_FUZZ_CHOICES_HPP

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>

namespace kestrune::fuzz {

class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  // 0 .. n - 1
  int below(int n) {
    const std::uint32_t bits = n <= 256 ? bytes(1) : bytes(4);
    return static_cast<int>(bits % static_cast<std::uint32_t>(n));
  }
  // Never when the bytes have run out.
  bool chance(int percent) { return below(100) >= 100 - percent; }
  double unit() { return bytes(4) / 4294967296.0; }
  double between(double low, double high) { return low + (high - low) * unit(); }
  double even_in_logarithm(double low, double high) { return low * std::exp(std::log(high / low) * unit()); }
  template <class Value>
  Value pick(std::initializer_list<Value> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }

  double absurd() {
    constexpr double inf = std::numeric_limits<double>::infinity();
    return pick<double>({NAN,     0.0,     -1.0,   inf,     -inf,
                         1e300,   DBL_MAX, -1e300, 5e-324,  1e-310,
                         DBL_MIN, -0.0,    1e-300, 1e-30,   1e-10,
                         1e10,    1e30,    1e100,  -1e-300, std::numeric_limits<double>::signaling_NaN()});
  }
  std::int32_t absurd_integer() {
    return pick({-1, 0, 1, 2, 3, 7, 100, 10001, INT32_MIN, INT32_MAX, INT32_MIN + 1, 65536, 1 << 30});
  }

  bool empty() const { return left_ == 0; }

 private:
  std::uint32_t bytes(int count) {
    std::uint32_t value = 0;
    for (; count > 0 && left_ > 0; --count, --left_) value = value << 8 | *data_++;
    return value;
  }

  const std::uint8_t* data_;
  std::size_t left_;
};

}  // namespace kestrune::fuzz

#endif
