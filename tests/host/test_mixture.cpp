// From a composition to the record, the tables and the group data that the calculation library reads.
#include <gtest/gtest.h>

#include <cmath>

#include "mixture.hpp"
#include "split.hpp"
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

TEST(mixture, the_pieces_of_a_fraction_keep_its_moles_mass_and_volume) {
  for (const char* text :
       {"name=C7+, M=218, SG=0.8515", "name=C7+, M=143, SG=0.795, pieces=12, correlation=twu",
        "name=C10+, M=310, SG=0.89, alpha=1.7, pieces=4, PNA=5 3 2",
        "name=C7+, M=150, SG=0.8, curve=10:110, 50:170, 90:290 C, pieces=9"}) {
    const Realised r = realise(parse_definition(text, true), default_library_path());
    double moles = 0.0, mass = 0.0, M = 0.0, last = 0.0;
    for (const Part& p : r.parts) {
      moles += p.moles;
      mass += p.mass;
      M += p.moles * p.component.molar_mass;
      EXPECT_NEAR(p.mass / p.moles, p.component.molar_mass / *parse_definition(text, true).M, 1e-12) << text;
      EXPECT_GT(p.component.Tc, std::max(last, p.component.Tb)) << text;
      last = p.component.Tc;
    }
    EXPECT_NEAR(moles, 1.0, 1e-12) << text;
    EXPECT_NEAR(mass, 1.0, 1e-12) << text;
    EXPECT_NEAR(M / *parse_definition(text, true).M, 1.0, 1e-12) << text;
  }
}

// n-decane has Tc 617.7 K, Pc 21.1 bar, omega 0.49; within what the correlations promise;
// the gamma distribution with alpha 1 is 1 - exp(-x), with alpha 2 it is 1 - (1 + x) exp(-x).
TEST(mixture, correlations_of_fractions_meet_normal_decane_and_closed_forms) {
  for (const Correlation c : {Correlation::lee_kesler, Correlation::twu, Correlation::riazi_daubert}) {
    const CriticalConstants k = critical_constants(c, 447.3, 0.7342, 12.67);
    EXPECT_NEAR(k.Tc, 617.7, 4.0);
    EXPECT_NEAR(k.Pc, 21.1e5, 1.2e5);
    EXPECT_NEAR(k.omega, 0.49, 0.04);
  }
  EXPECT_NEAR(boiling_point(142.28, 0.7342), 447.3, 6.0);
  EXPECT_NEAR(molar_mass_of_cut(447.3, 0.7342), 142.28, 3.0);
  for (const double x : {1e-6, 0.3, 1.9, 2.1, 5.0, 40.0}) {
    EXPECT_NEAR(gamma_share(1.0, x), -std::expm1(-x), 1e-14);
    EXPECT_NEAR(gamma_share(2.0, x), 1.0 - (1.0 + x) * std::exp(-x), 1e-14);
  }
}
