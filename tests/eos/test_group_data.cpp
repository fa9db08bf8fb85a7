// Conversion of the group data and the interaction parameters that come of it.
#include <gtest/gtest.h>

#include <cmath>

#include "eos_case.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

// k_ij of a mixture with its derivatives, [n * n].
struct Interactions {
  std::vector<double> k, first, second;
};

Interactions interactions(Mixture& m, const eos::GroupData& data, double T) {
  const auto n = static_cast<std::size_t>(m.n);
  std::vector<double> block(60000);
  support::Arena arena(block.data(), 8 * 60000);
  eos::Temperature t;
  Interactions r{std::vector<double>(n * n), std::vector<double>(n * n), std::vector<double>(n * n)};
  EXPECT_EQ(eos::prepare(T, context_with(m, data), 2, arena, t), KV_OK);
  eos::interaction_parameters(t, r.k.data(), r.first.data(), r.second.data());
  return r;
}

// Two components of two groups: CH4-like pure group 1, and one of both groups.
Mixture two_groups() {
  Mixture m;
  m.resize(2, 2);
  m.counts = {1, 0, 1, 3};
  m.A = {5.0, 77.0, 1.0, 5.0};  // upper triangle: A[0 + 1 * 2]
  m.B = {5.0, 77.0, 2.5, 5.0};
  for (int i = 0; i < 2; ++i) {
    m.at(i, KV_COL_TC) = 200.0 + 200.0 * i;
    m.at(i, KV_COL_PC) = 45.0;
    m.at(i, KV_COL_OMEGA) = 0.01 + 0.2 * i;
  }
  return m;
}

TEST(GroupData, UnitsSymmetryRatioFractionsAndDifferences) {
  Mixture m = two_groups();
  const eos::GroupData d = converted(m);
  EXPECT_EQ(d.A[2], 9.869232667160128);
  for (const double* matrix : {d.A, d.B, d.ratio}) {
    EXPECT_EQ(matrix[0], 0.0);
    EXPECT_EQ(matrix[3], 0.0);
    EXPECT_EQ(matrix[1], matrix[2]);
  }
  EXPECT_DOUBLE_EQ(d.B[1], 2.5 * 9.869232667160128);
  EXPECT_DOUBLE_EQ(d.ratio[1], 2.5);
  const double fractions[] = {1.0, 0.25, 0.0, 0.75};
  for (int k = 0; k < 4; ++k) EXPECT_EQ(d.fractions[k], fractions[k]);
  // differences(k, j, i) = fraction of k in j less that in i
  const double differences[] = {0, 0, -0.75, 0.75, 0.75, -0.75, 0, 0};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(d.differences[k], differences[k]) << k;
}

TEST(GroupData, ZeroInteractionsZeroTotalsAndEmptySets) {
  Mixture m = two_groups();
  m.A[2] = 0.0;  // A = 0 with B = 2.5: no ratio, no contribution
  m.counts = {0, 0, 1, 3};
  m.buffers[4].assign(5, -1.0);
  m.buffers[5].assign(9, -1.0);
  eos::GroupData d = converted(m);
  EXPECT_EQ(d.ratio[1], 0.0);
  EXPECT_EQ(d.fractions[0], 0.0);
  EXPECT_EQ(d.fractions[1], 0.25);
  for (int k = 0; k < 8; ++k) EXPECT_EQ(d.differences[k], 0.0);
  EXPECT_EQ(d.ratio[4], -1.0);  // beyond the four of the buffer

  Mixture one;
  one.resize(2, 1);
  one.counts = {1, 4};
  one.A = {3.0};
  one.B = {3.0};
  d = converted(one);
  EXPECT_EQ(d.A[0] + d.B[0] + d.ratio[0], 0.0);
  EXPECT_EQ(d.fractions[0] * d.fractions[1], 1.0);

  // Counts of a host are any numbers: their sum may not fit the same width.
  m.counts = {2147483647, 1, 1, 3};
  m.buffers[4].assign(4, -1.0);
  m.buffers[5].assign(8, -1.0);
  d = converted(m);
  EXPECT_EQ(d.fractions[0], 2147483647.0 / 2147483648.0);

  m.n = 0;  // nothing but the group arrays is touched
  m.buffers[1].assign(5, -1.0);
  d = converted(m);
  EXPECT_EQ(d.A[0], 0.0);
  EXPECT_EQ(d.A[2], 0.0);
}

TEST(GroupData, OnlyTheUpperTriangleCountsAndARepeatedCallReplaces) {
  Mixture m = two_groups(), changed = two_groups();
  changed.A[0] = changed.A[1] = changed.A[3] = changed.B[0] = changed.B[1] = changed.B[3] = NAN;
  eos::GroupData d = converted(m);
  const std::vector<double> before(d.A, d.A + 4);
  const eos::GroupData e = converted(changed);
  EXPECT_EQ(before, std::vector<double>(e.A, e.A + 4));
  m.A[2] = 2.0;
  d = converted(m);
  EXPECT_DOUBLE_EQ(d.A[1], 2 * 9.869232667160128);
  EXPECT_DOUBLE_EQ(d.ratio[1], 1.25);
}

