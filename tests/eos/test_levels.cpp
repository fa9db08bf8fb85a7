// Each evaluation level writes what its stages say and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "eos_case.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr double kUntouched = -7.25;

struct Levelled {
  std::array<double, 2> ln_phi, dT, dP, h;
  eos::PhaseValues v;
  bool ok;
};

// One evaluation with every output preset; Z goes in.
Levelled run(int level, double Z, int phase = KV_PHASE_GAS, double P = 40.0) {
  static Mixture m = mixture_of({"methane", "propane"});
  static const eos::GroupData data = converted(m);
  std::vector<double> block(4000);
  support::Arena arena(block.data(), 8 * 2000);
  eos::Temperature t;
  EXPECT_EQ(eos::prepare(300.0, context_with(m, data), eos::order_of_level(level), arena, t), KV_OK);
  Levelled r;
  for (auto* array : {&r.ln_phi, &r.dT, &r.dP, &r.h}) array->fill(kUntouched);
  r.v = {-7,         Z,          kUntouched, kUntouched, r.ln_phi.data(), r.dT.data(), r.dP.data(),
         r.h.data(), kUntouched, kUntouched, kUntouched, kUntouched,      kUntouched,  kUntouched,
         kUntouched, kUntouched, kUntouched, kUntouched, kUntouched,      kUntouched};
  const double x[support::padded(2)] = {0.7, 0.3};
  double work[3 * support::padded(2)];
  r.ok = eos::evaluate(t, exports::kTools.cubic_root(), P, x, phase, level, &m.table[2], work, r.v);
  return r;
}

bool among(int level, std::initializer_list<int> levels) {
  return std::find(levels.begin(), levels.end(), level) != levels.end();
}

TEST(Levels, WriteWhatTheirStagesSayAndNothingElse) {
  const double Z = run(1, 0.0).v.Z;
  ASSERT_GT(Z, 0.5);
  for (int level = 0; level <= 12; ++level) {
    SCOPED_TRACE(level);
    const bool solves = !among(level, {10, 11, 12});
    const Levelled r = run(level, solves ? kUntouched : 0.9 * Z);
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.v.Z, solves ? Z : 0.9 * Z);
    EXPECT_EQ(r.v.status, solves ? 0 : -7);
    EXPECT_DOUBLE_EQ(r.v.v, r.v.Z * 82.057 * 300.0 / 40.0);
    EXPECT_DOUBLE_EQ(r.v.rho * r.v.v, 0.7 * 16.04246 + 0.3 * 44.09562);
    const bool slopes = among(level, {2, 3, 5, 6, 8, 9, 11, 12}),
               alpha_T = among(level, {3, 5, 6, 7, 8, 9, 11, 12});
    const bool ln_phi = among(level, {4, 5, 6, 7, 8, 9, 10, 11, 12}), both = slopes && alpha_T && ln_phi;
    const struct {
      const char* name;
      double value;
      bool written;
    } outputs[] = {{"dZ/dP", r.v.dZ_dP, slopes},
                   {"dZ/dT", r.v.dZ_dT, slopes && alpha_T},
                   {"ln phi", r.ln_phi[1], ln_phi},
                   {"d ln phi/dT", r.dT[1], both},
                   {"d ln phi/dP", r.dP[1], both},
                   {"h_i", r.h[1], among(level, {8, 9})},
                   {"H_res", r.v.H_res, among(level, {7, 8, 9})},
                   {"S_res", r.v.S_res, among(level, {7, 8, 9})},
                   {"da/dT", r.v.da_dT, alpha_T},
                   {"Cp_res", r.v.Cp_res, level == 9},
                   {"Cv_res", r.v.Cv_res, level == 9},
                   {"d2a/dT2", r.v.d2a_dT2, level == 9},
                   {"a", r.v.a, true},
                   {"B", r.v.B, true}};
    for (const auto& o : outputs) EXPECT_EQ(o.value != kUntouched, o.written) << o.name;
  }
}

TEST(Levels, AGivenZIsTheOneThatIsUsed) {
  const Levelled solved = run(4, 0.0), same = run(10, solved.v.Z), other = run(10, 0.8 * solved.v.Z);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_DOUBLE_EQ(same.ln_phi[i], solved.ln_phi[i]);
    EXPECT_GT(std::fabs(other.ln_phi[i] - solved.ln_phi[i]), 0.01);
  }
  // The mean of ln phi in closed form, also at a Z that is no root of the cubic.
  const auto mean = [](const Levelled& r) {
    const double Z = r.v.Z, A = r.v.A, B = r.v.B, s = std::sqrt(8.0);
    return Z - 1 - std::log(Z - B) + A / (B * s) * std::log((2 * Z + (2 - s) * B) / (2 * Z + (2 + s) * B));
  };
  for (const Levelled& r : {solved, other}) EXPECT_NEAR(0.7 * r.ln_phi[0] + 0.3 * r.ln_phi[1], mean(r), 1e-13);
}

TEST(Levels, AnUnusableCubicLeavesRootAndStatusAlone) {
  const Levelled r = run(9, kUntouched, KV_PHASE_LIQUID, INFINITY);
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.v.Z, kUntouched);
  EXPECT_EQ(r.v.v, kUntouched);
  EXPECT_EQ(r.v.status, -7);
  EXPECT_EQ(r.ln_phi[0], kUntouched);
}

}  // namespace
