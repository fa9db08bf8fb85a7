// Forwarding to the pure-component library and the units of what comes back.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "fakes/fake_record.hpp"
#include "frame/provider.hpp"
#include "loader_spy.hpp"

namespace {

using namespace kestrune::frame;

class Provider : public testing::Test {
 protected:
  void SetUp() override {
    fresh_start();
    EXPECT_TRUE(loader_spy().opened.empty());
    pure_free();
    fake = reinterpret_cast<FakePure* (*)()>(dlsym(state().pure_library, "fake_pure"))();
    answer(0, 0.0, "");
  }
  void TearDown() override { reset_state(); }
  void answer(int32_t status, double result, const char* unit) {
    *fake = {};
    fake->status = status;
    fake->result = result;
    std::memset(fake->unit, ' ', 15);
    std::memcpy(fake->unit, unit, std::strlen(unit));
  }
  FakePure* fake = nullptr;
  const int32_t water = 7732185;
  const double T = 300.0;
};

// Every property reaches the entry of its own name, once looked up.
TEST_F(Provider, EachPropertyHasItsEntry) {
  const char* const names[] = {
#define NAME(name) #name "_EX",
      KV_PURE_PROPERTIES(NAME) KV_PURE_INTEGRALS(NAME)
#undef NAME
  };
  const std::size_t count = static_cast<std::size_t>(PureProperty::count);
  ASSERT_EQ(count, 31u);
  const std::size_t before = loader_spy().looked_up.size();
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i < count; ++i) {
      StatusCode status = -1;
      pure_value(static_cast<PureProperty>(i), water, T, status);
      EXPECT_STREQ(fake->entry, names[i]);
      EXPECT_EQ(fake->cas, water);
      EXPECT_EQ(fake->option, 1);
      const std::int32_t equation = 100;
      const std::int32_t check = pure_check(static_cast<PureProperty>(i), &water, &equation);
      if (i >= 20) {
        EXPECT_EQ(check, 2);
        continue;
      }
      EXPECT_EQ(check, 0);
      EXPECT_EQ(std::string(fake->entry), std::string("Check") + names[i]);
      EXPECT_EQ(fake->option, 100);
    }
  }
  EXPECT_EQ(loader_spy().looked_up.size() - before, 31u + 20u);
}

TEST_F(Provider, PassThroughAndTableFormHandTheArgumentsOn) {
  const double a = 1.0, b = 2.0;
  const int32_t table[2] = {101, 0};
  int32_t status = 9;
  double result = 0.0;
  char unit[15];
  answer(3, 7.0, "Pa");
  EXPECT_EQ(pure_evaluate(PureProperty::VaporPressure, &water, &T, &a, &b, table, &status, &result, unit),
            1003);
  const void* const sent[8] = {&water, &T, &a, &b, table, &status, &result, unit};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(fake->arguments[i], sent[i]) << i;
  EXPECT_EQ(status, 1003);
  EXPECT_EQ(result, 7.0);
  EXPECT_EQ(std::string(unit, 15), "Pa             ");

  answer(0, 8.0, "mmHg");
  EXPECT_EQ(pure_by_choice(PureProperty::VaporPressure, &water, &T, &a, &b, &result, unit, &status), 0);
  EXPECT_EQ(fake->option, 1);
  EXPECT_EQ(result, 8.0);
}

TEST_F(Provider, StatusesGetTheOffsetButNotTheChecks) {
  for (const int32_t code : {0, 1, 2, 3, 4, -7}) {
    answer(code, 101325.0, "Pa");
    const StatusCode expected = code == 0 ? 0 : 1000 + code;
    StatusCode status = -1;
    const double value = pure_value(PureProperty::VaporPressure, water, T, status);
    EXPECT_EQ(status, expected);
    EXPECT_EQ(value, code == 0 || code == 3 ? 1.0 : 0.0);
    EXPECT_EQ(pure_correlation_info(&water, &water, &water, nullptr, nullptr, nullptr, nullptr), expected);
    EXPECT_EQ(pure_set_temp_folder("", &water), expected);
    EXPECT_EQ(pure_set_thermo_codes(&water, &water), expected);
    EXPECT_EQ(pure_free(), expected);
    EXPECT_EQ(pure_check(PureProperty::VaporPressure, &water, &water), code);
    EXPECT_EQ(pure_available_correlations(&water, &water, nullptr), code);
  }
}