// (delta_i - delta_j)^2/(2 delta_i delta_j), in which the constants of the equation cancel.
double difference_term(Mixture& m, double T) {
  double d[2];
  for (int i = 0; i < 2; ++i)
    d[i] = std::sqrt(
        eos::alpha_function(T, m.at(i, KV_COL_TC), m.at(i, KV_COL_OMEGA), false, false, nullptr, nullptr) *
        m.at(i, KV_COL_PC));
  return (d[0] - d[1]) * (d[0] - d[1]) / (2 * d[0] * d[1]);
}

TEST(Interactions, ReferenceTemperatureAndComponentsWithoutGroups) {
  Mixture m = two_groups();
  const double at_reference = interactions(m, converted(m), 298.15).k[1];
  m.B[2] = -40.0;
  EXPECT_EQ(interactions(m, converted(m), 298.15).k[1], at_reference);
  EXPECT_NE(interactions(m, converted(m), 350.0).k[1], at_reference);
  // E = -1/2 (2 (-0.75)(0.75) A) with A = 1 MPa
  const double factor = 3078.7575250928 / (6.3840346 * 6.3840346) * 45.0;
  double d[2];
  for (int i = 0; i < 2; ++i)
    d[i] =
        std::sqrt(factor * eos::alpha_function(298.15, m.at(i, 5), m.at(i, 9), false, false, nullptr, nullptr));
  EXPECT_NEAR(at_reference, (0.5625 * 9.869232667160128 - (d[0] - d[1]) * (d[0] - d[1])) / (2 * d[0] * d[1]),
              1e-14);
  for (const auto& counts : {std::vector<std::int32_t>{0, 0, 1, 3}, {1, 0, 0, 0}, {0, 0, 0, 0}}) {
    m.counts = counts;
    EXPECT_NEAR(interactions(m, converted(m), 330.0).k[1], -difference_term(m, 330.0), 1e-14);
  }
}

TEST(Interactions, TemperatureDerivativesAgainstDifferences) {
  Mixture m = mixture_of({"methane", "carbon_dioxide", "water", "n_hexane", "benzene", "hydrogen_sulfide"});
  const eos::GroupData data = converted(m);
  for (const double T : {180.0, 298.15, 420.0}) {
    const double h = 0.02;
    const Interactions a = interactions(m, data, T - h), b = interactions(m, data, T),
                       c = interactions(m, data, T + h);
    for (std::size_t k = 0; k < b.k.size(); ++k) {
      EXPECT_NEAR(b.first[k], (c.k[k] - a.k[k]) / (2 * h), 1e-9);
      EXPECT_NEAR(b.second[k], (c.first[k] - a.first[k]) / (2 * h), 1e-9);
    }
  }
}

// The references rest on Omega_a, Omega_b with all their digits; the rounded ones of the library scale the part
// E/(2 delta_i delta_j) = k_ij + difference term by the ratio of Omega_a/Omega_b^2.
TEST(Interactions, PublishedValues) {
  const double unrounded = 0.457235528921382 / (0.0777960739038885 * 0.0777960739038885);
  const double scale = 0.45724 / (0.0778 * 0.0778) / unrounded;
  std::map<std::string, std::vector<Row>> sets{
      {"PPR78_original", rows("ppr78_original_interactions.csv", KESTRUNE_DATA)},
      {"EPPR78_2022", rows("ppr78_interactions.csv", KESTRUNE_DATA)}};
  const auto known = rows("known_kij.csv", KESTRUNE_DATA);
  for (const Row& row : known) {
    constexpr std::size_t kGroups = 41;
    Mixture m;
    m.resize(2, kGroups);
    int i = 0;
    for (const std::string letter : {"i", "j"}) {
      m.at(i, KV_COL_TC) = number(row, "Tc_" + letter + "_K");
      m.at(i, KV_COL_PC) = number(row, "Pc_" + letter + "_Pa") / 101325.0;
      m.at(i, KV_COL_OMEGA) = number(row, "omega_" + letter);
      for (const std::string& piece : split(row.at("groups_" + letter), ';')) {
        const auto pair = split(piece, ':');
        m.counts[std::stoul(pair[0]) + static_cast<std::size_t>(i) * kGroups] = std::stoi(pair[1]);
      }
      ++i;
    }
    for (const Row& pair : sets.at(row.at("set"))) {
      const std::size_t at = std::stoul(pair.at("k")) + std::stoul(pair.at("l")) * kGroups;
      m.A[at] = number(pair, "A_MPa");
      m.B[at] = number(pair, "B_MPa");
    }
    const double T = number(row, "T_K"), rest = difference_term(m, T);
    const double k = interactions(m, converted(m), T).k[1];
    EXPECT_NEAR((k + rest) * scale - rest, number(row, "kij"), number(row, "tolerance"))
        << row.at("comp_i") << ' ' << row.at("comp_j") << ' ' << T;
  }
  EXPECT_EQ(known.size(), 268u);
}

}  // namespace
