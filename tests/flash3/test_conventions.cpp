// FlashLLVatTP: free water, flashes and densities of the host, and the trace.
#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "common/scratch_folder.hpp"
#include "flash3/three_phase_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr std::uint8_t kFlags = 0xA4 | FreeWaterFlag;
const Vector kThree{0.4, 0.4, 0.2};  // three phases at 300 K and 20 atm

// Hydrocarbons and water, with the flag of free water.
struct Watered {
  Mixture m;
  explicit Watered(const std::vector<std::string>& ids = {"methane", "n_butane", "water"})
      : m(mixture_of(ids)) {
    m.record.table = m.table.data();
    m.record.solubility_a = 11.2;
    m.record.solubility_b = 6290.0;
    m.record.flags = kFlags;
  }
  Answer without_flag(double T, double P, const Vector& z) {
    m.record.flags = 0;
    const Answer a = flash3(m, T, P, z);
    m.record.flags = kFlags;
    return a;
  }
};

TEST(FreeWater, LiquidsByTheSolubilityLimit) {
  Watered w({"methane", "n_butane", "n_eicosane", "water"});
  w.m.use();
  const Vector none(4, 0.0), largest(4, 1e15);
  int seen[2][2] = {};  // by vapour, by free water
  for (const double T : {275.0, 300.0, 350.0, 400.0})
    for (const double P : {1.0, 20.0, 150.0})
      for (const double water : {1e-7, 1e-4, 0.01, 0.4, 0.99})
        for (const double gas : {0.02, 0.7}) {
          const Vector z{gas * (1 - water), 0.6 * (1 - gas) * (1 - water), 0.4 * (1 - gas) * (1 - water),
                         water};
          SCOPED_TRACE(testing::Message() << T << " K " << P << " atm " << testing::PrintToString(z));
          const FlashResult lv = flash(w.m, T, P, z);
          const Answer a = flash3(w.m, T, P, z);
          EXPECT_EQ(w.m.record.flags, kFlags);
          ASSERT_EQ(lv.status, KV_OK);
          ASSERT_EQ(a.status, KV_OK);
          EXPECT_EQ(a.V, lv.beta);
          if (lv.beta == 1.0) {
            EXPECT_TRUE(a.xA == none && a.xB == none && a.KLV == largest);
            continue;
          }
          const bool vapour = a.V > 0.0;
          const double s = std::exp(11.2 - 6290.0 / T);
          const bool split = lv.x[3] > s;
          ++seen[vapour][split];
          if (!split) {  // one liquid: beside a vapour in B, alone in A with the mark
            EXPECT_EQ(a.beta, vapour ? 0.0 : 1.0);
            EXPECT_EQ(vapour ? a.xB : a.xA, lv.x);
            EXPECT_EQ(vapour ? a.xA : a.xB, none);
            EXPECT_EQ(a.KLL, none);
          } else {
            EXPECT_EQ(a.xB, (Vector{0, 0, 0, 1}));
            EXPECT_DOUBLE_EQ(a.xA[3], s);
            EXPECT_EQ(a.KLL, (Vector{1e15, 1e15, 1e15, a.xA[3]}));
            EXPECT_GT(1.0 - a.beta - a.V, 0.0);
            for (std::size_t i = 0; i < 4; ++i)
              EXPECT_NEAR(a.beta * a.xA[i] + (1 - a.beta - a.V) * a.xB[i], (1 - lv.beta) * lv.x[i],
                          1e-10 * z[i] + 1e-15);
          }
          EXPECT_EQ(a.y, vapour ? lv.y : none);
          if (vapour) {
            expect_ratios(a.KLV, a.y, split ? a.xA : a.xB);
          } else {
            EXPECT_EQ(a.KLV, none);
          }
        }
  for (const auto& by_vapour : seen)
    for (const int count : by_vapour) EXPECT_GE(count, 2);
}

// ---- routines of the host; tests run one at a time ----

struct Host {
  MixtureRecord* mixture = nullptr;
  const ModelRoutines* routines = nullptr;
  int lv_calls = 0, ll_calls = 0;
  StatusCode lv_status = KV_OK, ll_status = KV_OK;
  bool lv_writes = true;
  double ll_share = -1.0;  // not negative: a split by the host's own lights
} host;