TEST_F(Provider, ValuesComeInWorkingUnits) {
  StatusCode status = -1;
  answer(0, 5.0, "cP");
  EXPECT_EQ(pure_value(PureProperty::GasViscosity, water, T, status), 5.0);
  // No unit text: that of the table for the databank's own choice.
  answer(0, 5.0, "");
  EXPECT_EQ(pure_value(PureProperty::GasViscosity, water, T, status), 5000.0);
  EXPECT_EQ(status, 0);
  // A unit that measures something else is no value.
  answer(0, 5.0, "W/m/K");
  EXPECT_EQ(pure_value(PureProperty::GasViscosity, water, T, status), 0.0);
  EXPECT_EQ(status, KV_PURE_NO_CORRELATION);
}

std::string padded(const char* unit) {
  return (unit + std::string(15, ' ')).substr(0, 15);
}

// The same quantity in every unit that it may come in.
TEST(Units, OneQuantityInAllItsUnits) {
  struct Row {
    const char* unit;
    double value;
    WorkingUnit target;
    double expected;
  };
  const Row rows[] = {
      {"J/kmol/K", 8314.46261815324, WorkingUnit::cal_mol_K, 1.98720425864083},  // the gas constant
      {"J/mol/K", 8.31446261815324, WorkingUnit::cal_mol_K, 1.98720425864083},
      {"cal/mol/K", 1.98720425864083, WorkingUnit::cal_mol_K, 1.98720425864083},
      {"J/kmol", 40.65e6, WorkingUnit::cal_mol, 9715.58317399618},  // boiling water
      {"cal/mol", 9715.58317399618, WorkingUnit::cal_mol, 9715.58317399618},
      {"Pa", 101325.0, WorkingUnit::atm, 1.0},
      {"mmHg", 760.0, WorkingUnit::atm, 1.0},
      {"atm", 1.0, WorkingUnit::atm, 1.0},
      {"m3/kmol", 0.018, WorkingUnit::cm3_mol, 18.0},
      {"cm3/mol", 18.0, WorkingUnit::cm3_mol, 18.0},
      {"W/m/K", 0.6, WorkingUnit::W_m_K, 0.6},
      {"cal/s/cm/K", 0.6 / 418.4, WorkingUnit::W_m_K, 0.6},
      {"microcal/s/cm/K", 0.6e6 / 418.4, WorkingUnit::W_m_K, 0.6},
      {"Pa.s", 1.0e-5, WorkingUnit::cP, 0.01},
      {"cP", 0.01, WorkingUnit::cP, 0.01},
      {"microP", 100.0, WorkingUnit::cP, 0.01},
      {"kmol/m3", 55.5, WorkingUnit::kmol_m3, 55.5},
      {"kg/m3", 998.0, WorkingUnit::g_cm3, 0.998},
      {"N/m", 0.0728, WorkingUnit::N_m, 0.0728},
      {"dyne/cm", 72.8, WorkingUnit::N_m, 0.0728},
      {"mol/l/atm", 1.3e-3, WorkingUnit::mol_l_atm, 1.3e-3},
  };
  for (const Row& row : rows)
    EXPECT_NEAR(convert_unit(row.value, padded(row.unit).c_str(), row.target), row.expected,
                1e-14 * row.expected)
        << row.unit;
  for (const char* unit : {"Pa", "cal/mol", "pa", "", "J/kmol/K"})
    EXPECT_TRUE(std::isnan(convert_unit(1.0, padded(unit).c_str(), WorkingUnit::cP))) << unit;
}

TEST(Units, EveryTableBeginsWithTheDatabanksChoiceInAConvertibleUnit) {
  for (int32_t i = 0; i < static_cast<int32_t>(PureProperty::count); ++i) {
    const auto property = static_cast<PureProperty>(i);
    const UnitTable table = unit_table(property);
    ASSERT_GT(table.count, 0u);
    EXPECT_EQ(table.rows[0].equation, 1);
    EXPECT_FALSE(std::isnan(convert_unit(1.0, table.rows[0].unit, working_unit(property)))) << i;
    for (std::size_t k = 0; k < table.count; ++k) EXPECT_EQ(std::strlen(table.rows[k].unit), 15u) << i;
  }
}

}  // namespace
