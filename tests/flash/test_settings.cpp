// Flash settings out of the record, and the labels of the liquid-liquid trace.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/scratch_folder.hpp"
#include "flash/settings.hpp"
#include "flash/trace_flash.hpp"

using namespace kestrune;
using namespace kestrune::flash;

namespace {

eos::Context with(MixtureRecord& r) {
  return {&r, nullptr, nullptr, r.trace_flag};
}

TEST(Settings, ABlockOfZerosTakesTheDefaultsAnyOtherStands) {
  MixtureRecord r{};
  r.count = 9;
  const Settings none = copy_settings(with(r));
  EXPECT_EQ(none.CRIT, KV_DEFAULT_CRIT);
  EXPECT_EQ(none.CLIM, KV_DEFAULT_CLIM);
  EXPECT_EQ(none.EPS, KV_DEFAULT_EPS);
  EXPECT_EQ(none.ITEMAX, KV_DEFAULT_ITEMAX);
  EXPECT_EQ(none.relaxation, KV_DEFAULT_RELAXATION);
  EXPECT_EQ(pure_tolerance(r), KV_DEFAULT_PURE_TOLERANCE);
  EXPECT_EQ(sum_tolerance(r), KV_DEFAULT_SUM_TOLERANCE);
  for (const double given : {0.0, -1.0, 1e-9, static_cast<double>(INFINITY)}) {
    r.CRIT = r.CLIM = r.EPS = r.relaxation = r.pure_tolerance = r.sum_tolerance = given;
    r.ITEMAX = r.NEW =
        given > 0.0 ? 2147483647 : static_cast<int>(given);  // NEW (n + 1) has no room in 32 bits
    r.trace_flag = -1;
    r.trace_unit = 33;
    const Settings s = copy_settings(with(r));
    EXPECT_EQ(s.CRIT, given);
    EXPECT_EQ(s.CLIM, given);
    EXPECT_EQ(s.EPS, given);
    EXPECT_EQ(s.relaxation, given < 1.0 ? given : KV_DEFAULT_RELAXATION);
    EXPECT_EQ(s.ITEMAX, given > 0.0 ? KV_MOST_ITERATIONS : 0);
    EXPECT_EQ(s.global_budget, given > 0.0 ? 1000000000 : 0);
    EXPECT_EQ(pure_tolerance(r), given);
    EXPECT_EQ(sum_tolerance(r), given < 1.0 ? given : KV_DEFAULT_SUM_TOLERANCE);
    EXPECT_TRUE(s.trace);
    EXPECT_EQ(s.trace_unit, 33);
  }
  r.CRIT = 1e-9;
  r.NEW = 4;
  EXPECT_EQ(copy_settings(with(r)).global_budget, 40);
}

TEST(Settings, RobustModels) {
  for (const int code : {0, 6, 7, 8, 9}) {
    MixtureRecord r{};
    r.relaxation = code == 8 ? 0.05 : 0.9;
    r.ITEMAX = code == 8 ? 5000 : 50;
    Settings s = copy_settings(with(r));
    apply_robust_settings({code, 0}, s);
    const bool robust = code == 7 || code == 8;
    EXPECT_EQ(s.robust, robust);
    EXPECT_EQ(s.relaxation, code == 7 ? 0.1 : r.relaxation);
    EXPECT_EQ(s.ITEMAX, code == 7 ? 1000 : r.ITEMAX);
  }
}

// Model codes, W, cold or warm: the factor and the limit; of two liquids the initialisation index in place of
// W.
TEST(Settings, VapourFractionsAndTwoLiquids) {
  struct Case {
    ModelOptions model;
    double factor, W;
    bool cold;
    int ITEMAX;
    double factor_then;
    int ITEMAX_then;
    bool robust;
  };
  for (const Case& c : {Case{{0, 0}, 1.0, 0.5, false, 50, 1.0, 50, false},
                        {{0, 0}, 1.0, 0.5, true, 50, 0.1, 500, false},
                        {{7, 0}, 1.0, 0.5, false, 50, 0.55, 200, true},
                        {{8, 0}, 1.0, 1.0, true, 50, 0.01, 500, true},
                        {{11, 0}, 1.0, 0.0, false, 300, 1.0, 300, true},
                        {{12, 0}, 1.0, 0.2, false, 50, 0.82, 200, true},
                        {{0, 40}, 1.0, 0.5, false, 50, 0.55, 200, true},
                        {{0, -1}, 1.0, 0.5, false, 50, 0.55, 200, true},
                        {{0, 3}, 1.0, 0.5, false, 50, 1.0, 50, false},
                        {{7, 40}, 0.999, 0.5, false, 50, 0.999, 50, false}}) {
    SCOPED_TRACE(testing::Message() << c.model.first << ' ' << c.model.second << ' ' << c.W << ' ' << c.cold);
    MixtureRecord r{};
    r.relaxation = c.factor;
    r.ITEMAX = c.ITEMAX;
    Settings s = copy_settings(with(r));
    apply_quality_settings(c.model, c.W, c.cold, s);
    EXPECT_NEAR(s.relaxation, c.factor_then, 1e-15);
    EXPECT_EQ(s.ITEMAX, c.ITEMAX_then);
    EXPECT_EQ(s.robust, c.robust);
  }
  for (const int index : {0, 1})
    for (const ModelOptions model : {kModelOptions, ModelOptions{4, 0}, ModelOptions{0, 3}}) {
      MixtureRecord r{};
      r.relaxation = 0.05;
      r.ITEMAX = 5000;
      Settings s = copy_settings(with(r));
      apply_liquid_settings(model, index, s);
      const bool careful = index == 1 && model.first == 0 && model.second == 0;
      EXPECT_EQ(s.relaxation, careful ? 0.1 : 0.05);
      EXPECT_EQ(s.ITEMAX, careful ? 1000 : 5000);
    }
}

TEST(Settings, StartingTemperature) {
  double table[3 * 43] = {};
  MixtureRecord r{};
  r.count = 3;
  r.table = table;
  const auto column = [&](int k, double a, double b, double c) {
    const double values[] = {a, b, c};
    std::copy_n(values, 3, table + 3 * (k - 1));
  };
  column(KV_COL_BOILING_POINT, 100.0, 0.0, 1e20);
  column(KV_COL_TC, 150.0, 400.0, 0.0);
  column(KV_COL_TMIN_PSAT, 90.0, 1e21, 0.0);
  const double z[] = {0.2, 0.2, 0.6};
  struct Case {
    ModelOptions model;
    double estimate, T;
  };
  for (const Case& c : {Case{{0, 0}, 89.0, 298.15}, Case{{0, 0}, 91.0, 91.0}, Case{{0, 0}, 0.0, 298.15},
                        Case{{7, 0}, 0.0, 0.5 * (100.0 + 280.0)}, Case{{0, 40}, 0.0, 190.0},
                        Case{{7, 0}, 120.0, 120.0}, Case{{4, 0}, 300.0, 298.15}})
    EXPECT_DOUBLE_EQ(starting_temperature(c.model, r, z, c.estimate), c.T)
        << c.model.first << ' ' << c.estimate;
  column(KV_COL_TMIN_PSAT, 20.0, 0.0, 0.0);
  EXPECT_EQ(starting_temperature({4, 0}, r, z, 300.0), 25.0);
  column(KV_COL_TMIN_PSAT, 500.0, 0.0, 0.0);  // never above 200 K
  EXPECT_EQ(starting_temperature({0, 0}, r, z, 201.0), 201.0);
}

TEST(Trace, LabelsOfTwoLiquids) {
  const tests::ScratchFolder folder;
  MixtureRecord record{};
  record.count = 1;
  double beta = 0.25, x = 1, y = 1, K = 1, z = 1;
  IsothermalCall call;
  call.context = with(record);
  call.mode = Mode::liquid_liquid;
  call.index = 0;
  call.beta = &beta;
  call.x = &x;
  call.y = &y;
  call.K = &K;
  {
    support::TraceWriter writer(true, 11);
    FlashTrace trace{writer, call.mode};
    Iterate it;
    it.z = &z;
    trace_header(trace, call, copy_settings(call.context));
    trace_result(trace, call, it);
  }
  const auto lines = tests::lines_of("fort.11");
  ASSERT_EQ(lines.size(), 16u);
  EXPECT_EQ(lines[0], " FLASH T,P LIQUIDE-LIQUIDE");
  EXPECT_EQ(lines[10].rfind(" TAUX DE PARTAGE       :", 0), 0u);
  EXPECT_EQ(lines[13].rfind(" TAUX DE PARTAGE      :", 0), 0u);
  for (const char* head : {"NO", "XL1", "XL2", "ZF"}) EXPECT_NE(lines[11].find(head), std::string::npos);
  for (const char* head : {"NO", "XL1", "XL2", "AKL"}) EXPECT_NE(lines[14].find(head), std::string::npos);
}

}  // namespace