// The vapour and the liquid as a whole, of the library's own answer.
StatusCode KV_CALL host_lv(double T, double P, const double* z, MixtureRecord* m, const ModelRoutines* r,
                           std::int32_t options, double* beta, double* x, double* y, double*) {
  ++host.lv_calls;
  EXPECT_TRUE(m == host.mixture && r == host.routines && options == 0);
  *beta = NAN;
  if (!host.lv_writes) return host.lv_status;
  const auto n = static_cast<std::size_t>(m->count);
  Answer a;
  for (Vector* array : {&a.xA, &a.xB, &a.y, &a.KLL, &a.KLV}) array->resize(n);
  EXPECT_EQ(FlashLLVatTP(T, P, z, m, nullptr, 0, &a.beta, &a.V, a.xA.data(), a.xB.data(), a.y.data(),
                         a.KLL.data(), a.KLV.data()),
            KV_OK);
  *beta = a.V;
  for (std::size_t i = 0; i < n; ++i) {
    x[i] = a.V < 1.0 ? (a.beta * a.xA[i] + (1 - a.beta - a.V) * a.xB[i]) / (1 - a.V) : z[i];
    y[i] = a.V > 0.0 ? a.y[i] : z[i];
  }
  return host.lv_status;
}

StatusCode KV_CALL host_ll(double T, double P, const double* z, MixtureRecord* m, const ModelRoutines* r,
                           std::int32_t options, double* beta, double* first, double* second, double* K) {
  ++host.ll_calls;
  EXPECT_TRUE(m == host.mixture && r == host.routines && options == 0);
  const StatusCode status = FlashLLatTP(T, P, z, m, nullptr, 0, beta, first, second, K);
  if (host.ll_share >= 0.0) {
    *beta = host.ll_share;
    std::copy_n(z, m->count, first);
    std::fill_n(second, m->count, 1.0 / m->count);
  }
  return status != KV_OK ? status : host.ll_status;
}

// What orders liquids, and says that it has failed.
StatusCode KV_CALL lightness(double T, double P, const double* x, MixtureRecord* m, double* rho, double* a,
                             double* b, double* c) {
  EXPECT_EQ(LiquidDensity_PPR78(T, P, x, m, rho, a, b, c), KV_OK);
  *rho = 1.0 / *rho;
  return 77;
}
StatusCode KV_CALL no_order(double, double, const double*, MixtureRecord*, double*, double*, double*, double*) {
  return KV_NOT_CONVERGED;
}

StatusCode KV_CALL dry_fugacity(double T, double P, const double* x, MixtureRecord* m, std::int32_t phase,
                                std::int32_t option, std::int32_t mask, double* ln_phi, double* dT, double* dP,
                                double* dn) {
  if (m->flags & FreeWaterFlag) return 77;
  auto* const routine = phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  return routine(T, P, x, m, option, mask, ln_phi, dT, dP, dn);
}

struct Routines : ModelRoutines {
  Routines() : ModelRoutines{} {}
  template <class Routine>
  Routines& set(int number, Routine routine) {
    entry[number - 1] = reinterpret_cast<void*>(routine);
    return *this;
  }
};

Answer through_host(Mixture& m, double T, double P, const Vector& z, const ModelRoutines& r, Host start = {}) {
  host = start;
  host.mixture = &m.record;
  host.routines = &r;
  return flash3(m, T, P, z, 0, &r);
}

TEST(FreeWater, FlagThatIsClearedAndPutBack) {
  Watered dry({"methane", "propane", "n_hexane"}), w;
  for (const double T : {200.0, 300.0, 500.0}) {  // no water at all
    dry.m.use();
    EXPECT_TRUE(flash3(dry.m, T, 30, {0.5, 0.3, 0.2}) == dry.without_flag(T, 30, {0.5, 0.3, 0.2}));
    EXPECT_EQ(dry.m.record.flags, kFlags);
  }
  // Water is what has both its number and its family code.
  for (const int column : {KV_COL_CAS, KV_COL_FAMILY}) {
    const double whole = w.m.at(2, column);
    w.m.at(2, column) = 1.0;
    w.m.use();
    EXPECT_TRUE(flash3(w.m, 300, 20, kThree) == w.without_flag(300, 20, kThree)) << column;
    w.m.at(2, column) = whole;
  }
  // Above the critical pressure of water a failure is retried without free water.
  w.m.use();
  const Routines r = Routines().set(KV_ROUTINE_FUGACITY, dry_fugacity);
  EXPECT_EQ(flash3(w.m, 320, 200, kThree, 0, &r).status, 77);
  EXPECT_EQ(w.m.record.flags, kFlags);
  expect_same(flash3(w.m, 320, 230, kThree, 0, &r), w.without_flag(320, 230, kThree), 1e-8);
  EXPECT_EQ(w.m.record.flags, kFlags);
}

