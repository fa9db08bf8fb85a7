// The traces of the flashes of two phases: labels to the blank, what each record says, nested flashes.
#if defined(__GNUC__) && !defined(__clang__)
// GCC 12 warns of its own <regex> under the address sanitizer (its bug 105562).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <regex>

#include "common/flash_call.hpp"
#include "common/scratch_folder.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Traced {
  FlashResult result;
  std::vector<std::string> lines;
  // Index of the first line from there on that begins so.
  std::size_t find(const std::string& start, std::size_t from = 0) const {
    while (from < lines.size() && lines[from].rfind(start, 0) != 0) ++from;
    return from;
  }
  int count(const std::string& start) const {
    int n = 0;
    for (const std::string& line : lines) n += line.rfind(start, 0) == 0;
    return n;
  }
  double value(const std::string& label, std::size_t from = 0) const {
    const std::size_t k = find(label, from);
    return k < lines.size() ? std::atof(lines[k].c_str() + label.size()) : NAN;
  }
  // Columns of the table whose heads are line k.
  std::vector<std::vector<double>> table(std::size_t k, std::size_t rows) const {
    std::vector<std::vector<double>> t(rows, std::vector<double>(4, NAN));
    for (std::vector<double>& row : t) {
      if (++k >= lines.size()) return t;
      std::sscanf(lines[k].c_str(), "%lf %lf %lf %lf", &row[0], &row[1], &row[2], &row[3]);
    }
    return t;
  }
};

// What a call leaves on its unit.
Traced traced(Mixture& m, const std::function<FlashResult()>& call) {
  const ScratchFolder folder;
  m.record.trace_flag = 1;
  m.record.trace_unit = 17;
  Traced t;
  t.result = call();
  t.lines = lines_of("fort.17");
  m.record.trace_flag = 0;
  return t;
}

Traced traced(Mixture& m, double T, double P, int options = 1, const FlashResult& start = {}) {
  return traced(m, [&] { return flash(m, T, P, kRichGasFeed, options, nullptr, start); });
}

Mixture rich_gas() {
  Mixture m = mixture_of(kRichGas);
  m.use();
  return m;
}

const std::string kInitial = " TAUX DE VAPORISATION  :",
                  kInternal = " INDICE INITIALISATION INTERNE AU FLASH :";
const std::string kGlobal = " METHODE = GLOBALE", kNewton = " METHODE = QUASI-LINEARISATION";

TEST(Trace, RecordsInTheirOrder) {
  Mixture m = rich_gas();
  m.record.NEW = 1000;
  m.record.ITEMAX = 321;
  const Traced t = traced(m, 280, 60);
  ASSERT_EQ(t.result.status, KV_OK);
  ASSERT_TRUE(t.result.two_phases());
  ASSERT_GT(t.lines.size(), 30u);
  const char* starts[] = {" FLASH T,P LIQUIDE-VAPEUR",
                          " ***",
                          "  I N I T I A L I S A T I O N ",
                          " ***",
                          " INDICE INITIALISATION :",
                          " ITEMAX :",
                          " NEW    :",
                          " CRIT   :",
                          " CLIM   :",
                          " EPS    :",
                          " TAUX DE VAPORISATION  :"};
  for (std::size_t k = 0; k < std::size(starts); ++k)
    EXPECT_EQ(t.lines[k].rfind(starts[k], 0), 0u) << t.lines[k];
  EXPECT_EQ(t.lines[0], starts[0]);
  EXPECT_EQ(t.lines[2], starts[2]);
  EXPECT_EQ(t.value(" INDICE INITIALISATION :"), 1);
  EXPECT_EQ(t.value(" ITEMAX :"), 321);
  EXPECT_EQ(t.value(" NEW    :"), 1000);
  EXPECT_EQ(t.value(" CRIT   :"), KV_DEFAULT_CRIT);
  for (const char* head : {"NO", "XL", "YV", "ZF"}) EXPECT_NE(t.lines[11].find(head), std::string::npos);
  EXPECT_EQ(t.count(kInternal), 1);
  // Method, factor, counter and error, in this order, counters from 1.
  int iteration = 0;
  for (std::size_t k = 0; k + 3 < t.lines.size(); ++k) {
    if (t.lines[k].rfind(" METHODE = ", 0) != 0) continue;
    EXPECT_EQ(t.lines[k + 1].rfind(" FACTEUR DE RELAXATION :", 0), 0u);
    EXPECT_EQ(t.value(" ITERATION :", k + 2), ++iteration);
    EXPECT_EQ(t.lines[k + 2].rfind(" ITERATION :", 0), 0u);
    EXPECT_EQ(t.lines[k + 3].rfind(" CRITERE :", 0), 0u);
  }
  EXPECT_GE(iteration, 2);
  const std::size_t end = t.lines.size() - 12;
  EXPECT_EQ(t.lines[end].rfind(" TAUX DE VAPORISATION :", 0), 0u);
  EXPECT_NEAR(t.value(" TAUX DE VAPORISATION :", end), t.result.beta, 1e-9);
  for (const char* head : {"NO", "XL", "YV", "AK"}) EXPECT_NE(t.lines[end + 1].find(head), std::string::npos);
  EXPECT_EQ(std::atoi(t.lines.back().c_str()), 10);
}

