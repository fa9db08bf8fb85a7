// A host's own fugacity routine, and the rules of the wrapper as a routine sees them: how often it is called
// and with which flags.
#include <gtest/gtest.h>

#include <algorithm>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr StatusCode kHostStatus = 77;

// What the routine below did and is to do; tests run one at a time.
struct Host {
  int calls = 0, fail_until = 0, fail_from = 1 << 30;
  std::vector<std::uint8_t> flags;
} host;

StatusCode KV_CALL host_fugacity(double T, double P, const double* x, MixtureRecord* mixture,
                                 std::int32_t phase, std::int32_t option, std::int32_t mask, double* ln_phi,
                                 double* dT, double* dP, double* dn) {
  ++host.calls;
  host.flags.push_back(mixture->flags);
  EXPECT_EQ(option, 2);
  EXPECT_EQ(mask & ~7, 0);
  if (host.calls <= host.fail_until || host.calls >= host.fail_from) return kHostStatus;
  auto* const routine = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  return routine(T, P, x, mixture, option, mask, ln_phi, dT, dP, dn);
}

const ModelRoutines kRoutines = [] {
  ModelRoutines r{};
  r.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(&host_fugacity);
  return r;
}();

TEST(HostRoutine, GivesTheAnswersOfTheBuiltInEquation) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  host = {};
  int two = 0;
  for (const double T : {150.0, 180.0, 200.0, 230.0, 250.0, 270.0, 300.0, 340.0})
    for (const double P : {0.5, 5.0, 20.0, 45.0, 70.0, 100.0, 300.0}) {
      SCOPED_TRACE(testing::Message() << T << " K " << P << " atm");
      const FlashResult own = flash(m, T, P, kRichGasFeed),
                        through = flash(m, T, P, kRichGasFeed, 1, &kRoutines);
      expect_same(through, own, 1e-8);
      two += own.two_phases();
    }
  EXPECT_GE(two, 20);
  EXPECT_GT(host.calls, 100);
  const ModelRoutines empty{};  // a record without entries is as good as none
  EXPECT_TRUE(flash(m, 250, 40, kRichGasFeed, 1, &empty) == flash(m, 250, 40, kRichGasFeed));
}

TEST(HostRoutine, ItsStatusReachesTheHostFromWhereverItComes) {
  Mixture m = mixture_of(kRichGas);
  m.use();
  host = {};
  flash(m, 250, 40, kRichGasFeed, 1, &kRoutines);
  const int all = host.calls;
  ASSERT_GT(all, 5);
  for (int k = 1; k <= all; ++k) {
    host = {};
    host.fail_from = k;
    EXPECT_EQ(flash(m, 250, 40, kRichGasFeed, 1, &kRoutines).status, kHostStatus) << k;
    EXPECT_EQ(host.calls, k);
  }
}

// Rules of the wrapper: the lean gas with water, or without.
struct Wrapped {
  Mixture m;
  std::vector<double> z;
  explicit Wrapped(bool water, double water_amount = 0.05) {
    std::vector<std::string> ids = kLeanGas;
    z = kLeanGasFeed;
    if (water) {
      ids.insert(ids.begin() + 2, "water");
      z.insert(z.begin() + 2, water_amount);
    }
    double sum = 0;
    for (const double v : z) sum += v;
    for (double& v : z) v /= sum;
    m = mixture_of(ids);
    m.record.table = m.table.data();
    m.use();
    m.record.flags = kFlags;
    m.record.solubility_a = 9.0;
    m.record.solubility_b = 5000.0;
    host = {};
  }
  static constexpr std::uint8_t kFlags = 0xA4 | FreeWaterFlag;
};

FlashResult marked(std::size_t n) {
  return {0, 0.123, std::vector<double>(n, 0.5), std::vector<double>(n, 0.25), std::vector<double>(n, 7.0)};
}

void expect_untouched(const FlashResult& r) {
  EXPECT_EQ(r.beta, 0.123);
  for (const double v : r.x) EXPECT_EQ(v, 0.5);
  for (const double v : r.y) EXPECT_EQ(v, 0.25);
}

TEST(Wrapper, FlagWithoutWaterIsAsGoodAsClear) {
  Wrapped w(false);
  const FlashResult with = flash(w.m, 200, 40, w.z);
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
  w.m.record.flags = 0;
  EXPECT_TRUE(flash(w.m, 200, 40, w.z) == with);
  w.m.record.flags = Wrapped::kFlags;
  host.fail_from = 1;
  const FlashResult failed = flash(w.m, 200, 40, w.z, 1, &kRoutines, marked(7));
  EXPECT_EQ(failed.status, kHostStatus);
  EXPECT_EQ(host.flags, std::vector<std::uint8_t>{0});  // once, cleared
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
  expect_untouched(failed);
}

