// Flash settings out of the record, and the labels of the liquid-liquid trace.
#include <gtest/gtest.h>

#include <cmath>

#include "common/scratch_folder.hpp"
#include "flash/settings.hpp"
#include "flash/trace_flash.hpp"

using namespace kestrune;
using namespace kestrune::flash;

namespace {

TEST(Settings, UnusableFieldsTakeTheirDefaults) {
  MixtureRecord r{};
  r.count = 9;
  for (const double bad : {0.0, -1.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
    r.CRIT = r.CLIM = r.EPS = r.relaxation = bad;
    r.ITEMAX = r.NEW = bad < 0 ? -5 : 0;
    const Settings s = copy_settings(r);
    EXPECT_EQ(s.CRIT, KV_DEFAULT_CRIT);
    EXPECT_EQ(s.CLIM, KV_DEFAULT_CLIM);
    EXPECT_EQ(s.EPS, KV_DEFAULT_EPS);
    EXPECT_EQ(s.relaxation, KV_DEFAULT_RELAXATION);
    EXPECT_EQ(s.ITEMAX, KV_DEFAULT_ITEMAX);
    EXPECT_EQ(s.global_budget, 0);
    EXPECT_FALSE(s.trace);
  }
  r = MixtureRecord{};
  r.count = 9;
  r.CRIT = 1e-9;
  r.CLIM = 2.0;
  r.EPS = 1e-3;
  r.ITEMAX = 7;
  r.NEW = 4;
  r.relaxation = 0.6;
  r.trace_flag = -1;
  r.trace_unit = 33;
  const Settings s = copy_settings(r);
  EXPECT_EQ(s.CRIT, 1e-9);
  EXPECT_DOUBLE_EQ(s.loose, std::pow(1e-9, 0.33));
  EXPECT_EQ(s.CLIM, 2.0);
  EXPECT_EQ(s.EPS, 1e-3);
  EXPECT_EQ(s.ITEMAX, 7);
  EXPECT_EQ(s.global_budget, 40);
  EXPECT_EQ(s.relaxation, 0.6);
  EXPECT_TRUE(s.trace);
  EXPECT_EQ(s.trace_unit, 33);
  r.NEW = 2147483647;  // the product has no room in 32 bits
  EXPECT_GE(copy_settings(r).global_budget, 1000000000);
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