TEST(Trace, ChangeOfMethodFollowsItsBudget) {
  Mixture m = rich_gas();
  for (const Condition& c : {Condition{280, 60}, Condition{255, 80}}) {
    m.record.NEW = 1000;
    m.record.ITEMAX = 5000;
    const Traced global = traced(m, c.T, c.P);
    m.record.NEW = 0;
    const Traced both = traced(m, c.T, c.P);
    EXPECT_GT(global.count(kGlobal), 5);
    EXPECT_EQ(global.count(kNewton), 0);
    EXPECT_GT(both.count(kNewton), 0);
    EXPECT_GE(both.count(kGlobal), 3);
    EXPECT_LT(both.count(kGlobal) + both.count(kNewton), global.count(kGlobal));
    expect_same(both.result, global.result, 1e-9);
    // CLIM below every error that has decreased three times: no change.
    m.record.CLIM = 1e-14;
    EXPECT_EQ(traced(m, c.T, c.P).count(kNewton), 0);
    m.record.CLIM = KV_DEFAULT_CLIM;
    // The last traced error is the accepted one.
    EXPECT_LE(both.value(" CRITERE :", both.lines.size() - 15), KV_DEFAULT_CRIT);
  }
}

TEST(Trace, TheIterationLimitRestartsOnceWithTheRobustSettings) {
  Mixture m = rich_gas();
  const FlashResult reference = flash(m, 280, 60, kRichGasFeed);
  m.record.ITEMAX = 2;
  const Traced t = traced(m, 280, 60);
  expect_same(t.result, reference, 1e-9);
  EXPECT_GE(t.count(kInitial), 2);
  EXPECT_EQ(t.count(kInternal), 1);
  int damped = 0;
  for (std::size_t k = 0; k < t.lines.size(); ++k)
    if (t.lines[k].rfind(" FACTEUR DE RELAXATION :", 0) == 0)
      damped += t.value(" FACTEUR DE RELAXATION :", k) == 0.1;
  EXPECT_GT(damped, 0);
}

// Of a warm start the estimate, of a cold one what the solver begins with; the number of a start of its own
// once.
TEST(Trace, InitialStateIsWhatTheIterationTakes) {
  Mixture m = rich_gas();
  for (const Condition& c : kTwoPhases) {
    SCOPED_TRACE(testing::Message() << c.T << " K " << c.P << " atm");
    const FlashResult answer = flash(m, c.T, c.P, kRichGasFeed);
    if (!answer.two_phases()) continue;
    for (const int index : {0, 1}) {
      const Traced t = traced(m, c.T, c.P, index, answer);
      EXPECT_EQ(t.value(" INDICE INITIALISATION :"), index);
      EXPECT_EQ(t.count(kInternal), index);
      const double beta = t.value(kInitial);
      const auto rows = t.table(t.find(kInitial) + 1, 10);
      double apart = 0.0;
      for (std::size_t i = 0; i < 10; ++i) {
        const double x = rows[i][1], y = rows[i][2], z = rows[i][3];
        EXPECT_NEAR((1.0 - beta) * x + beta * y, z, 1e-9);
        apart += std::fabs(y - x);
        if (index == 0) {
          EXPECT_NEAR(x, answer.x[i], 1e-9);
          EXPECT_NEAR(y, answer.y[i], 1e-9);
        }
      }
      EXPECT_GT(apart, 1e-3);
      EXPECT_GT(t.find(kInternal), t.find(" METHODE"));
    }
  }
  // Free water: of several starts the number of one.
  Mixture wet = mixture_of({"methane", "n_butane", "n_hexane", "water"});
  wet.use();
  wet.record.flags = FreeWaterFlag;
  wet.record.solubility_a = 11.2;
  wet.record.solubility_b = 6290.0;
  for (const double T : {280.0, 320.0, 380.0})
    for (const double P : {2.0, 30.0, 120.0}) {
      const Traced t = traced(wet, [&] { return flash(wet, T, P, {0.4, 0.2, 0.2, 0.2}); });
      EXPECT_EQ(t.result.status, KV_OK);
      EXPECT_LE(t.count(kInternal), 1) << T << ' ' << P;
      EXPECT_GE(t.count(kInitial), 1);
    }
  m.use();
  // Nothing to iterate: the feed.
  const Traced gas = traced(m, 500, 1);
  EXPECT_EQ(gas.count(kInitial), 1);
  EXPECT_EQ(gas.table(gas.find(kInitial) + 1, 1)[0], (std::vector<double>{1, 0.7, 0.7, 0.7}));
}

