// Flash settings out of the record, and the labels of the liquid-liquid trace.
#include <gtest/gtest.h>

#include <cmath>

#include "common/scratch_folder.hpp"
#include "flash/settings.hpp"
#include "flash/trace_flash.hpp"

using namespace kestrune;
using namespace kestrune::flash;

namespace {

TEST(Settings, ABlockOfZerosTakesTheDefaultsAnyOtherStands) {
  MixtureRecord r{};
  r.count = 9;
  const Settings none = copy_settings(r);
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
    const Settings s = copy_settings(r);
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
  EXPECT_DOUBLE_EQ(copy_settings(r).loose, std::pow(1e-9, 0.33));
  EXPECT_EQ(copy_settings(r).global_budget, 40);
}

TEST(Settings, RobustModels) {
  for (const int code : {0, 6, 7, 8, 9}) {
    MixtureRecord r{};
    r.relaxation = code == 8 ? 0.05 : 0.9;
    r.ITEMAX = code == 8 ? 5000 : 50;
    Settings s = copy_settings(r);
    apply_robust_settings({code, 0}, s);
    const bool robust = code == 7 || code == 8;
    EXPECT_EQ(s.robust, robust);
    EXPECT_EQ(s.relaxation, code == 7 ? 0.1 : r.relaxation);
    EXPECT_EQ(s.ITEMAX, code == 7 ? 1000 : r.ITEMAX);
  }
}

TEST(Trace, LabelsOfTwoLiquids) {
  const tests::ScratchFolder folder;
  MixtureRecord record{};
  record.count = 1;
  double beta = 0.25, x = 1, y = 1, K = 1, z = 1;
  IsothermalCall call;
  call.mixture = &record;
  call.mode = Mode::liquid_liquid;
  call.index = 0;
  call.beta = &beta;
  call.x = &x;
  call.y = &y;
  call.K = &K;
  {
    support::TraceWriter trace(true, 11);
    trace_header(trace, call, copy_settings(record));
    trace_initial(trace, call, beta, &x, &y, &z);
    trace_result(trace, call);
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