struct State {
  double T, P;
  Vector z;
};
const State kOneToThree[] = {
    {300, 20, kThree}, {390, 12, {0.05, 0.05, 0.9}}, {300, 150, {0.05, 0.75, 0.2}}, {300, 10, {0.4, 0.6, 1e-7}},
    {450, 5, kThree},  {280, 100, {0.0, 1.0, 0.0}}};

TEST(HostFlashes, StandInForTheLibrarysOwn) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  for (const int which : {1, 2, 3})
    for (const State& s : kOneToThree) {
      SCOPED_TRACE(testing::Message() << "entries " << which << ' ' << s.T << ' ' << s.P);
      Routines r;
      if (which & 1) r.set(KV_ROUTINE_LV_FLASH, host_lv);
      if (which & 2) r.set(KV_ROUTINE_LL_FLASH, host_ll);
      const Answer own = flash3(m, s.T, s.P, s.z);
      expect_same(through_host(m, s.T, s.P, s.z, r), own, 1e-8);
      EXPECT_EQ(host.lv_calls, which & 1);
      EXPECT_TRUE(which != 3 || host.ll_calls == (own.V < 1.0)) << host.ll_calls;
    }
}

TEST(HostFlashes, TheirStatusesAreNotLost) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  const Routines r = Routines().set(KV_ROUTINE_LV_FLASH, host_lv).set(KV_ROUTINE_LL_FLASH, host_ll);
  const Host bad_lv{.lv_status = KV_NOT_CONVERGED}, bad_ll{.ll_status = 77};
  const Host bad{.lv_status = KV_NOT_CONVERGED, .ll_status = 77}, silent{.lv_writes = false};
  const Host mute{.lv_status = KV_NOT_CONVERGED, .lv_writes = false};
  Answer a = through_host(m, 300, 10, {0.4, 0.6, 1e-7}, r, bad_lv);
  EXPECT_EQ(std::exchange(a.status, KV_OK), KV_LV_ANSWER_DOUBTFUL);
  expect_equilibrium(m, 300, 10, {0.4, 0.6, 1e-7}, a);
  a = through_host(m, 300, 150, {0.1, 0.9, 1e-7}, r, bad_lv);
  EXPECT_EQ(std::exchange(a.status, KV_OK), KV_LL_ANSWER_DOUBTFUL);
  expect_equilibrium(m, 300, 150, {0.1, 0.9, 1e-7}, a);
  expect_equilibrium(m, 300, 20, kThree, through_host(m, 300, 20, kThree, r, bad_lv));
  for (const Host& unusable : {bad, bad_ll, silent, mute})
    EXPECT_EQ(through_host(m, 300, 20, kThree, r, unusable).status, KV_NO_START);
  const Host single{.ll_status = 95};
  expect_equilibrium(m, 300, 20, kThree, through_host(m, 300, 20, kThree, r, single));
  for (const double share : {0.0, 1e-7, 1.0 - 1e-7}) {  // one liquid
    a = through_host(m, 300, 150, {0.1, 0.9, 0.0}, r, {.lv_status = 112, .ll_share = share});
    EXPECT_EQ(std::exchange(a.status, KV_OK), KV_LL_ANSWER_DOUBTFUL);
    EXPECT_EQ(a.beta, 0.0);
    EXPECT_EQ(a.KLL, Vector(3, 1e15));
  }
}