// Accepted is the first pass from the second on whose error is CRIT at most, whatever it is that would go on.
TEST(Trace, NoPassFollowsTheOneThatMeetsTheCriterion) {
  Mixture m = mixture_of({"methane", "n_hexane", "water"});
  m.use();
  const std::vector<double> z{0.5, 0.3, 0.2};
  int solves = 0;
  for (const double CRIT : {1e-1, 1e-3, 1e-4, 1e-8, 1e-12})
    for (double T = 309.0; T < 450.0; T += 27.0)
      for (const double P : {1.0, 5.0, 20.0, 80.0}) {
        SCOPED_TRACE(testing::Message() << CRIT << ' ' << T << " K " << P << " atm");
        m.record.CRIT = CRIT;
        const Traced t = traced(m, [&] { return flash(m, T, P, z); });
        EXPECT_EQ(t.result.status, KV_OK);
        int pass = 0, met = 0;
        for (std::size_t k = t.find(" ITERATION :"); k < t.lines.size(); k = t.find(" ITERATION :", k + 1)) {
          const int next = static_cast<int>(t.value(" ITERATION :", k));
          EXPECT_EQ(next, next == 1 ? 1 : pass + 1);
          EXPECT_TRUE(met == 0 || next == 1) << "pass " << next << " after " << met;
          pass = next;
          met = pass >= 2 && t.value(" CRITERE :", k) <= CRIT ? pass : 0;
          solves += met != 0;
        }
      }
  EXPECT_GT(solves, 100);
}

// Two liquids: the initialisation index is the host's option, and with it come the careful settings.
TEST(Trace, TwoLiquidsByTheirIndex) {
  Mixture m = mixture_of({"methane", "hydrogen_sulfide"});
  m.use();
  const std::vector<double> z{0.7, 0.3};
  FlashResult r;
  for (auto* a : {&r.x, &r.y, &r.K}) a->resize(2);
  for (const int index : {0, 1}) {
    const Traced t = traced(m, [&] {
      r.status = FlashLLatTP(160, 60, z.data(), &m.record, nullptr, index, &r.beta, r.x.data(), r.y.data(),
                             r.K.data());
      return r;
    });
    ASSERT_TRUE(t.result.two_phases());
    EXPECT_EQ(t.lines[0], " FLASH T,P LIQUIDE-LIQUIDE");
    EXPECT_EQ(t.value(" INDICE INITIALISATION :"), index);
    EXPECT_EQ(t.count(kInternal), 1 - index);
    EXPECT_EQ(t.value(" ITEMAX :"), index == 1 ? 1000 : KV_DEFAULT_ITEMAX);
    EXPECT_EQ(t.value(" FACTEUR DE RELAXATION :"), index == 1 ? 0.1 : 1.0);
    EXPECT_EQ(t.count(" TAUX DE PARTAGE       :"), 1);
    EXPECT_EQ(t.count(" TAUX DE PARTAGE      :"), 1);
  }
}

struct EnergyResult {
  double T, liquid, vapour;
};
FlashResult energy(Mixture& m, const std::vector<double>& z, bool entropy, double wanted, double P,
                   EnergyResult& e, const ModelRoutines* routines = nullptr) {
  FlashResult r;
  for (auto* a : {&r.x, &r.y, &r.K}) a->resize(z.size());
  r.status = (entropy ? FlashLVatSP : FlashLVatHP)(wanted, P, z.data(), &m.record, routines, 1, &e.T, &r.beta,
                                                   r.x.data(), r.y.data(), r.K.data(), &e.liquid, &e.vapour);
  return r;
}

