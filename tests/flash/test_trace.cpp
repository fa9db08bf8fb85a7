// The trace of a flash: labels to the blank, the method in force, the change of method and the restart.
#include <gtest/gtest.h>

#include <cstdlib>

#include "common/flash_call.hpp"
#include "common/scratch_folder.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Traced {
  FlashResult result;
  std::vector<std::string> lines;
  int count(const std::string& start) const {
    int n = 0;
    for (const std::string& line : lines) n += line.rfind(start, 0) == 0;
    return n;
  }
  double value(const std::string& label, std::size_t from = 0) const {
    for (std::size_t k = from; k < lines.size(); ++k)
      if (lines[k].rfind(label, 0) == 0) return std::atof(lines[k].c_str() + label.size());
    return NAN;
  }
};

Traced traced(Mixture& m, double T, double P, int options = 1, const FlashResult& start = {}) {
  const ScratchFolder folder;
  m.record.trace_flag = 1;
  m.record.trace_unit = 17;
  Traced t{flash(m, T, P, kRichGasFeed, options, nullptr, start), lines_of("fort.17")};
  m.record.trace_flag = 0;
  return t;
}

Mixture rich() {
  Mixture m = mixture_of(kRichGas);
  m.use();
  return m;
}

const std::string kGlobal = " METHODE = GLOBALE", kNewton = " METHODE = QUASI-LINEARISATION";

TEST(Trace, RecordsInTheirOrder) {
  Mixture m = rich();
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
  EXPECT_EQ(t.count(" INDICE INITIALISATION INTERNE AU FLASH :"), 1);
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
  Mixture m = rich();
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
  Mixture m = rich();
  const FlashResult reference = flash(m, 280, 60, kRichGasFeed);
  m.record.ITEMAX = 2;
  const Traced t = traced(m, 280, 60);
  expect_same(t.result, reference, 1e-9);
  EXPECT_GE(t.count(" INDICE INITIALISATION INTERNE AU FLASH :"), 2);
  int damped = 0;
  for (std::size_t k = 0; k < t.lines.size(); ++k)
    if (t.lines[k].rfind(" FACTEUR DE RELAXATION :", 0) == 0)
      damped += t.value(" FACTEUR DE RELAXATION :", k) == 0.1;
  EXPECT_GT(damped, 0);
}

TEST(Trace, WarmStartsShowTheirEstimate) {
  Mixture m = rich();
  const FlashResult cold = flash(m, 280, 60, kRichGasFeed);
  const Traced warm = traced(m, 280, 60, 0, cold);
  EXPECT_EQ(warm.value(" INDICE INITIALISATION :"), 0);
  EXPECT_NEAR(warm.value(" TAUX DE VAPORISATION  :"), cold.beta, 1e-9);
}

TEST(Trace, NothingIsWrittenUnasked) {
  const ScratchFolder folder;
  Mixture m = rich();
  m.record.trace_unit = 17;
  flash(m, 280, 60, kRichGasFeed);
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

}  // namespace