// Free water needs no split of the liquid: what the flash of vapour and liquid did is told with the answer, and
// an estimate goes before it.
TEST(HostFlashes, BesideFreeWater) {
  Watered w;
  w.m.use();
  const Routines r = Routines().set(KV_ROUTINE_LV_FLASH, host_lv).set(KV_ROUTINE_LL_FLASH, host_ll);
  const Host bad{.lv_status = KV_NOT_CONVERGED}, mute{.lv_status = KV_NOT_CONVERGED, .lv_writes = false};
  const struct {
    double P;
    Vector z;
    StatusCode status;
  } cases[] = {{20, kThree, KV_OK},
               {10, {0.4, 0.6, 1e-7}, KV_LV_ANSWER_DOUBTFUL},
               {150, {0.05, 0.75, 0.2}, KV_LL_ANSWER_DOUBTFUL}};
  for (const auto& [P, z, status] : cases) {
    Answer a = through_host(w.m, 300, P, z, r, bad);
    EXPECT_EQ(host.lv_calls, 1);
    EXPECT_EQ(std::exchange(a.status, KV_OK), status);
    const Answer own = flash3(w.m, 300, P, z);
    expect_same(a, own, 1e-8);
    EXPECT_EQ(through_host(w.m, 300, P, z, r, mute).status, KV_NO_START);
    if (!(own.V > 0.0)) continue;
    host.lv_calls = 0;
    expect_same(flash3(w.m, 300, P, z, 1, &r, own), own, 1e-8);
    EXPECT_EQ(host.lv_calls, 0);
  }
  EXPECT_EQ(host.ll_calls, 0);
}

TEST(HostFlashes, LiquidsInTheOrderOfTheHost) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  const Routines r = Routines().set(KV_ROUTINE_LIQUID_ORDER, lightness);
  const Routines none = Routines().set(KV_ROUTINE_LIQUID_ORDER, no_order);
  for (const State& s : {kOneToThree[0], kOneToThree[2]}) {
    expect_same(flash3(m, s.T, s.P, s.z, 0, &none), flash3(m, s.T, s.P, s.z), 1e-12);
    Answer a = flash3(m, s.T, s.P, s.z, 0, &r);
    a.beta = 1.0 - a.beta - a.V;
    std::swap(a.xA, a.xB);
    expect_same(a, flash3(m, s.T, s.P, s.z), 1e-12);
  }
}

// The records of one call: numbers of lines by label and their values, from the last header of three phases on,
// and the indices of all such headers.
struct Trace {
  std::map<std::string, int> count;
  std::map<std::string, Vector> values;
  Vector indices;
  Answer answer;
  double first(const std::string& label) { return values[label].empty() ? NAN : values[label].front(); }
  double last(const std::string& label) { return values[label].empty() ? NAN : values[label].back(); }
  Trace(Mixture& m, double T, double P, const Vector& z, int flag, int options = 0, Answer start = {}) {
    const ScratchFolder folder;
    m.record.trace_flag = flag;
    m.record.trace_unit = 17;
    answer = flash3(m, T, P, z, options, nullptr, std::move(start));
    m.record.trace_flag = 0;
    for (const std::string& line : lines_of("fort.17")) {
      if (line == " FLASH T,P LIQUIDE-LIQUIDE-VAPEUR") {
        count.clear();
        values.clear();
      }
      const std::size_t colon = line.find(':');
      ++count[line.substr(0, colon)];
      if (colon != std::string::npos)
        values[line.substr(0, colon)].push_back(std::atof(line.c_str() + colon + 1));
      if (line.rfind(" INDICE D'INITIALISATION ", 0) == 0) indices.push_back(values[line.substr(0, colon)][0]);
      if (std::atoi(line.c_str()) == static_cast<int>(z.size())) ++count["rows"];
    }
  }
};

TEST(ThreePhaseTrace, ShortAndLong) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  for (const int flag : {1, 2}) {
    Trace trace(m, 300, 20, kThree, flag);
    auto& count = trace.count;
    EXPECT_EQ(count[" FLASH T,P LIQUIDE-LIQUIDE-VAPEUR"], 1);
    EXPECT_EQ(count["  I N I T I A L I S A T I O N "], 1);
    EXPECT_EQ(count[" INDICE D'INITIALISATION "], 1);
    EXPECT_EQ(count[" TAUX DE VAPORISATION  "], 1);
    const int passes = count[" ITERATION "];
    EXPECT_GE(passes, 3);
    EXPECT_EQ(count[" CRITERE "], passes);
    EXPECT_EQ(count[" FACTEUR DE RELAXATION "], passes);
    EXPECT_EQ(count[" METHODE = GLOBALE"] + count[" METHODE = QUASI-LINEARISATION"], passes);
    // Amounts and compositions: of the start, and in the long form of every pass.
    const int tables = flag == 1 ? 0 : passes;
    EXPECT_EQ(count[" TAUX DE VAPORISATION "], tables);
    EXPECT_EQ(count[" TAUX DE PARTAGE LIQUIDE-LIQUIDE "], 1 + tables);
    EXPECT_EQ(count["rows"], 1 + tables);
    if (flag == 2) {
      EXPECT_NEAR(trace.last(" TAUX DE VAPORISATION "), trace.answer.V, 1e-5);
    }
  }
}

