// A host may call from a thread with little stack: a quarter of a megabyte has to be enough, whatever the mixture.
#include <gtest/gtest.h>

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <pthread.h>

#include <functional>

#include "common/mixture.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr std::size_t kStack = 256 * 1024;

void* call(void* body) {
  (*static_cast<std::function<void()>*>(body))();
  return nullptr;
}

void on_small_stack(std::function<void()> body) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, call, &body), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

TEST(Stack, AQuarterOfAMegabyteIsEnough) {
  const std::vector<std::string> all{
      "nitrogen",     "carbon_dioxide", "hydrogen_sulfide", "water",           "methane",
      "ethane",       "propane",        "n_butane",         "n_pentane",       "n_hexane",
      "n_heptane",    "n_octane",       "n_nonane",         "n_decane",        "n_undecane",
      "n_dodecane",   "n_tridecane",    "n_tetradecane",    "n_pentadecane",   "n_hexadecane",
      "isobutane",    "isopentane",     "neopentane",       "2_methylpentane", "3_methylpentane",
      "cyclopentane", "cyclohexane",    "benzene",          "toluene",         "ethylbenzene",
      "o_xylene",     "m_xylene",       "p_xylene",         "n_heptadecane",   "n_octadecane"};
  for (const std::size_t n : {std::size_t{16}, std::size_t{20}, std::size_t{32}, all.size()}) {
    SCOPED_TRACE(n);
    Mixture m = mixture_of({all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n)});
    m.use();
    std::vector<double> z(n, 0.5 / static_cast<double>(n)), a(n), b(n), c(n), d(n), e(n), T(400), P(400),
        kind(400);
    z[4] += 0.5;
    double beta = 0.0, V = 0.0, t = 0.0, p = 0.0, x[4];
    std::int32_t points = 0, criticals = 0;
    MixtureRecord* r = &m.record;
    r->solubility_a = 12.6;
    r->solubility_b = 6115.0;
    for (const std::uint8_t flags : {std::uint8_t{0}, std::uint8_t{FreeWaterFlag}})
      on_small_stack([&] {
        r->flags = flags;
        t = 0.0;
        EXPECT_EQ(FlashLVatTP(300.0, 20.0, z.data(), r, nullptr, 1, &beta, a.data(), b.data(), c.data()),
                  KV_OK);
        EXPECT_EQ(FlashLVatHP(-3000.0, 20.0, z.data(), r, nullptr, 1, &t, &beta, a.data(), b.data(), c.data(),
                              x, x + 1),
                  KV_OK);
        t = 0.0;
        FlashLVatSP(-30.0, 20.0, z.data(), r, nullptr, 1, &t, &beta, a.data(), b.data(), c.data(), x, x + 1);
        t = p = 0.0;
        FlashLVatWP(0.5, 20.0, z.data(), r, nullptr, 1, &t, a.data(), b.data(), c.data());
        FlashLVatWT(0.5, 300.0, z.data(), r, nullptr, 1, &p, a.data(), b.data(), c.data());
        FlashLLatTP(300.0, 20.0, z.data(), r, nullptr, 0, &beta, a.data(), b.data(), c.data());
        EXPECT_EQ(FlashLLVatTP(300.0, 20.0, z.data(), r, nullptr, 0, &beta, &V, a.data(), b.data(), c.data(),
                               d.data(), e.data()),
                  KV_OK);
        t = 0.0;
        EXPECT_EQ(FlashLLVatHP(-3000.0, 20.0, z.data(), r, nullptr, 0, &t, &beta, &V, a.data(), b.data(),
                               c.data(), d.data(), e.data(), x, x + 1, x + 2),
                  KV_OK);
        t = 0.0;
        EXPECT_EQ(FlashLLVatWP(0.5, 20.0, z.data(), r, nullptr, 0, &t, &beta, a.data(), b.data(), c.data(),
                               d.data(), e.data()),
                  KV_OK);
        t = p = 0.0;
        FlashLLVatSP(-30.0, 20.0, z.data(), r, nullptr, 0, &t, &beta, &V, a.data(), b.data(), c.data(),
                     d.data(), e.data(), x, x + 1, x + 2);
        FlashLLVatWT(0.5, 300.0, z.data(), r, nullptr, 0, &p, &beta, a.data(), b.data(), c.data(), d.data(),
                     e.data());
        PhaseEnvelope(z.data(), r, nullptr, 0, 0.0, 0.0, 0.0, 0, 400, 1.0, 0.0, T.data(), P.data(), kind.data(),
                      &points, &criticals, x, x + 1, x + 2, x + 3);
        CriticalPoint(z.data(), r, 0, x, x + 1, x + 2, x + 3);
        p = 0.0;
        WaterDewPressure(300.0, z.data(), 1, 0, 0, r, 0, &p);
      });
  }
}

}  // namespace

#endif
