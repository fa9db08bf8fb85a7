// From a composition to the record, the tables and the group data that the calculation library reads.
#include <gtest/gtest.h>

#include "mixture.hpp"
#include "support.hpp"

using namespace kestrune::host;

namespace {

Mixture mixture_of(const char* text, Basis basis = Basis::mole, const char* set = "2022") {
  Composition c;
  c.basis = basis;
  read_inline(text, c, false);
  return build_mixture(c, interaction_set(set));
}

}  // namespace

TEST(mixture, amounts_are_normalised_on_either_basis) {
  const Mixture exact = mixture_of("methane=0.75,ethane=0.25");
  EXPECT_FALSE(exact.sum_was_off());
  const Mixture percent = mixture_of("methane=75,ethane=25");
  EXPECT_TRUE(percent.sum_was_off());
  EXPECT_DOUBLE_EQ(percent.z[0], 0.75);
  EXPECT_EQ(percent.given_sum, 100.0);
  // 16.04246 g of methane and 30.06904 g of ethane are a mole each.
  const Mixture mass = mixture_of("methane=16.04246,ethane=30.06904", Basis::mass);
  EXPECT_DOUBLE_EQ(mass.z[0], 0.5);
  EXPECT_NEAR(mass.molar_mass, 23.05575, 1e-12);
  EXPECT_TRUE(host_test::contains(host_test::error_of([] { mixture_of("methane=0"); }), "zero"));
}

TEST(mixture, component_table_has_every_column_in_its_place) {
  const Mixture m = mixture_of("methane=0.5,water=0.4,triethylene_glycol=0.1");
  const auto at = [&](int i, int column) {
    return m.table[static_cast<std::size_t>((column - 1) * 3 + i - 1)];
  };
  ASSERT_EQ(m.table.size(), 43u * 3u);
  // Constants of water as the published tables print them.
  EXPECT_EQ(at(2, 2), 18.01528);
  EXPECT_EQ(at(2, 3), 273.16);
  EXPECT_NEAR(at(2, 4), 373.1243, 1e-9);
  EXPECT_EQ(at(2, 5), 647.096);
  EXPECT_NEAR(at(2, 6), 22064000.0 / 101325.0, 1e-12);
  EXPECT_EQ(at(2, 7), 55.9472);
  EXPECT_EQ(at(2, 8), 0.22944);
  EXPECT_EQ(at(2, 9), 0.344861);
  EXPECT_EQ(at(2, 10), 1.85);
  EXPECT_EQ(at(2, 11), 273.16);
  EXPECT_EQ(at(2, 41), 20.0);
  EXPECT_EQ(at(2, 43), 7732185.0);
  EXPECT_EQ(at(1, 41), 0.0);
  EXPECT_EQ(at(3, 10), 0.0);  // unknown dipole moment
  for (int column = 12; column <= 42; ++column) {
    EXPECT_EQ(at(2, column), column == 41 ? 20.0 : 0.0) << column;
  }
  const double* table = m.record.table;
  EXPECT_EQ(table, m.table.data());
  EXPECT_EQ(m.record.count, 3);
}

TEST(mixture, group_data_cover_the_groups_that_occur) {
  const Mixture m = mixture_of("n-pentane=0.4,methane=0.3,CO2=0.2,toluene=0.1");
  EXPECT_EQ(m.groups, (std::vector<int>{1, 2, 5, 7, 8, 12}));
  EXPECT_EQ(m.counts, (std::vector<std::int32_t>{2, 3, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0,
                                                 0, 0, 0, 0, 0, 1, 1, 0, 0, 5, 1, 0}));
  EXPECT_EQ(m.A[1 * 6 + 0], 65.54);  // CH3/CH2, upper triangle of a column-major matrix
  EXPECT_EQ(m.B[1 * 6 + 0], 105.7);
  EXPECT_EQ(m.A[0 * 6 + 1], 0.0);
  EXPECT_EQ(mixture_of("propane=1,nC4=1", Basis::mole, "original").A[1 * 2 + 0], 74.81);
  EXPECT_TRUE(m.missing.empty());
}

TEST(mixture, missing_group_pairs_are_named_with_the_components_that_need_them) {
  const auto names = [](const char* text, const char* set = "2022") {
    return joined(missing_in_words(mixture_of(text, Basis::mole, set)), "; ");
  };
  EXPECT_EQ(names("methane=0.9,oxygen=0.1,nitrogen=0.1"), "CH4 / O2 (methane with oxygen)");
  EXPECT_EQ(names("methane=0.9,methanol=0.1"), "methanol has no PPR78 groups at all");
  EXPECT_EQ(names("CO2=0.9,MeSH=0.1"), "");
  EXPECT_EQ(names("CO2=0.9,MeSH=0.1", "original"), "CO2 / SH (carbon dioxide with methyl mercaptan)");
  EXPECT_EQ(names("methane=0.9,water=0.1", "original"), "CH4 / H2O (methane with water)");
  // A component alone needs no interaction, whatever its groups are.
  EXPECT_EQ(names("methanol=1"), "");
  EXPECT_EQ(names("helium=1"), "");
}