TEST(Wrapper, WaterIsRecognisedByItsNumber) {
  Wrapped w(true);
  w.m.at(2, KV_COL_CAS) = 7732186;
  host.fail_from = 1;
  flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8));
  EXPECT_EQ(host.flags, std::vector<std::uint8_t>{0});
}

TEST(Wrapper, ColdStartIsRetriedFromTheWaterEstimate) {
  Wrapped w(true);
  const FlashResult good = flash(w.m, 300, 50, w.z);
  ASSERT_TRUE(good.two_phases());
  // The retry fails as well: its estimate is what is left.
  host.fail_from = 1;
  const FlashResult failed = flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8));
  EXPECT_EQ(failed.status, kHostStatus);
  EXPECT_EQ(host.flags, (std::vector<std::uint8_t>{Wrapped::kFlags, Wrapped::kFlags}));
  EXPECT_DOUBLE_EQ(failed.beta, 1 - w.z[2]);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(failed.x[i], i == 2 ? 1.0 : 0.0);
    EXPECT_DOUBLE_EQ(failed.y[i], i == 2 ? 0.0 : w.z[i] / (1 - w.z[2]));
  }
  // The retry succeeds.
  host = {};
  host.fail_until = 1;
  expect_same(flash(w.m, 300, 50, w.z, 1, &kRoutines, marked(8)), good, 1e-8);
  EXPECT_EQ(w.m.record.flags, Wrapped::kFlags);
}

TEST(Wrapper, WarmStartsAndDryFeedsAreNotRetried) {
  Wrapped w(true);
  host.fail_from = 1;
  const FlashResult warm = flash(w.m, 300, 50, w.z, 0, &kRoutines, marked(8));
  EXPECT_EQ(warm.status, kHostStatus);
  EXPECT_EQ(host.calls, 1);
  expect_untouched(warm);
  Wrapped dry(true, 0.0);
  host.fail_from = 1;
  const FlashResult cold = flash(dry.m, 300, 50, dry.z, 1, &kRoutines, marked(8));
  EXPECT_EQ(cold.status, kHostStatus);
  EXPECT_EQ(host.calls, 1);
  expect_untouched(cold);
  EXPECT_EQ(dry.m.record.flags, Wrapped::kFlags);
}

TEST(Wrapper, AboveTheCriticalPressureOfWaterTheRetryIsWithoutFreeWater) {
  Wrapped w(true);
  const double Pc = w.m.at(2, KV_COL_PC);
  for (const int options : {0, 1}) {
    for (const double P : {Pc, std::nextafter(Pc, 1e9)}) {
      host = {};
      host.fail_from = 1;
      const FlashResult r = flash(w.m, 400, P, w.z, options, &kRoutines, marked(8));
      EXPECT_EQ(r.status, kHostStatus);
      if (P > Pc) {
        EXPECT_EQ(host.flags, (std::vector<std::uint8_t>{Wrapped::kFlags, 0}));
        expect_untouched(r);
      } else {
        EXPECT_EQ(host.flags, std::vector<std::uint8_t>(options ? 2u : 1u, Wrapped::kFlags));
      }
    }
    host = {};
    host.fail_until = 1;
    const FlashResult retried = flash(w.m, 400, 300, w.z, options, &kRoutines, marked(8));
    w.m.record.flags = 0;
    expect_same(retried, flash(w.m, 400, 300, w.z), 1e-8);
    w.m.record.flags = Wrapped::kFlags;
  }
}

TEST(Wrapper, PureWaterLeavesNumbersBehind) {
  Wrapped w(true);
  std::vector<double> z(8, 0.0);
  z[2] = 1.0;
  host.fail_from = 1;
  const FlashResult r = flash(w.m, 300, 50, z, 1, &kRoutines, marked(8));
  EXPECT_EQ(r.status, kHostStatus);
  for (const double v : r.y) EXPECT_TRUE(std::isfinite(v)) << v;
}

TEST(Wrapper, TheEstimateIsOfTheNormalisedFeed) {
  Wrapped w(true);
  std::vector<double> z = w.z;
  for (double& v : z) v *= 100.0;
  host.fail_from = 1;
  const FlashResult r = flash(w.m, 300, 50, z, 1, &kRoutines, marked(8));
  EXPECT_NEAR(r.beta, 1 - w.z[2], 1e-12);
  EXPECT_NEAR(r.y[0], w.z[0] / (1 - w.z[2]), 1e-12);
}

}  // namespace