// With free water the answer of vapour and liquid is what the three phases start from; an estimate has index 0.
TEST(ThreePhaseTrace, FreeWaterAndEstimates) {
  Watered w;
  w.m.use();
  const Answer own = flash3(w.m, 300, 20, kThree);
  for (const int given : {0, 1}) {
    Trace trace(w.m, 300, 20, kThree, 2, given, given != 0 ? own : Answer{});
    EXPECT_EQ(trace.indices, Vector{given != 0 ? 0.0 : 4.0});
    EXPECT_NEAR(trace.last(" TAUX DE PARTAGE LIQUIDE-LIQUIDE "), own.beta, 1e-9);
    EXPECT_EQ(trace.count["rows"], 1);
  }
  // Where beta and V fill the feed, beta is a part of the liquids: A and B as they are, or all of them A.
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  Answer three = flash3(m, 300, 20, kThree);
  const double beta = three.beta;
  three.beta /= 1.0 - three.V;
  ASSERT_GT(three.beta + three.V, 1.0);
  Trace trace(m, 300, 20, kThree, 1, 1, three);
  EXPECT_EQ(trace.indices, Vector{0.0});
  EXPECT_NEAR(trace.first(" TAUX DE PARTAGE LIQUIDE-LIQUIDE "), beta, 1e-9);
  const Vector z{0.4, 0.6, 1e-7};
  Answer two = flash3(m, 300, 10, z);
  std::swap(two.xA, two.xB);
  two.beta = 1.0;
  Trace marked(m, 300, 10, z, 1, 1, two);
  EXPECT_EQ(marked.values[" INDICE INITIALISATION "], Vector{0.0});
  EXPECT_NEAR(marked.answer.V, two.V, 1e-9);
}

// The factor of the settings is that of the first passes, and damps them; Newton's method begins with 1 and
// goes on with the factor that was last taken.
TEST(ThreePhaseTrace, RelaxationFactor) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  m.record.NEW = 2;  // 8 passes
  const Trace whole(m, 300, 20, kThree, 1);
  m.record.relaxation = 0.25;
  const Trace damped(m, 300, 20, kThree, 1);
  expect_same(damped.answer, whole.answer, 1e-9);
  const Vector& factors = damped.values.at(" FACTEUR DE RELAXATION ");
  ASSERT_GT(factors.size(), 9u);
  EXPECT_EQ(whole.values.at(" FACTEUR DE RELAXATION ").front(), 1.0);
  for (std::size_t pass = 0; pass < 8; ++pass) EXPECT_EQ(factors[pass], 0.25);
  for (std::size_t pass = 9; pass < factors.size(); ++pass) EXPECT_LE(factors[pass], factors[pass - 1]);
  EXPECT_GT(damped.values.at(" CRITERE ")[3], 5.0 * whole.values.at(" CRITERE ")[3]);
}

// With one pass nothing ends, and every start of the solver's own is tried.
TEST(ThreePhaseTrace, EveryStartIsTried) {
  Mixture m = mixture_of({"methane", "n_butane", "water", "propane"});
  m.use();
  m.record.ITEMAX = 1;
  const Trace trace(m, 300, 20, {0.4, 0.4, 0.2, 0.0}, 1);
  EXPECT_EQ(trace.answer.status, KV_NOT_CONVERGED);
  EXPECT_EQ(trace.indices, (Vector{4, 4, 4, 2, 1, 3, 5}));
}

// K is 1e15 where the phase below lacks a component, be it absent or a trace below 1e-15, which counts as 0.
TEST(Conventions, ComponentsThatAPhaseLacks) {
  Mixture m = mixture_of({"methane", "n_butane", "water", "propane", "n_eicosane"});
  m.use();
  for (const double P : {20.0, 150.0}) {
    const Answer a = flash3(m, 300, P, {0.4, 0.389, 0.2, 0.0, 0.011});
    ASSERT_EQ(a.status, KV_OK);
    ASSERT_GT(a.beta, 0.0);
    EXPECT_EQ(a.KLL[3], 1e15);
    EXPECT_EQ(a.xB[4], 0.0);  // of water
    EXPECT_EQ(a.KLL[4], 1e15);
    if (a.V > 0.0) {
      EXPECT_EQ(a.KLV[3], 1e15);
    }
  }
}

}  // namespace
