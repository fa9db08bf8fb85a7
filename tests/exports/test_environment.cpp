// The host's floating-point environment around calls, and that a call leaves nothing behind for the next one.
#include <gtest/gtest.h>

#include <cstring>

#include "common/environment.hpp"
#include "common/flash_call.hpp"
#include "export_table.hpp"

#if defined(KV_TESTS_X86)

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Outputs {
  FlashResult two, one;
  std::vector<double> phi;
  bool operator==(const Outputs& o) const {
    return two == o.two && one == o.one && phi.size() == o.phi.size() &&
           std::memcmp(phi.data(), o.phi.data(), phi.size() * sizeof(double)) == 0;
  }
};

// The calls of a host, with nothing but the exports while its words are in force.
Outputs calls(Mixture& m, std::uint16_t control, std::uint32_t mxcsr, Words& before, Words& after) {
  Outputs o;
  for (FlashResult* r : {&o.two, &o.one})
    for (auto* array : {&r->x, &r->y, &r->K}) array->resize(10);
  o.phi.resize(10 * 13);
  double *const p = o.phi.data(), *const z = const_cast<double*>(kRichGasFeed.data());
  StatusCode gas = 0, refused = 0;
  set_words(control, mxcsr);
  before = read_words();
  o.two.status = FlashLVatTP(250, 40, z, &m.record, nullptr, 1, &o.two.beta, o.two.x.data(), o.two.y.data(),
                             o.two.K.data());
  o.one.status = FlashLVatTP(120, 1, z, &m.record, nullptr, 1, &o.one.beta, o.one.x.data(), o.one.y.data(),
                             o.one.K.data());
  gas = GasPhi_Derivatives_PPR78(250, 40, z, &m.record, 2, 7, p, p + 10, p + 20, p + 30);
  refused = GasMolarEnthalpy_PPR78(-1, 40, z, &m.record, p);
  refused += LiquidPhi_Derivatives_PPR78(250, 40, z, &m.record, 2, 0, p, nullptr, nullptr, nullptr);
  after = read_words();
  default_words();
  EXPECT_EQ(gas, KV_OK);
  EXPECT_EQ(refused, KV_TEMPERATURE);
  return o;
}

TEST(Environment, TrapsPrecisionAndRoundingOfTheHostDoNotMatterAndComeBack) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  const FlashResult warm_up = flash(m, 250, 40, kRichGasFeed);
  ASSERT_EQ(warm_up.status, KV_OK);
  Words before, after;
  const Outputs reference = calls(m, 0x037F, 0x1F80, before, after);
  EXPECT_TRUE(reference.two == warm_up);
  for (const HostWords& h : kHosts) {
    SCOPED_TRACE(h.what);
    const Outputs o = calls(m, h.control, h.mxcsr, before, after);
    EXPECT_TRUE(before == after) << std::hex << before.control << ' ' << before.status << ' ' << before.mxcsr
                                 << " became " << after.control << ' ' << after.status << ' ' << after.mxcsr;
    EXPECT_EQ(after.control & 0x0F3F, h.control & 0x0F3F);
    EXPECT_EQ(after.mxcsr, h.mxcsr);
    EXPECT_TRUE(o == reference);
  }
}

// Nothing is done with an argument before the host's traps are masked.
TEST(Environment, NoArgumentTraps) {
  Mixture m = mixture_of({"methane", "propane", "n_hexane"});
  std::vector<double> z{0.6, 0.3, 0.1}, bad{NAN, 5e-324, INFINITY};
  m.use();
  for (const Export& e : export_table())
    for (std::size_t k = 0; k < e.kinds.size(); ++k)
      for (const double value : {double{NAN}, 5e-324, double{INFINITY}, 1e308}) {
        Arguments a(e, m, z);
        if (e.kinds[k] == 'z')
          a.slots[k].address = bad.data();
        else if (e.kinds[k] == 'd')
          a.slots[k].number = value;
        else
          continue;
        SCOPED_TRACE(testing::Message() << e.name << ", argument " << k + 1 << " = " << value);
        _mm_setcsr(0x0000);
        e.call(a.slots);
        const std::uint32_t after = _mm_getcsr();
        default_words();
        EXPECT_EQ(after, 0u);
      }
}

TEST(Environment, TheSameCallGivesTheSameBitsWhateverCameBefore) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  const FlashResult first = flash(m, 280, 60, kRichGasFeed);
  flash(m, 180, 5, kRichGasFeed);
  flash(m, NAN, 5, kRichGasFeed);
  std::vector<double> other(10, 0.1);
  flash(m, 400, 700, other);
  EXPECT_TRUE(flash(m, 280, 60, kRichGasFeed) == first);
  Mixture lean = mixture_of(kLeanGas);
  lean.use();
  flash(lean, 200, 40, kLeanGasFeed);
  m.use();
  EXPECT_TRUE(flash(m, 280, 60, kRichGasFeed) == first);
}

}  // namespace
#endif