// A header with the temperature that is started from, a state in any case, and the summary behind the last one.
TEST(Trace, EnthalpyAndEntropy) {
  struct Case {
    std::vector<std::string> ids;
    std::vector<double> z;
    double H, S, P;
  };
  for (const Case& c : {Case{kRichGas, kRichGasFeed, -1500, -12, 30}, Case{kRichGas, kRichGasFeed, 1500, 0, 30},
                        Case{{"propane"}, {1.0}, -2000, -10, 5}, Case{{"propane"}, {1.0}, 2000, 5, 5}})
    for (const bool entropy : {false, true})
      for (const double start : {5.0, 250.0}) {
        SCOPED_TRACE(testing::Message() << c.ids[0] << ' ' << c.H << ' ' << entropy << ' ' << start);
        Mixture m = mixture_of(c.ids);
        m.use();
        for (int i = 0; i < m.n; ++i) m.at(i, KV_COL_TMIN_PSAT) = 77.0 + i;
        EnergyResult e{start, 0, 0};
        const double wanted = entropy ? c.S : c.H;
        const Traced t = traced(m, [&] { return energy(m, c.z, entropy, wanted, c.P, e); });
        ASSERT_EQ(t.result.status, KV_OK);
        EXPECT_EQ(t.lines[0], entropy ? " FLASH S,P" : " FLASH H,P");
        EXPECT_EQ(t.value(" T (K)  ="), start < 100.0 ? 298.15 : start);
        const std::size_t end = t.lines.size() - 10;
        const char* const last[] = {" T   :",
                                    " P   :",
                                    " TVAP:",
                                    entropy ? " SL  :" : " HL  :",
                                    entropy ? " SV  :" : " HV  :",
                                    " T (K)  =",
                                    "  TMIN (K)    = ",
                                    " P (ATM)=",
                                    entropy ? "  SF (CAL/MOL/K)=" : "  HF (CAL/MOL)=",
                                    "  TVAP="};
        const double values[] = {e.T, c.P,  t.result.beta, e.liquid, e.vapour,
                                 e.T, 77.0, c.P,           wanted,   t.result.beta};
        for (std::size_t k = 0; k < 10; ++k) {
          ASSERT_EQ(t.lines[end + k].rfind(last[k], 0), 0u) << t.lines[end + k];
          EXPECT_NEAR(t.value(last[k], end + k), values[k], 1e-9 * std::max(1.0, std::fabs(values[k])));
        }
      }
}

// The passes count from 1 up to the limit, the last of them meets the criterion; T below TMIN is not used.
TEST(Trace, VapourFractions) {
  Mixture m = rich_gas();
  FlashResult r;
  for (auto* a : {&r.x, &r.y, &r.K}) a->resize(10);
  const auto run = [&](double W, double T, int options, double& found) {
    return traced(m, [&, T] {
      found = T;
      r.status = FlashLVatWP(W, 30.0, kRichGasFeed.data(), &m.record, nullptr, options, &found, r.x.data(),
                             r.y.data(), r.K.data());
      return r;
    });
  };
  for (const double W : {0.0, 0.5, 1.0})
    for (const double CRIT : {1e-3, 1e-12, 1e-18}) {
      SCOPED_TRACE(testing::Message() << W << ' ' << CRIT);
      m.record.CRIT = CRIT;
      m.record.ITEMAX = 40;
      double T = 0.0, again = 0.0;
      Traced t = run(W, 0.0, 1, T);
      ASSERT_EQ(t.result.status, KV_OK);
      EXPECT_EQ(t.value(" ITEMAX :"), 400);
      EXPECT_EQ(t.value(" TEMPERATURE :"), 298.15);
      int pass = 0;
      for (std::size_t k = t.find(" ITERATION :"); k < t.lines.size(); k = t.find(" ITERATION :", k + 1)) {
        const int next = static_cast<int>(t.value(" ITERATION :", k));
        EXPECT_EQ(next, next == 1 ? 1 : pass + 1);
        pass = next;
        EXPECT_EQ(t.lines[k - 1].rfind(" TEMPERATURE :", 0), 0u);
        EXPECT_EQ(t.lines[k + 1].rfind(" CRITERE :", 0), 0u);
        EXPECT_GT(t.value(" FACTEUR DE RELAXATION :", k), 0.0);
      }
      ASSERT_GE(pass, 1);
      EXPECT_LE(t.value(" CRITERE :", t.lines.size() - 2), CRIT);
      // From below TMIN: the first pass is at the temperature that the header names.
      for (int i = 0; i < m.n; ++i) m.at(i, KV_COL_TMIN_PSAT) = 150.0;
      t = run(W, 149.0, 0, again);
      EXPECT_NEAR(again, T, 1e-6);
      EXPECT_EQ(t.value(" TEMPERATURE :"), 298.15);
      EXPECT_NEAR(t.value(" TEMPERATURE :", t.find(" ITERATION :") - 1), 298.15, 1e-9);
      for (int i = 0; i < m.n; ++i) m.at(i, KV_COL_TMIN_PSAT) = 0.0;
      // Few passes: no more than the limit.
      m.record.ITEMAX = 2;
      t = run(W, T + 8.0, 0, again);
      EXPECT_EQ(t.value(" ITEMAX :"), 2);
      for (std::size_t k = t.find(" ITERATION :"); k < t.lines.size(); k = t.find(" ITERATION :", k + 1)) {
        EXPECT_LE(t.value(" ITERATION :", k), 2);
      }
    }
}

// A host's coefficients, by a traced flash of its own on the way.
Mixture* nested = nullptr;
StatusCode KV_CALL with_a_flash(double T, double P, const double* x, MixtureRecord* m, std::int32_t phase,
                                std::int32_t selector, std::int32_t mask, double* ln_phi, double* dT,
                                double* dP, double* dn) {
  nested->record.trace_flag = 1;
  nested->record.trace_unit = 17;
  flash(*nested, 150.0, 20.0, {1.0});
  return (phase == KV_PHASE_GAS ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78)(
      T, P, x, m, selector, mask, ln_phi, dT, dP, dn);
}

// Whole records, and in the order of the calls: every flash inside another has its header before its result.
TEST(Trace, NestedFlashesComeOutWholeAndInOrder) {
  Mixture m = rich_gas(), oil = mixture_of({"methane", "n_butane", "water"});
  Mixture methane = mixture_of({"methane"});
  nested = &methane;
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(with_a_flash);
  const std::vector<double> z{0.4, 0.4, 0.2};
  std::vector<double> a(60);
  EnergyResult e{0, 0, 0};
  const std::function<FlashResult()> calls[] = {
      [&] { return energy(m, kRichGasFeed, false, -1500, 30, e); },
      [&] { return energy(m, kRichGasFeed, true, -12, 30, e); },
      [&] {
        FlashResult r;
        r.status = FlashLLVatHP(-5000, 20, z.data(), &oil.record, nullptr, 0, &a[0], &a[1], &a[2], &a[3], &a[6],
                                &a[9], &a[12], &a[15], &a[18], &a[19], &a[20]);
        return r;
      },
      [&] { return flash(methane, 150, 10, {1.0}, 1, &routines); }};
  // A title, stars, a label with its number, heads, or a row: never the beginning of one and the end of
  // another.
  const std::string real = "-?[0-9][.][0-9]{10}E[+-][0-9]{2,3}";
  const std::regex record(
      " FLASH [A-Z,-]+( [A-Z-]+)*| [*]+|  I N I T I A L I S A T I O N | METHODE = [A-Z-]+|"
      "  ?[A-Z][A-Z' /(),-]* *[:=] +(-?[0-9]+|" +
      real + ")|    NO( +[A-Z]{1,2}[AKLBVF0-9]*)+| +[0-9]+( +" + real + ")+");
  for (const auto& call : calls) {
    SCOPED_TRACE(&call - calls);
    Mixture& owner = &call - calls == 2 ? oil : &call - calls == 3 ? methane : m;
    owner.use();
    const Traced t = traced(owner, call);
    EXPECT_GT(t.count(" FLASH "), 1);
    int open = 0;
    for (const std::string& line : t.lines) {
      EXPECT_TRUE(std::regex_match(line, record)) << line;
      if (line == " FLASH T,P LIQUIDE-VAPEUR") ++open;
      if (line.rfind(" TAUX DE VAPORISATION :", 0) == 0 && open > 0) --open;
      EXPECT_GE(open, 0);
      EXPECT_LE(open, 2);
    }
  }
}

TEST(Trace, NothingIsWrittenUnasked) {
  const ScratchFolder folder;
  Mixture m = rich_gas();
  m.record.trace_unit = 17;
  flash(m, 280, 60, kRichGasFeed);
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

}  // namespace
